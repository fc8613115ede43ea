

#include "chart/chart_scale.h"

#include <ORLFoundation/decimal/ORLFMathematicalAxis.h>
#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>

#include "chart/chart_text.h"
#include "cli/failure.h"
#include "cli/scoped_locale.h"
#include "cli/table.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

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

using Labels = std::vector<std::string>;

constexpr std::size_t kMostCharacters = 16;

bool isTooLong(const std::string& label) { return characterCount(label) > kMostCharacters; }

bool someReadAlike(const Labels& labels) {
  return std::adjacent_find(labels.begin(), labels.end()) != labels.end();
}

std::string scientificText(double value) {
  std::array<char, 32> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 6);
  return {text.data(), end.ptr};
}

std::string fullText(double value, int fractionDigits) {
  NSNumberFormatter full;
  full.setNumberStyle(NSNumberFormatterDecimalStyle);
  full.setMaximumFractionDigits(fractionDigits);
  // What rounds to nothing is no "-0".
  const bool isNothing = std::abs(value) < 0.5 * std::pow(10.0, -fractionDigits);
  return full.stringFromDouble(isNothing ? 0 : value);
}

/// The power of ten that makes a span 1 or more; 0 for one that is, for none and one without end.
int digitsBelowOne(double span) {
  constexpr int kMostDigits = 300;
  if (!std::isfinite(span) || span <= 0) return 0;
  return std::clamp(static_cast<int>(std::ceil(-std::log10(span))), 0, kMostDigits);
}

/// The marks of an axis, whose values are scaled down by a power of ten.
class Marks {
 public:
  Marks(const ORLFMathematicalAxis& axis, int digits)
      : axis_(axis), digits_(digits), factor_(std::pow(10.0, digits)) {}

  [[nodiscard]] double value(NSUInteger index) const {
    return axis_.valueForStepIndex(index) / factor_;
  }

  /// The axis's own labels ("250K"), or all numbers in full where two of those read alike, as small
  /// steps do far from zero. Numbers that leave no room for the plot are written "1e+20".
  [[nodiscard]] Labels labels(const std::string& locale) const {
    constexpr int kUsualDigits = 3, kDigitsOfSteps = 2;  // a quarter is the longest
    const int fractionDigits = std::max(kUsualDigits, digits_ + kDigitsOfSteps);
    const ScopedLocale scope(locale);
    Labels found;
    if (digits_ == 0)
      found = labelsBy(
          [this](NSUInteger index) { return axis_.labelForStepIndex(static_cast<double>(index)); });
    if (found.empty() || someReadAlike(found))
      found = labelsBy([this, fractionDigits](NSUInteger index) {
        return fullText(value(index), fractionDigits);
      });
    if (someReadAlike(found) || std::any_of(found.begin(), found.end(), isTooLong))
      found = labelsBy([this](NSUInteger index) { return scientificText(value(index)); });
    return found;
  }

 private:
  [[nodiscard]] Labels labelsBy(const auto& textOfStep) const {
    Labels found;
    for (NSUInteger index = 0; index <= axis_.stepCount(); ++index)
      found.push_back(withTrueMinus(textOfStep(index)));
    return found;
  }

  const ORLFMathematicalAxis& axis_;
  int digits_;
  double factor_;
};

}  // namespace

NumberScale numberScale(double low, double high, int mostTicks, const std::string& locale) {
  if (low > high) std::swap(low, high);
  if (high - low <= std::abs(high) * 1e-12) {
    const double margin = high == 0 ? 1 : std::abs(high) / 10;
    low -= margin;
    high += margin;
  }
  const int digits = digitsBelowOne(high - low);
  const double factor = std::pow(10.0, digits);
  // Steps are counted before their bounds are widened, which may add one.
  const ORLFMathematicalAxis axis(low * factor, high * factor,
                                  static_cast<NSUInteger>(mostTicks - 1));
  if (axis.stepCount() == 0) throw JobFailure("the chart's values lie too far apart to draw");
  const Marks marks(axis, digits);
  // Scaling may move an end by a rounding: what was asked for lies inside all the same.
  NumberScale scale{
      std::min(low, marks.value(0)), std::max(high, marks.value(axis.stepCount())), {}};
  const Labels labels = marks.labels(locale);
  for (NSUInteger index = 0; index <= axis.stepCount(); ++index)
    scale.ticks.push_back({marks.value(index), labels[index]});
  return scale;
}

std::string valueText(double value, double span, const std::string& locale) {
  constexpr double kMostDigits = 15, kDigitsOfThousandth = 3, kDigitsOfCent = 2;
  double digits = span > 0 ? kDigitsOfThousandth - std::floor(std::log10(span)) : 0;
  if (digits > 0) digits = std::clamp(digits, kDigitsOfCent, kMostDigits);
  const ScopedLocale scope(locale);
  const std::string text = fullText(value, static_cast<int>(std::max(digits, 0.0)));
  return withTrueMinus(isTooLong(text) ? scientificText(value) : text);
}

std::string dayText(NSDate date, const NSCalendar& calendar, const std::string& locale) {
  return DayPrinter("yMMMd", locale).text(date, calendar);
}

std::vector<DateTick> dateTicks(NSDate from, NSDate to, int mostTicks, const NSCalendar& calendar,
                                const std::string& locale) {
  std::vector<DateTick> ticks;
  const double seconds = to.timeIntervalSinceDate(from);
  if (!(seconds > 0)) return ticks;
  const DateStep& step = stepFor(seconds / internal::base::civil::kSecondsPerDay, mostTicks);
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
