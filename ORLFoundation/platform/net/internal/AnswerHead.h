/// The head of an HTTP answer, line by line as it comes.
#pragma once

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation::internal::net {

class AnswerHead {
 public:
  /// The most bytes of all heads of an exchange, those of interim answers among them.
  static constexpr std::size_t kMostBytes = std::size_t{256} * 1024;

  /// Takes a line with its end. false for an answer that nobody should read further: there are too
  /// many bytes; or Content-Length or Transfer-Encoding has a blank before its colon or is folded,
  /// so that libcurl, which passes over both, would take the body to end in another place.
  [[nodiscard]] bool take(std::string_view line);
  /// Whether the head of a final answer has come whole; lines after it, a body's trailer, are
  /// counted and passed over.
  [[nodiscard]] bool isWhole() const noexcept { return isWhole_; }

  [[nodiscard]] long status() const noexcept { return status_; }
  /// "HTTP/1.1", "HTTP/2".
  [[nodiscard]] const std::string& version() const noexcept { return version_; }
  /// Values of one name are joined with ", ". Bytes that are no UTF-8 are read as ISO Latin 1.
  /// Of several fields Location the first stands alone.
  [[nodiscard]] const NSHTTPHeaderFields& fields() const noexcept { return fields_; }
  /// Whether no two readers could be led to different places: Location is told in one line, or in
  /// several that are equal, or not at all.
  [[nodiscard]] bool isLocationClear() const noexcept { return isLocationClear_; }
  /// They are gone from here afterwards.
  [[nodiscard]] NSHTTPHeaderFields takeFields() noexcept { return std::move(fields_); }

 private:
  void begin(std::string_view statusLine);
  [[nodiscard]] bool takeField(std::string_view line);
  [[nodiscard]] bool fold(std::string_view more);

  std::size_t size_ = 0;
  bool isFirst_ = true;  ///< Whether the next line is a head's first; no other one is a status.
  bool isWhole_ = false;
  long status_ = 0;
  std::string version_;
  NSHTTPHeaderFields fields_;
  std::string* last_ = nullptr;  ///< The value that a folded line goes on with.
  enum class Kind : std::uint8_t { Other, Framing, Location };
  Kind kind_ = Kind::Other;  ///< Of the last field.
  bool isLocationClear_ = true;

  [[nodiscard]] static Kind kindOf(std::string_view name) noexcept;
};

}  // namespace ORLFoundation::internal::net
