#include <ORLFoundation/platform/text/UTF16Range.h>

#include <ORLFoundation/platform/base/UTF8.h>

#include <algorithm>
#include <cstddef>

namespace ORLFoundation::internal::text {
namespace {

// The units that a character's first byte stands for; the other bytes stand for none.
NSUInteger unitsOfByte(char byte) noexcept {
  if (base::continuesUTF8Character(byte)) return 0;
  return static_cast<unsigned char>(byte) >= 0xF0 ? 2 : 1;
}

// The byte at which the character begins that holds the unit.
std::size_t placeOfUnit(std::string_view text, NSUInteger unit) noexcept {
  std::size_t place = 0;
  NSUInteger units = 0;
  while (place < text.size()) {
    units += unitsOfByte(text[place]);
    if (units > unit) break;
    ++place;
  }
  return place;
}

}  // namespace

NSUInteger unitsOf(std::string_view text, NSUInteger most) noexcept {
  NSUInteger units = 0;
  for (std::size_t place = 0; place < text.size() && units <= most; ++place)
    units += unitsOfByte(text[place]);
  return std::min(units, most + 1);
}

std::string_view partOfText(std::string_view text, NSRange range, NSUInteger most) noexcept {
  const std::string_view rest = text.substr(placeOfUnit(text, range.location));
  return rest.substr(0, placeOfUnit(rest, std::min(range.length, most)));
}

}  // namespace ORLFoundation::internal::text
