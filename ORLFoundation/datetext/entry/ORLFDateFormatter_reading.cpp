// How typed dates are read.

#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>

#include <ORLFoundation/datetext/entry/internal/DateScan.h>
#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/format/NSFormattingError.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/platform/process/LocalizedText.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/text/UTF16Range.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <cstddef>
#include <utility>

namespace ORLFoundation {

using internal::process::localizedText;
using namespace internal::entry;
namespace base = internal::base;

namespace {

constexpr std::string_view kNoDate = "This field requires a date.";
constexpr std::string_view kNoFormat = "Invalid date format";
constexpr std::string_view kFormatWanted = "Please enter a date with the format %@.";
constexpr std::string_view kTooEarly = "Invalid date";
constexpr std::string_view kEarliest = "Dates before %@ are not allowed.";

std::string localizedWith(std::string_view format, std::string_view argument) {
  return stringWithFormat(localizedText(format), argument);
}

bool fill(NSErrorSlot error, std::string_view description, std::string_view key,
          const std::string& text) {
  if (error == nullptr) return false;
  const auto information = NSDictionary::dictionaryWithEntries(
      {{NSLocalizedDescriptionKey, localizedText(description)}, {key, text}});
  return NSFillErrorSlot(
      error, NSError::errorWithDomain(NSCocoaErrorDomain, NSFormattingError, information));
}

// The place of the digit, of any script, at the end of the text; npos where none stands there.
std::size_t placeOfLastDigit(std::string_view text) {
  if (text.empty()) return std::string_view::npos;
  std::size_t place = text.size() - 1;
  if (base::isASCII(text[place]))
    return base::isDigit(text[place]) ? place : std::string_view::npos;
  constexpr std::size_t kLongestCharacter = 4;
  while (place > 0 && text.size() - place < kLongestCharacter &&
         base::continuesUTF8Character(text[place]))
    --place;
  const base::UTF8Character last = base::firstUTF8Character(text.substr(place));
  const bool isLast = !last.isBroken && last.length == text.size() - place;
  const auto& digits = NSCharacterSet::decimalDigitCharacterSet();
  return isLast && digits->longCharacterIsMember(last.codePoint) ? place : std::string_view::npos;
}

// The place of the only digit at the end of the text; npos where none or several stand there.
std::size_t placeOfLoneDigit(std::string_view text) {
  const std::size_t place = placeOfLastDigit(text);
  const bool isLone = place != std::string_view::npos &&
                      placeOfLastDigit(text.substr(0, place)) == std::string_view::npos;
  return isLone ? place : std::string_view::npos;
}

}  // namespace

NSRange ORLFDateFormatter::dayRangeForMonth(NSInteger month, NSInteger year,
                                            const NSCalendar& calendar) {
  return dayRange(month, year, calendar);
}

bool ORLFDateFormatter::readsEmpty(std::optional<NSDate>* object, NSErrorSlot error) const {
  if (!allowNilDates_)
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSFormattingError, localizedText(kNoDate));
  if (object != nullptr) object->reset();
  return allowNilDates_;
}

bool ORLFDateFormatter::refuseFormat(NSErrorSlot error) const {
  if (error == nullptr) return false;
  return fill(error, kNoFormat, NSLocalizedRecoverySuggestionErrorKey,
              localizedWith(kFormatWanted, dateFormat()));
}

// The minimum is printed by a copy, which takes the lock that is held here once more.
bool ORLFDateFormatter::refuseDate(NSErrorSlot error) const {
  if (error == nullptr) return false;
  const auto printer =
      std::static_pointer_cast<ORLFDateFormatter>(const_cast<ORLFDateFormatter*>(this)->copy());
  printer->setDateStyle(NSDateFormatterMediumStyle);
  return fill(error, kTooEarly, NSLocalizedFailureReasonErrorKey,
              localizedWith(kEarliest, printer->stringFromDate(*minimunDate_)));
}

// With a "0" before a lone digit at the end, so that 1/2/5 is in 2005, then as it was typed.
std::optional<NSDate> ORLFDateFormatter::readUnderFormat(std::string_view text,
                                                         NSRange* range) const {
  std::optional<NSDate> date;
  const std::size_t lone = placeOfLoneDigit(text);
  if (lone != std::string_view::npos && text.size() <= kLongestText) {
    std::string padded(text.substr(0, lone));
    padded += '0';
    padded += text.substr(lone);
    NSRange taken{0, kLongestText};
    if (NSDateFormatter::getObjectValue(&date, padded, range != nullptr ? &taken : nullptr)) {
      if (range != nullptr) range->length = taken.length - 1;
      return date;
    }
  }
  NSRange taken{0, kLongestText};
  if (!NSDateFormatter::getObjectValue(&date, text, range != nullptr ? &taken : nullptr))
    return std::nullopt;
  if (range != nullptr) range->length = taken.length;
  return date;
}

std::optional<NSDate> ORLFDateFormatter::scanned(std::string_view text) const {
  if (!recognized_ || !shortDateFormatter_) return std::nullopt;
  return scanDate(text, monthFirst_, *shortDateFormatter_->calendar(), NSDate::date());
}

std::optional<NSDate> ORLFDateFormatter::readDate(std::string_view text, NSRange* range) const {
  std::optional<NSDate> date = readUnderFormat(text, range);
  if (date || !shortDateFormatter_) return date;
  NSRange taken{0, kLongestText};
  if (shortDateFormatter_->getObjectValue(&date, text, range != nullptr ? &taken : nullptr)) {
    if (range != nullptr) range->length = taken.length;
    return date;
  }
  return scanned(text);
}

bool ORLFDateFormatter::getObjectValue(std::optional<NSDate>* object, std::string_view forString,
                                       NSRange* range, NSErrorSlot error) const {
  const std::lock_guard guard(lock());
  std::string_view text = forString;
  if (range != nullptr) text = internal::text::partOfText(forString, *range, range->length);
  if (text.empty()) return readsEmpty(object, error);
  const std::optional<NSDate> date = readDate(text, range);
  if (!date) return refuseFormat(error);
  if (minimunDate_ && date->compare(*minimunDate_) == NSOrderedAscending) return refuseDate(error);
  if (object != nullptr) *object = date;
  return true;
}

}  // namespace ORLFoundation
