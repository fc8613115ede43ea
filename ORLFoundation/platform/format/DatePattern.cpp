#include <ORLFoundation/platform/format/DatePattern.h>

#include <ORLFoundation/platform/format/internal/PatternText.h>
#include <unicode/gregocal.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <mutex>
#include <vector>

namespace ORLFoundation::internal::format {
namespace {

constexpr double kMillisecondsPerSecond = 1000;
// Seconds on either side of 1970 that the formatter's calendar counts safely.
constexpr double kWritableSeconds = 1.8e14;
// 1950-01-01T00:00:00Z.
constexpr double kTwoDigitYearsFrom = -631152000;
constexpr std::size_t kLongestText = 64;

std::unique_ptr<icu::GregorianCalendar> makeCalendar(UErrorCode& status) {
  auto calendar = std::make_unique<icu::GregorianCalendar>(icu::SimpleTimeZone(0, u"GMT"),
                                                           icu::Locale("en_US_POSIX"), status);
  if (U_SUCCESS(status)) calendar->setGregorianChange(-std::numeric_limits<double>::max(), status);
  return calendar;
}

icu::UnicodeString unicodeText(std::string_view text) {
  return icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

}  // namespace

// The formatter reads leniently over a calendar of its own; what it read is set in the strict one,
// which refuses what no calendar holds.
struct DatePattern::Formatter {
  std::mutex lock;
  std::unique_ptr<icu::SimpleDateFormat> format;
  std::unique_ptr<icu::GregorianCalendar> strict;
  std::vector<icu::UnicodeString> words;

  explicit Formatter(const icu::UnicodeString& pattern) : words(wordsOf(pattern)) {
    UErrorCode status = U_ZERO_ERROR;
    auto made =
        std::make_unique<icu::SimpleDateFormat>(pattern, icu::Locale("en_US_POSIX"), status);
    auto lenient = makeCalendar(status);
    auto calendar = makeCalendar(status);
    if (U_FAILURE(status)) return;
    calendar->setLenient(false);
    made->adoptCalendar(lenient.release());
    made->setLenient(true);
    made->set2DigitYearStart(kTwoDigitYearsFrom * kMillisecondsPerSecond, status);
    if (U_FAILURE(status)) return;
    format = std::move(made);
    strict = std::move(calendar);
  }
};

DatePattern::DatePattern(std::string_view pattern)
    : formatter_(std::make_unique<Formatter>(unicodeText(pattern))) {}

DatePattern::~DatePattern() = default;

std::optional<NSDate> DatePattern::read(std::string_view text) const {
  if (text.empty() || text.size() > kLongestText) return std::nullopt;
  const icu::UnicodeString units = unicodeText(text);
  const std::lock_guard guard(formatter_->lock);
  if (!formatter_->format || !holdsInOrder(units, formatter_->words)) return std::nullopt;
  icu::GregorianCalendar& calendar = *formatter_->strict;
  calendar.clear();
  icu::ParsePosition position(0);
  formatter_->format->parse(units, calendar, position);
  if (position.getErrorIndex() >= 0 || !endsInWhiteSpace(units, position.getIndex()))
    return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const UDate milliseconds = calendar.getTime(status);
  if (U_FAILURE(status) || !std::isfinite(milliseconds)) return std::nullopt;
  return NSDate::dateWithTimeIntervalSince1970(milliseconds / kMillisecondsPerSecond);
}

std::string DatePattern::write(NSDate date, NSInteger secondsFromGMT) const {
  const double seconds = std::floor(date.timeIntervalSince1970());
  if (!(std::abs(seconds) <= kWritableSeconds)) return {};
  const std::lock_guard guard(formatter_->lock);
  if (!formatter_->format) return {};
  constexpr NSInteger kMilliseconds = 1000;
  const icu::SimpleTimeZone zone(static_cast<std::int32_t>(secondsFromGMT * kMilliseconds),
                                 u"offset");
  formatter_->format->setTimeZone(zone);
  icu::UnicodeString text;
  formatter_->format->format(seconds * kMillisecondsPerSecond, text);
  std::string utf8;
  text.toUTF8String(utf8);
  return utf8;
}

}  // namespace ORLFoundation::internal::format
