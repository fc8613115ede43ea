/// Walks over a text from link to link, once, in bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ORLFoundation::internal::language {

struct Link {
  enum class Kind : std::uint8_t {
    /// With its scheme.
    Address,
    /// A host, and what may follow it, that left "http://" out.
    Host,
    /// A mail address that left "mailto:" out.
    Mail,
  };
  Kind kind = Kind::Address;
  std::size_t begin = 0;
  std::size_t end = 0;
};

class LinkScanner {
 public:
  explicit LinkScanner(std::string_view text) noexcept : text_(text) {}

  /// nil when there is no further link.
  [[nodiscard]] std::optional<Link> next();

 private:
  [[nodiscard]] std::optional<Link> linkAt(std::size_t begin, std::size_t end);
  [[nodiscard]] std::optional<Link> mailAt(std::size_t begin, std::size_t end);
  [[nodiscard]] std::optional<Link> addressAt(std::size_t begin, std::size_t colon);
  [[nodiscard]] std::optional<Link> hostAt(std::size_t begin, std::size_t end);

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace ORLFoundation::internal::language
