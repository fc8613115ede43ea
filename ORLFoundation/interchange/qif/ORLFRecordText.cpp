#include <ORLFoundation/interchange/qif/ORLFRecordText.h>

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

namespace ORLFoundation::internal::interchange {
namespace {

constexpr std::size_t kUsualLength = 1024;
constexpr NSInteger kLeastFractionDigits = 2;

}  // namespace

std::shared_ptr<NSNumberFormatter> newAmountFormatter() {
  auto formatter = std::make_shared<NSNumberFormatter>();
  formatter->setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter->setMinimumFractionDigits(kLeastFractionDigits);
  return formatter;
}

std::string dateText(const NSDateFormatter& formatter, const std::optional<NSDate>& date) {
  return date ? formatter.stringFromDate(*date) : std::string(kNilText);
}

std::string numberText(const NSNumberFormatter& formatter, const std::optional<NSNumber>& number) {
  return number ? formatter.stringFromDecimal(number->decimalValue()) : std::string(kNilText);
}

ORLFRecordText::ORLFRecordText() { text_.reserve(kUsualLength); }

ORLFRecordText& ORLFRecordText::add(std::string_view text) {
  text_ += text;
  return *this;
}

ORLFRecordText& ORLFRecordText::addLine(std::string_view mark,
                                        std::optional<std::string_view> value) {
  return add(mark).add(value.value_or(kNilText)).add("\n");
}

ORLFRecordText& ORLFRecordText::addLine(std::string_view mark, const NSDateFormatter& formatter,
                                        const std::optional<NSDate>& date) {
  return addLine(mark, dateText(formatter, date));
}

ORLFRecordText& ORLFRecordText::addLine(std::string_view mark, const NSNumberFormatter& formatter,
                                        const std::optional<NSNumber>& number) {
  return addLine(mark, numberText(formatter, number));
}

ORLFRecordText& ORLFRecordText::addPresent(std::string_view mark,
                                           std::optional<std::string_view> value) {
  return value ? addLine(mark, value) : *this;
}

ORLFRecordText& ORLFRecordText::addPresent(std::string_view mark,
                                           const NSNumberFormatter& formatter,
                                           const std::optional<NSNumber>& number) {
  return number ? addLine(mark, formatter, number) : *this;
}

ORLFRecordText& ORLFRecordText::addPresentObject(std::string_view mark, const id& value) {
  return value ? addLine(mark, value.description()) : *this;
}

}  // namespace ORLFoundation::internal::interchange
