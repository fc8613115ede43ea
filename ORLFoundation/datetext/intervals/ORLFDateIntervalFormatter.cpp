#include <ORLFoundation/datetext/intervals/ORLFDateIntervalFormatter.h>

#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>
#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/text/NSStringCase.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <vector>

namespace ORLFoundation {
namespace {

constexpr std::string_view kUseCompactFormatKey = "useCompactFormat";
constexpr std::string_view kIncludeEndDateInRangeKey = "includeEndDateInRange";

constexpr NSUInteger kDayUnits = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay;

/// The formatters never change once they are made; the names of months are kept beside theirs. A
/// new formatter has the short date style and no time style.
struct SharedFormatters {
  ORLFDateFormatter formatter;
  ORLFDateFormatter yearFormatter;
  std::vector<std::string> shortMonthSymbols = formatter.shortMonthSymbols();

  SharedFormatters() { yearFormatter.setDateFormat("yyyy"); }
};

const SharedFormatters& sharedFormatters() {
  static const SharedFormatters& formatters = *new SharedFormatters;
  return formatters;
}

std::string yearText(NSDate date) { return sharedFormatters().yearFormatter.stringFromDate(date); }

/// nil for a month that the process's own calendar has no name for.
std::optional<std::string> monthAndYearText(NSDate date, const NSCalendar& calendar) {
  const std::vector<std::string>& names = sharedFormatters().shortMonthSymbols;
  const auto place =
      static_cast<NSUInteger>(calendar.component(NSCalendarUnitMonth, date)) - NSUInteger{1};
  if (place >= names.size()) return std::nullopt;
  return uppercaseString(names[place]) + " " + yearText(date);
}

/// The short form of a whole span; nil for any other.
std::optional<std::string> compactText(NSDate start, NSDate end, NSDate shownEnd,
                                       const NSCalendar& calendar) {
  const NSDateComponents span = calendar.components(kDayUnits, start, end, 0);
  const NSDateComponents first = calendar.components(kDayUnits, start);
  if (span.day() != 0 || first.day() != 1) return std::nullopt;
  if (span.month() == 0 && first.month() == 1) {
    if (span.year() == 1) return yearText(shownEnd);
    if (span.year() >= 2) return yearText(start) + " - " + yearText(shownEnd);
  }
  if (span.year() != 0 || span.month() < 1) return std::nullopt;
  std::optional<std::string> last = monthAndYearText(shownEnd, calendar);
  if (span.month() == 1 || !last) return last;
  const std::optional<std::string> begin = monthAndYearText(start, calendar);
  return begin ? std::optional(*begin + " - " + *last) : std::nullopt;
}

}  // namespace

void ORLFDateIntervalFormatter::setUseCompactFormat(bool compact) {
  changeValue(kUseCompactFormatKey, [&] { useCompactFormat_ = compact; });
}

void ORLFDateIntervalFormatter::setIncludeEndDateInRange(bool include) {
  changeValue(kIncludeEndDateInRangeKey, [&] { includeEndDateInRange_ = include; });
}

std::optional<NSDate> ORLFDateIntervalFormatter::shownEnd(std::optional<NSDate> end,
                                                          const NSCalendar* calendar) const {
  if (includeEndDateInRange_) return end;
  const NSDateIntervalFormatterStyle time = timeStyle();
  const NSDateIntervalFormatterStyle date = dateStyle();
  NSDateComponents back;
  if (time == NSDateIntervalFormatterShortStyle || time == NSDateIntervalFormatterMediumStyle) {
    back.setMinute(-1);
  } else if (time != NSDateIntervalFormatterNoStyle) {
    back.setSecond(-1);
  } else if (date != NSDateIntervalFormatterNoStyle) {
    back.setDay(-1);
  }
  ORLFConditionAssert(
      date != NSDateIntervalFormatterNoStyle || time != NSDateIntervalFormatterNoStyle,
      "dateStyle != NSDateIntervalFormatterNoStyle || timeStyle != NSDateIntervalFormatterNoStyle",
      "dateStyle of timeStyle can not both be NSDateIntervalFormatterNoStyle");
  if (!end || calendar == nullptr) return std::nullopt;
  return calendar->dateByAddingComponents(back, *end, 0);
}

std::optional<std::string> ORLFDateIntervalFormatter::stringFromDate(
    std::optional<NSDate> fromDate, std::optional<NSDate> toDate) const {
  const std::shared_ptr<NSCalendar> used = calendar();
  const std::optional<NSDate> shown = shownEnd(toDate, used.get());
  std::optional<std::string> text;
  if (useCompactFormat_ && fromDate && toDate && shown && used)
    text = compactText(*fromDate, *toDate, *shown, *used);
  return text ? text : NSDateIntervalFormatter::stringFromDate(fromDate, shown);
}

const NSCodingClass& ORLFDateIntervalFormatter::codingClass() {
  static const NSCodingClass& record = NSCodingClass::define<ORLFDateIntervalFormatter>(
      "ORLFDateIntervalFormatter", &NSDateIntervalFormatter::codingClass());
  return record;
}

void ORLFDateIntervalFormatter::encodeWithCoder(NSCoder& coder) const {
  NSDateIntervalFormatter::encodeWithCoder(coder);
  coder.encodeBool(useCompactFormat_, kUseCompactFormatKey);
  coder.encodeBool(includeEndDateInRange_, kIncludeEndDateInRangeKey);
}

std::shared_ptr<ORLFDateIntervalFormatter> ORLFDateIntervalFormatter::initWithCoder(
    NSCoder& coder) {
  auto formatter = std::make_shared<ORLFDateIntervalFormatter>();
  formatter->readSettings(coder);
  formatter->useCompactFormat_ = coder.decodeBool(kUseCompactFormatKey);
  formatter->includeEndDateInRange_ = coder.decodeBool(kIncludeEndDateInRangeKey);
  return formatter;
}

std::shared_ptr<NSObject> ORLFDateIntervalFormatter::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFDateIntervalFormatter>();
}

std::shared_ptr<NSObject> ORLFDateIntervalFormatter::copy() {
  auto made = NSDateIntervalFormatter::copy();
  if (auto* formatter = dynamic_cast<ORLFDateIntervalFormatter*>(made.get())) {
    formatter->useCompactFormat_ = useCompactFormat_.load();
    formatter->includeEndDateInRange_ = includeEndDateInRange_.load();
  }
  return made;
}

const NSKeyTable& ORLFDateIntervalFormatter::keyTable() const {
  using Formatter = ORLFDateIntervalFormatter;
  static const NSKeyTable table(
      NSDateIntervalFormatter::keyTable(),
      {NSKey::readWrite<&Formatter::useCompactFormat, &Formatter::setUseCompactFormat>(
           kUseCompactFormatKey),
       NSKey::readWrite<&Formatter::includeEndDateInRange, &Formatter::setIncludeEndDateInRange>(
           kIncludeEndDateInRangeKey)});
  return table;
}

}  // namespace ORLFoundation
