#include "chart_scale.h"

#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// Marks at first, first + 1 ... last times the step.
struct NumberGrid {
  double step, first, last;
};

/// The finest grid of 1, 2 or 5 times a power of ten that covers the range with few enough marks.
NumberGrid gridOver(double low, double high, int mostTicks) {
  const double power = std::pow(10, std::floor(std::log10(high / mostTicks - low / mostTicks)));
  NumberGrid grid{};
  for (const double factor : {1.0, 2.0, 5.0, 10.0, 20.0}) {
    grid.step = factor * power;
    grid.first = std::floor(low / grid.step + 1e-9);
    grid.last = std::ceil(high / grid.step - 1e-9);
    if (grid.last - grid.first < mostTicks) break;
  }
  return grid;
}

icu::number::LocalizedNumberFormatter axisNumbers(double step, double largest,
                                                  const std::string& locale) {
  constexpr double kLargestPlainNumber = 1e12;
  const auto numbers = icu::number::NumberFormatter::withLocale(icu::Locale(locale.c_str()));
  if (largest >= kLargestPlainNumber || step < 1e-9)
    return numbers.notation(icu::number::Notation::scientific());
  const int digits = std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
  return numbers.precision(icu::number::Precision::fixedFraction(digits));
}

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  text.toUTF8String(bytes);
  return bytes;
}

/// A spacing of date marks: so many units, aligned to the unit's count since year 0.
struct DateStep {
  NSCalendarUnit unit;
  NSInteger count;
  const char* skeleton;
  double days;  // roughly
};

constexpr std::array kDateSteps{
    DateStep{NSCalendarUnitDay, 1, "yMMMd", 1},
    DateStep{NSCalendarUnitDay, 2, "yMMMd", 2},
    DateStep{NSCalendarUnitDay, 7, "yMMMd", 7},
    DateStep{NSCalendarUnitDay, 14, "yMMMd", 14},
    DateStep{NSCalendarUnitMonth, 1, "yMMM", 30.4},
    DateStep{NSCalendarUnitMonth, 3, "yMMM", 91.3},
    DateStep{NSCalendarUnitMonth, 6, "yMMM", 182.6},
    DateStep{NSCalendarUnitMonth, 12, "y", 365.2},
    DateStep{NSCalendarUnitMonth, 24, "y", 730.5},
    DateStep{NSCalendarUnitMonth, 60, "y", 1826.2},
    DateStep{NSCalendarUnitMonth, 120, "y", 3652.4},
    DateStep{NSCalendarUnitMonth, 240, "y", 7304.9},
    DateStep{NSCalendarUnitMonth, 600, "y", 18262.1},
    DateStep{NSCalendarUnitMonth, 1200, "y", 36524.3},
    DateStep{NSCalendarUnitMonth, 12000, "y", 365242.5},
    DateStep{NSCalendarUnitMonth, 120000, "y", 3652425},
    DateStep{NSCalendarUnitMonth, 1200000, "y", 36524250},
};

const DateStep& stepFor(double days, int mostTicks) {
  for (const DateStep& step : kDateSteps)
    if (days / step.days <= mostTicks - 1) return step;
  return kDateSteps.back();
}

/// The first date of the step's grid at or before a date.
std::optional<NSDate> gridStart(NSDate date, const DateStep& step, const NSCalendar& calendar) {
  NSDateComponents fields =
      calendar.components(NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay, date);
  if (step.unit == NSCalendarUnitMonth) {
    const NSInteger months = fields.year() * 12 + fields.month() - 1;
    const NSInteger aligned = months - months % step.count;
    fields.setYear(aligned / 12);
    fields.setMonth(aligned % 12 + 1);
    fields.setDay(1);
  }
  return calendar.dateFromComponents(fields);
}

/// Writes days in the locale's manner. Day, month and year come from the calendar, so that no zone
/// data but its own takes part.
class DayPrinter {
 public:
  DayPrinter(const char* skeleton, const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale place(locale.c_str());
    const std::unique_ptr<icu::DateTimePatternGenerator> patterns(
        icu::DateTimePatternGenerator::createInstance(place, status));
    if (U_FAILURE(status)) return;
    const icu::UnicodeString pattern =
        patterns->getBestPattern(icu::UnicodeString::fromUTF8(skeleton), status);
    format_ = std::make_unique<icu::SimpleDateFormat>(pattern, place, status);
    format_->adoptTimeZone(icu::TimeZone::getGMT()->clone());
    if (U_FAILURE(status)) format_.reset();
  }

  [[nodiscard]] std::string text(NSDate date, const NSCalendar& calendar) const {
    if (!format_) return "";
    const NSInteger offset = calendar.timeZone()->secondsFromGMTForDate(date);
    icu::UnicodeString printed;
    format_->format((date.timeIntervalSince1970() + static_cast<double>(offset)) * 1000, printed);
    return utf8(printed);
  }

 private:
  std::unique_ptr<icu::SimpleDateFormat> format_;
};

}  // namespace

std::vector<NumberTick> numberTicks(double low, double high, int mostTicks,
                                    const std::string& locale) {
  if (low > high) std::swap(low, high);
  if (high - low <= std::abs(high) * 1e-12) {
    const double margin = high == 0 ? 1 : std::abs(high) / 10;
    low -= margin;
    high += margin;
  }
  const NumberGrid grid = gridOver(low, high, mostTicks);
  const auto numbers = axisNumbers(grid.step, std::max(std::abs(low), std::abs(high)), locale);
  std::vector<NumberTick> ticks;
  const auto count = static_cast<int>(grid.last - grid.first) + 1;
  for (int place = 0; place < count; ++place) {
    UErrorCode status = U_ZERO_ERROR;
    const double index = grid.first + place;
    const double value = index == 0 ? 0 : index * grid.step;
    ticks.push_back({value, utf8(numbers.formatDouble(value, status).toString(status))});
  }
  return ticks;
}

std::vector<DateTick> dateTicks(NSDate from, NSDate to, int mostTicks, const NSCalendar& calendar,
                                const std::string& locale) {
  std::vector<DateTick> ticks;
  const double seconds = to.timeIntervalSinceDate(from);
  if (!(seconds > 0)) return ticks;
  const DateStep& step = stepFor(seconds / 86400, mostTicks);
  const DayPrinter printer(step.skeleton, locale);
  const std::optional<NSDate> start = gridStart(from, step, calendar);
  for (NSInteger index = 0; start && index <= NSInteger{2} * mostTicks; ++index) {
    const std::optional<NSDate> date =
        calendar.dateByAddingUnit(step.unit, index * step.count, *start, 0);
    if (!date || date->compare(to) == NSOrderedDescending) break;
    if (date->compare(from) == NSOrderedAscending) continue;
    ticks.push_back({*date, printer.text(*date, calendar)});
  }
  return ticks;
}

}  // namespace orlftool
