// How number formatters read.

#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <ORLFoundation/platform/format/NSFormattingError.h>
#include <ORLFoundation/platform/format/internal/NumberFormats.h>
#include <ORLFoundation/platform/format/internal/NumberReading.h>

#include <optional>

namespace ORLFoundation {

using namespace internal::format;

namespace {

bool refuse(NSErrorSlot error, std::string_view description) {
  return NSFillErrorSlot(error, NSCocoaErrorDomain, NSFormattingError, description);
}

std::optional<NSNumber> wholeNumber(const NumberFormats& formats, std::string_view string) {
  NSNumberText text(string);
  const auto reading = readNumber(formats, text, text.range());
  if (!reading || reading->length != text.units().size()) return std::nullopt;
  return reading->number;
}

bool isBelow(const NumberSettings& settings, const NSNumber& number) {
  return settings.minimum && number.compare(*settings.minimum) == NSOrderedAscending;
}

bool isAbove(const NumberSettings& settings, const NSNumber& number) {
  return settings.maximum && number.compare(*settings.maximum) == NSOrderedDescending;
}

}  // namespace

bool NSNumberFormatter::getObjectValue(std::optional<NSNumber>* value, std::string_view forString,
                                       NSRange* range, NSErrorSlot error) {
  NSNumberText text(forString);
  return getObjectValue(value, text, range, error);
}

bool NSNumberFormatter::getObjectValue(std::optional<NSNumber>* value, NSNumberText& forString,
                                       NSRange* range, NSErrorSlot error) {
  const NSRange asked = range ? forString.rangeWithin(*range) : forString.range();
  const auto reading = readNumber(*format_, forString, asked);
  if (!reading) return refuse(error, "The text is not a number.");
  if (isBelow(format_->settings, reading->number))
    return refuse(error, "The number is less than the minimum.");
  if (isAbove(format_->settings, reading->number))
    return refuse(error, "The number is greater than the maximum.");
  if (value) *value = reading->number;
  if (range) *range = {asked.location, reading->length};
  return true;
}

std::optional<NSNumber> NSNumberFormatter::numberFromString(std::string_view text) {
  NSNumberText units(text);
  NSRange range = units.range();
  std::optional<NSNumber> number;
  if (!getObjectValue(&number, units, &range)) return std::nullopt;
  // A subclass may have put something behind the text.
  return NSMaxRange(range) >= units.units().size() ? number : std::nullopt;
}

bool NSNumberFormatter::isPartialStringValid(const NSPartialStringEdit& edit) {
  if (!format_->settings.validatesPartialStrings || edit.partialString.empty()) return true;
  if (wholeNumber(*format_, edit.partialString)) return true;
  if (wholeNumber(*format_, std::string(edit.partialString) + "0")) return true;
  if (edit.errorDescription) *edit.errorDescription = "The text is not a number.";
  return false;
}

}  // namespace ORLFoundation
