
#include <ORLFoundation/decimal/entry/ORLFPercentNumberFormatter.h>

#include <ORLFoundation/platform/archive/NSCoder.h>

namespace ORLFoundation {
namespace {

constexpr NSInteger kMostFractionDigits = 3;

const NSKnownCodingClass<ORLFPercentNumberFormatter> kPercentFormattersAreKnown;

}  // namespace

ORLFPercentNumberFormatter::ORLFPercentNumberFormatter() {
  setNumberStyle(NSNumberFormatterPercentStyle);
  setMaximumFractionDigits(kMostFractionDigits);
}

bool ORLFPercentNumberFormatter::getObjectValueOfBaseClass(std::optional<NSNumber>* value,
                                                           NSNumberText& forString, NSRange* range,
                                                           NSErrorSlot error) {
  return NSNumberFormatter::getObjectValue(value, forString, range, error);
}

bool ORLFPercentNumberFormatter::getObjectValue(std::optional<NSNumber>* value,
                                                NSNumberText& forString, NSRange* range,
                                                NSErrorSlot error) {
  if (NSRange first = range ? *range : forString.range();
      getObjectValueOfBaseClass(value, forString, &first, nullptr)) {
    if (range) *range = first;
    return true;
  }
  if (forString.units().find(u'%') != std::u16string_view::npos)
    return getObjectValueOfBaseClass(value, forString, range, error);
  NSNumberText percentage(std::u16string(forString.units()) + u'%');
  NSRange longer = range ? forString.rangeWithin(*range) : forString.range();
  ++longer.length;
  if (!getObjectValueOfBaseClass(value, percentage, &longer, error)) return false;
  if (range) *range = longer;
  return true;
}

void ORLFPercentNumberFormatter::awakeFromNib() {
  if (!localizesFormat()) return;
  setDecimalSeparator(NSLocale::currentLocale()->objectForKey(NSLocaleDecimalSeparator));
  setGroupingSeparator(NSLocale::currentLocale()->objectForKey(NSLocaleGroupingSeparator));
}

const NSCodingClass& ORLFPercentNumberFormatter::codingClass() {
  static const NSCodingClass& record = NSCodingClass::define<ORLFPercentNumberFormatter>(
      "ORLFPercentNumberFormatter", &NSNumberFormatter::codingClass());
  return record;
}

std::shared_ptr<ORLFPercentNumberFormatter> ORLFPercentNumberFormatter::initWithCoder(
    NSCoder& coder) {
  auto formatter = std::make_shared<ORLFPercentNumberFormatter>();
  formatter->decodeWithCoder(coder);
  return formatter;
}

std::shared_ptr<NSObject> ORLFPercentNumberFormatter::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFPercentNumberFormatter>();
}

}  // namespace ORLFoundation
