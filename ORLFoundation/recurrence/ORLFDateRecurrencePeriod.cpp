
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceKeys.h>

#include <typeinfo>

namespace ORLFoundation {

using namespace internal::recurrence;

namespace {

/// No periods a year and no word for a frequency outside the enumeration.
constexpr ORLFFrequencyFacts kUnknown = {};

const ORLFFrequencyFacts& factsOrNone(ORLFDateRecurrenceFrequency frequency) noexcept {
  const ORLFFrequencyFacts* const facts = factsOf(frequency);
  return facts ? *facts : kUnknown;
}

}  // namespace

ORLFDateRecurrencePeriod::ORLFDateRecurrencePeriod(ORLFDateRecurrenceFrequency frequency,
                                                   NSInteger interval)
    : frequency_(frequency), interval_(interval) {}

void ORLFDateRecurrencePeriod::setFrequency(ORLFDateRecurrenceFrequency frequency) {
  changeValue(kFrequencyKey, [&] { frequency_ = frequency; });
}

void ORLFDateRecurrencePeriod::setInterval(NSInteger interval) {
  changeValue(kIntervalKey, [&] { interval_ = interval; });
}

double ORLFDateRecurrencePeriod::frequencyPerYear() const noexcept {
  return factsOrNone(frequency_).perYear / static_cast<double>(interval_);
}

bool ORLFDateRecurrencePeriod::isEqualToRecurrencePeriod(
    const ORLFDateRecurrencePeriod* other) const noexcept {
  return other && other->frequency_ == frequency_ && other->interval_ == interval_;
}

const NSKeyTable& ORLFDateRecurrencePeriod::keyTable() const {
  using Period = ORLFDateRecurrencePeriod;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readWrite<&Period::frequency, &Period::setFrequency>(kFrequencyKey),
       NSKey::readWrite<&Period::interval, &Period::setInterval>(kIntervalKey),
       NSKey::readOnly<&Period::frequencyPerYear>("frequencyPerYear",
                                                  {kFrequencyKey, kIntervalKey})});
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
  return std::to_string(interval_).append(" ").append(factsOrNone(frequency_).word);
}

std::shared_ptr<NSObject> ORLFDateRecurrencePeriod::copy() {
  const auto newPeriod = [this] {
    auto copy = newObjectAs<ORLFDateRecurrencePeriod>();
    copy->frequency_ = frequency_;
    copy->interval_ = interval_;
    return copy;
  };
  const NSObject& receiver = *this;
  if (typeid(receiver) != typeid(ORLFDateRecurrencePeriod)) return newPeriod();
  return receiverOr(newPeriod);
}

std::shared_ptr<NSObject> ORLFDateRecurrencePeriod::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFDateRecurrencePeriod>(frequency_, interval_);
}

std::optional<NSDate> dateByAddingRecurrencePeriod(const NSCalendar& calendar,
                                                   const ORLFDateRecurrencePeriod& period,
                                                   NSInteger value, NSDate toDate,
                                                   NSUInteger options) noexcept {
  const std::optional<NSInteger> units = internal::base::checkedProduct(value, period.interval());
  if (!units) return std::nullopt;
  return calendar.dateByAddingUnit(unitOf(period.frequency()), *units, toDate, options);
}

NSInteger intervalInRecurrencePeriod(const NSCalendar& calendar,
                                     const ORLFDateRecurrencePeriod& period, NSDate fromDate,
                                     NSDate toDate) noexcept {
  const NSInteger interval = period.interval();
  if (interval == 0) return 0;
  const NSInteger units =
      orlfIntervalInCalendarUnit(calendar, unitOf(period.frequency()), fromDate, toDate);
  return interval == -1 ? static_cast<NSInteger>(-static_cast<NSUInteger>(units))
                        : units / interval;
}

double countInRecurrencePeriod(const NSCalendar& calendar, const ORLFDateRecurrencePeriod& period,
                               NSDate fromDate, NSDate toDate) {
  return orlfCountOfCalendarUnit(calendar, unitOf(period.frequency()), fromDate, toDate) /
         static_cast<double>(period.interval());
}

}  // namespace ORLFoundation
