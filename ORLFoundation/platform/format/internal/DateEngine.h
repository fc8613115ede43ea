/// One format of dates made ready: ICU's formatter over our zone and calendar, or plain numbers
/// where the format is nothing else.
#pragma once

#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::format {

struct DateSettings {
  std::string locale;  // ICU's identifier, with the calendar's keyword where one was chosen
  std::string pattern;
  /// Those that the pattern is of, which tell ICU the numerals of the locale's calendar too (years
  /// in Hebrew letters); 0 for a pattern of one's own.
  NSUInteger dateStyle = 0;
  NSUInteger timeStyle = 0;
  std::shared_ptr<NSTimeZone> zone;
  NSDate twoDigitStart;
  // 0 where the locale decides.
  std::int32_t firstWeekday = 0;
  std::int32_t minimumDaysInFirstWeek = 0;
  /// Reads and prints through ICU alone, which tests compare the other way with.
  bool icuAlone = false;
};

/// Used by one thread at a time.
class DateEngine {
 public:
  explicit DateEngine(const DateSettings& settings);
  ~DateEngine();
  DateEngine(const DateEngine&) = delete;
  DateEngine& operator=(const DateEngine&) = delete;

  /// nil for a date that the calendar does not count.
  [[nodiscard]] std::optional<std::string> print(NSDate date) const;

  struct Reading {
    NSDate date;
    NSUInteger consumed;  // UTF-16 units
  };
  /// The date at the beginning of the text; of all of the text but white space at its end where
  /// `whole` says so. What was taken ends before that white space.
  [[nodiscard]] std::optional<Reading> read(std::string_view text, bool whole) const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace ORLFoundation::internal::format
