/// A text with escapes of one kind resolved, and where each of its bytes came from.
#pragma once

#include <ORLFoundation/web/logging/internal/SecretIndex.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::logging {

enum class Escapes : std::uint8_t { Percent, PercentAndPlus, JSON };

class ResolvedText {
 public:
  /// Whether the text may hold such escapes.
  [[nodiscard]] static bool mayHold(std::string_view text, Escapes escapes) noexcept;
  ResolvedText(std::string_view text, Escapes escapes);

  [[nodiscard]] const std::string& bytes() const noexcept { return bytes_; }
  /// The part of the text that a part of the bytes came from, whole escapes.
  [[nodiscard]] Place sourceOf(Place place) const;
  /// As many bytes as come from the text before an index; of an escape that lies across it, none.
  [[nodiscard]] std::size_t bytesBefore(std::size_t source) const;

 private:
  /// Bytes from `at` on stand for the text from `source` on: each for one, or, of an escape, all
  /// for `escapeLength`.
  struct Run {
    std::size_t at, source;
    std::size_t escapeLength;  // 0 for what is no escape
  };

  void readPercent(std::string_view text, bool takesPlus);
  void readJSON(std::string_view text);
  void addPlain(std::string_view text, std::size_t begin, std::size_t end);
  void addEscape(std::string_view bytes, std::size_t source, std::size_t length);
  std::size_t addCharacter(std::string_view text, std::size_t at);
  [[nodiscard]] const Run& runAt(std::size_t at) const;

  std::string bytes_;
  std::vector<Run> runs_;
  std::size_t sourceLength_;
};

}  // namespace ORLFoundation::internal::logging
