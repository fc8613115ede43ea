#include <ORLFoundation/interchange/qif/ORLFRecordText.h>

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <array>
#include <charconv>
#include <cstdint>

namespace ORLFoundation::internal::qif {
namespace {

constexpr std::size_t kUsualLength = 1024;
constexpr std::uint64_t kFirstLongMantissa = 1'000'000'000'000'000;

bool hasFifteenDigits(const NSDecimal& number) {
  return number.isNaN() || (number.isShort() && number.shortMantissa() < kFirstLongMantissa);
}

/// What a formatter takes of a decimal: the double nearest to it, of which 15 digits hold. The
/// largest decimals round up to a double that no decimal holds.
NSNumber asTaken(const NSDecimal& number) {
  if (hasFifteenDigits(number) || hasFifteenDigits(number.compacted())) return number;
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number.doubleValue(),
                                 std::chars_format::scientific, 14);
  const NSDecimal taken =
      NSDecimal::parse({digits.data(), static_cast<std::size_t>(end.ptr - digits.data())});
  if (taken.isNaN()) return number.doubleValue();
  return taken;
}

}  // namespace

std::string dateText(const NSDateFormatter& formatter, const std::optional<NSDate>& date) {
  return date ? formatter.stringFromDate(*date) : std::string(kNilText);
}

std::string numberText(const NSNumberFormatter& formatter, const std::optional<NSNumber>& number) {
  std::optional<NSNumber> taken = number;
  if (number && number->kind() == NSNumber::Kind::Decimal) taken = asTaken(number->decimalValue());
  return formatter.stringFromNumber(taken).value_or(std::string(kNilText));
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

}  // namespace ORLFoundation::internal::qif
