
#include <ORLFoundation/calendar/ORLFISO8601.h>

#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <unicode/gregocal.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <cmath>
#include <limits>
#include <memory>
#include <mutex>

namespace ORLFoundation {
namespace {

constexpr double kMillisecondsPerSecond = 1000;
/// Seconds on either side of 1970 that the formatter's calendar counts safely: some five million
/// years.
constexpr double kWritableSeconds = 1.8e14;

struct SharedFormatter {
  std::mutex lock;
  std::unique_ptr<icu::SimpleDateFormat> formatter;
};

std::unique_ptr<icu::GregorianCalendar> makeGregorianCalendar(UErrorCode& status) {
  auto calendar = std::make_unique<icu::GregorianCalendar>(icu::SimpleTimeZone(0, u"GMT"),
                                                           icu::Locale("en_US_POSIX"), status);
  calendar->setGregorianChange(-std::numeric_limits<double>::max(), status);
  calendar->setLenient(false);
  return calendar;
}

std::unique_ptr<icu::SimpleDateFormat> makeFormatter() {
  UErrorCode status = U_ZERO_ERROR;
  auto formatter = std::make_unique<icu::SimpleDateFormat>(u"yyyy-MM-dd'T'HH:mm:ssZZZ",
                                                           icu::Locale("en_US_POSIX"), status);
  if (U_FAILURE(status)) return nullptr;
  auto calendar = makeGregorianCalendar(status);
  if (U_FAILURE(status)) return nullptr;
  formatter->adoptCalendar(calendar.release());
  formatter->setLenient(false);
  return formatter;
}

/// Made at first use. The formatter is not safe on several threads: hold the lock to use it.
SharedFormatter& sISO8601() {
  static SharedFormatter shared{{}, makeFormatter()};
  return shared;
}

icu::UnicodeString patternText(std::string_view string) {
  const bool zulu = !string.empty() && string.back() == 'Z';
  if (zulu) string.remove_suffix(1);
  auto text = icu::UnicodeString::fromUTF8(
      icu::StringPiece(string.data(), static_cast<std::int32_t>(string.size())));
  return zulu ? text.append(u"-0000", 5) : text;
}

}  // namespace

std::optional<NSDate> orlfDateFromISO8601String(std::string_view string) {
  constexpr std::size_t kLongestText = 64;
  if (string.size() > kLongestText) return std::nullopt;
  const icu::UnicodeString text = patternText(string);
  SharedFormatter& shared = sISO8601();
  const std::lock_guard guard(shared.lock);
  if (!shared.formatter) return std::nullopt;
  icu::ParsePosition position(0);
  const UDate milliseconds = shared.formatter->parse(text, position);
  const bool whole = position.getErrorIndex() < 0 && position.getIndex() == text.length();
  if (!whole || text.isEmpty() || !std::isfinite(milliseconds)) return std::nullopt;
  return NSDate::dateWithTimeIntervalSince1970(milliseconds / kMillisecondsPerSecond);
}

std::string orlfISO8601StringFromDate(NSDate date) {
  const double seconds = std::floor(date.timeIntervalSince1970());
  if (!(std::abs(seconds) <= kWritableSeconds)) return {};
  const NSInteger offset = NSTimeZone::defaultTimeZone()->secondsFromGMTForDate(date);
  SharedFormatter& shared = sISO8601();
  const std::lock_guard guard(shared.lock);
  if (!shared.formatter) return {};
  constexpr NSInteger kMilliseconds = 1000;
  shared.formatter->setTimeZone(
      icu::SimpleTimeZone(static_cast<std::int32_t>(offset * kMilliseconds), u"offset"));
  icu::UnicodeString text;
  shared.formatter->format(seconds * kMillisecondsPerSecond, text);
  std::string utf8;
  text.toUTF8String(utf8);
  return utf8;
}

std::string orlfISO8601String(NSDate date) { return orlfISO8601StringFromDate(date); }

}  // namespace ORLFoundation
