#include "interchange/record_formats.h"

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/value/NSDecimal.h>

namespace orlftool {

using namespace ORLFoundation;

namespace {

std::shared_ptr<NSLocale> plainLocale() { return std::make_shared<NSLocale>("en_US_POSIX"); }

}  // namespace

std::shared_ptr<NSDateFormatter> newRecordDateFormatter(const NSCalendar& calendar) {
  auto formatter = std::make_shared<NSDateFormatter>();
  formatter->setLocale(plainLocale());
  formatter->setCalendar(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian));
  formatter->setTimeZone(calendar.timeZone());
  formatter->setDateFormat("MM/dd/yyyy");
  return formatter;
}

std::shared_ptr<NSNumberFormatter> newRecordNumberFormatter(int leastFractionDigits) {
  auto formatter = std::make_shared<NSNumberFormatter>();
  formatter->setLocale(plainLocale());
  formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter->setUsesGroupingSeparator(false);
  formatter->setMaximumFractionDigits(-NSDecimal::kSmallestExponent - 1);
  formatter->setMinimumFractionDigits(leastFractionDigits);
  return formatter;
}

}  // namespace orlftool
