
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceKeys.h>

#include <typeinfo>

namespace ORLFoundation {
namespace {

struct PeriodWords {
  ORLFDateRecurrenceFrequency frequency;
  double perYear;
  const char* word;
};

constexpr PeriodWords kPeriods[] = {
    {ORLFDateRecurrenceFrequencyYearly, 1.0, "year"},
    {ORLFDateRecurrenceFrequencyMonthly, 12.0, "month"},
    {ORLFDateRecurrenceFrequencyDaily, 365.0, "day"},
    {ORLFDateRecurrenceFrequencyQuarterly, 4.0, "quarter"},
    {ORLFDateRecurrenceFrequencyWeekly, 26.0, "week"},  // half of `countInYear`: required
};

constexpr PeriodWords kUnknownPeriod = {ORLFDateRecurrenceFrequency{}, 0.0, ""};

const PeriodWords& wordsOf(ORLFDateRecurrenceFrequency frequency) noexcept {
  for (const PeriodWords& words : kPeriods)
    if (words.frequency == frequency) return words;
  return kUnknownPeriod;
}

NSCalendarUnit unitOf(const ORLFDateRecurrencePeriod& period) noexcept {
  return static_cast<NSCalendarUnit>(period.frequency());
}

}  // namespace

ORLFDateRecurrencePeriod::ORLFDateRecurrencePeriod(ORLFDateRecurrenceFrequency frequency,
                                                   NSInteger interval)
    : frequency_(frequency), interval_(interval) {}

void ORLFDateRecurrencePeriod::setFrequency(ORLFDateRecurrenceFrequency frequency) {
  changeValue(internal::kFrequencyKey, [&] { frequency_ = frequency; });
}

void ORLFDateRecurrencePeriod::setInterval(NSInteger interval) {
  changeValue(internal::kIntervalKey, [&] { interval_ = interval; });
}

double ORLFDateRecurrencePeriod::frequencyPerYear() const noexcept {
  return wordsOf(frequency_).perYear / static_cast<double>(interval_);
}

bool ORLFDateRecurrencePeriod::isEqualToRecurrencePeriod(
    const ORLFDateRecurrencePeriod* other) const noexcept {
  return other && other->frequency_ == frequency_ && other->interval_ == interval_;
}

const NSKeyTable& ORLFDateRecurrencePeriod::keyTable() const {
  using Period = ORLFDateRecurrencePeriod;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readWrite<&Period::frequency, &Period::setFrequency>(internal::kFrequencyKey),
       NSKey::readWrite<&Period::interval, &Period::setInterval>(internal::kIntervalKey),
       NSKey::readOnly<&Period::frequencyPerYear>(
           "frequencyPerYear", {internal::kFrequencyKey, internal::kIntervalKey})});
  return table;
}

std::string ORLFDateRecurrencePeriod::className() const { return "ORLFDateRecurrencePeriod"; }

bool ORLFDateRecurrencePeriod::isEqual(const NSObject* other) const {
  return isEqualToRecurrencePeriod(dynamic_cast<const ORLFDateRecurrencePeriod*>(other));
}

NSUInteger ORLFDateRecurrencePeriod::hash() const {
  constexpr int kIntervalShift = 16;
  return static_cast<NSUInteger>(frequency_) +
         (static_cast<NSUInteger>(interval_) << kIntervalShift);
}

std::string ORLFDateRecurrencePeriod::description() const {
  return std::to_string(interval_) + " " + wordsOf(frequency_).word;
}

std::shared_ptr<NSObject> ORLFDateRecurrencePeriod::copy() {
  const NSObject& receiver = *this;
  if (typeid(receiver) == typeid(ORLFDateRecurrencePeriod)) return shared_from_this();
  return std::make_shared<ORLFDateRecurrencePeriod>(frequency_, interval_);
}

std::optional<NSDate> dateByAddingRecurrencePeriod(const NSCalendar& calendar,
                                                   const ORLFDateRecurrencePeriod& period,
                                                   NSInteger value, NSDate toDate,
                                                   NSUInteger options) noexcept {
  const std::optional<NSInteger> units = internal::product(value, period.interval());
  if (!units) return std::nullopt;
  return calendar.dateByAddingUnit(unitOf(period), *units, toDate, options);
}

NSInteger intervalInRecurrencePeriod(const NSCalendar& calendar,
                                     const ORLFDateRecurrencePeriod& period, NSDate fromDate,
                                     NSDate toDate) noexcept {
  const NSInteger interval = period.interval();
  if (interval == 0) return 0;
  const NSInteger units = orlfIntervalInCalendarUnit(calendar, unitOf(period), fromDate, toDate);
  return interval == -1 ? static_cast<NSInteger>(-static_cast<NSUInteger>(units))
                        : units / interval;
}

double countInRecurrencePeriod(const NSCalendar& calendar, const ORLFDateRecurrencePeriod& period,
                               NSDate fromDate, NSDate toDate) {
  return orlfCountOfCalendarUnit(calendar, unitOf(period), fromDate, toDate) /
         static_cast<double>(period.interval());
}

}  // namespace ORLFoundation
