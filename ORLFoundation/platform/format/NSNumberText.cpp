
#include <ORLFoundation/platform/format/NSNumberText.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using namespace internal::base;

std::u16string unitsOf(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const UTF8Character character = firstUTF8Character(text);
    text.remove_prefix(character.length);
    if (character.codePoint < 0x10000) {
      units += static_cast<char16_t>(character.codePoint);
    } else {
      units += static_cast<char16_t>(0xD7C0 + (character.codePoint >> 10));
      units += static_cast<char16_t>(0xDC00 + (character.codePoint & 0x3FF));
    }
  }
  return units;
}

}  // namespace

NSNumberText::NSNumberText(std::string_view text) {
  if (text.size() <= short_.size() && isASCII(text)) {
    std::copy(text.begin(), text.end(), short_.begin());
    units_ = std::u16string_view(short_.data(), text.size());
  } else {
    long_ = unitsOf(text);
    units_ = long_;
  }
}

NSRange NSNumberText::rangeWithin(NSRange range) const noexcept {
  const NSUInteger location = std::min<NSUInteger>(range.location, units_.size());
  return {location, std::min<NSUInteger>(range.length, units_.size() - location)};
}

bool NSNumberText::spendUnitsInWords(NSUInteger count) noexcept {
  if (count > unitsInWordsLeft_) return false;
  unitsInWordsLeft_ -= count;
  return true;
}

}  // namespace ORLFoundation
