
#include <ORLFoundation/platform/format/NSNumberText.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF16.h>

#include <algorithm>

namespace ORLFoundation {

using namespace internal::base;

NSNumberText::NSNumberText(std::string_view text) {
  if (text.size() <= short_.size() && isASCII(text)) {
    std::copy(text.begin(), text.end(), short_.begin());
    units_ = std::u16string_view(short_.data(), text.size());
  } else {
    long_ = utf16Units(text);
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
