#include <ORLFoundation/interchange/txf/internal/ORLFColumnText.h>

#include <ORLFoundation/platform/base/UTF8.h>

namespace ORLFoundation::internal::txf {
namespace {

constexpr std::size_t kLongestAccount = 30;
constexpr std::size_t kCutAccount = 29;
constexpr std::size_t kCheckNumberWidth = 6;
constexpr std::size_t kCheckNumberCut = 5;
constexpr std::size_t kNoEnd = static_cast<std::size_t>(-1);

/// The byte at which a unit begins; the length of the text beyond its end, nil inside a character.
std::optional<std::size_t> byteOfUnit(std::string_view text, std::size_t unit) noexcept {
  std::size_t units = 0;
  std::size_t at = 0;
  while (at < text.size() && units < unit) {
    const base::UTF8Character character = base::firstUTF8Character(text.substr(at));
    units += base::unitsInUTF16(character.codePoint);
    at += character.length;
  }
  return units > unit ? std::nullopt : std::optional(at);
}

std::optional<std::string> textOf(std::optional<std::string_view> units) {
  return units ? std::optional<std::string>(*units) : std::nullopt;
}

}  // namespace

std::size_t unitCount(std::string_view text) noexcept {
  std::size_t units = 0;
  while (!text.empty()) {
    const base::UTF8Character character = base::firstUTF8Character(text);
    units += base::unitsInUTF16(character.codePoint);
    text.remove_prefix(character.length);
  }
  return units;
}

std::optional<std::string_view> unitsOf(std::string_view text, std::size_t from,
                                        std::size_t to) noexcept {
  const std::optional<std::size_t> begin = byteOfUnit(text, from);
  const std::optional<std::size_t> end = byteOfUnit(text, to);
  if (!begin || !end) return std::nullopt;
  return text.substr(*begin, *end - *begin);
}

std::string padded(std::string_view text, std::size_t length) {
  std::string result(text);
  const std::size_t units = unitCount(text);
  if (units < length) result.append(length - units, ' ');
  return result;
}

std::optional<std::string> accountColumn(std::string_view text) {
  return unitCount(text) > kLongestAccount ? textOf(unitsOf(text, 0, kCutAccount))
                                           : std::string(text);
}

std::optional<std::string> checkNumberColumn(std::string_view text) {
  return unitCount(text) > kCheckNumberWidth ? textOf(unitsOf(text, kCheckNumberCut, kNoEnd))
                                             : padded(text, kCheckNumberWidth);
}

std::optional<std::string> textColumn(std::string_view text, std::size_t width) {
  return unitCount(text) > width ? textOf(unitsOf(text, 0, width - 1)) : padded(text, width);
}

}  // namespace ORLFoundation::internal::txf
