/// What a formatter of dates holds, and what is made of it at the first need.
#pragma once

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/internal/DateEngine.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::format {

struct NSDateFormatterState {
  struct Settings {
    NSDateFormatterStyle dateStyle = NSDateFormatterNoStyle;
    NSDateFormatterStyle timeStyle = NSDateFormatterNoStyle;
    std::optional<std::string> format;
    std::shared_ptr<NSLocale> locale = NSLocale::currentLocale();
    std::shared_ptr<NSTimeZone> zone = NSTimeZone::defaultTimeZone();
    std::shared_ptr<NSCalendar> calendar;
    // 1950-01-01T00:00:00Z.
    std::optional<NSDate> twoDigitStart = NSDate::dateWithTimeIntervalSince1970(-631152000);
    bool lenient = false;
    bool relative = false;
  };

  Settings settings;

  /// The settings, to be changed: what was made of them is dropped.
  Settings& change();
  [[nodiscard]] const std::string& pattern();
  /// The locale under the calendar that was set.
  [[nodiscard]] std::string icuLocale() const;
  /// Never nil.
  [[nodiscard]] const std::shared_ptr<NSCalendar>& usedCalendar();
  [[nodiscard]] DateEngine& engineOf(std::string_view format);

  [[nodiscard]] bool isRelative() const {
    return settings.relative && !settings.format && settings.dateStyle != NSDateFormatterNoStyle;
  }
  /// nil where the locale has no word for the day.
  [[nodiscard]] std::optional<std::string> relativeText(NSDate date);
  [[nodiscard]] std::optional<DateEngine::Reading> read(std::string_view text, bool whole);

 private:
  struct Engine {
    std::string pattern;
    std::unique_ptr<DateEngine> engine;
  };

  [[nodiscard]] std::optional<NSInteger> daysFromToday(NSDate date);
  [[nodiscard]] std::optional<NSDate> dayFromToday(NSInteger days);

  std::optional<std::string> pattern_;
  std::shared_ptr<NSCalendar> calendar_;
  std::vector<Engine> engines_;
};

}  // namespace ORLFoundation::internal::format
