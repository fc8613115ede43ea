/// A frequency with an interval: every 2 months, every 3 weeks. It is what a schedule of payments
/// or of compounding stores.
///
///     const auto period =
///         std::make_shared<ORLFDateRecurrencePeriod>(ORLFDateRecurrenceFrequencyMonthly, 2);
///     period->frequencyPerYear();                                // 6
///     dateByAddingRecurrencePeriod(*calendar, *period, 3, date, 0);  // six months later
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceFrequency.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

class NSCalendar;

class ORLFDateRecurrencePeriod : public NSObject, public NSSecureCoding {
 public:
  /// `initWithFrequency:interval:`
  ORLFDateRecurrencePeriod(ORLFDateRecurrenceFrequency frequency, NSInteger interval);

  /// The unit of the period, and how many of it make one.
  [[nodiscard]] ORLFDateRecurrenceFrequency frequency() const noexcept { return frequency_; }
  void setFrequency(ORLFDateRecurrenceFrequency frequency);
  [[nodiscard]] NSInteger interval() const noexcept { return interval_; }
  void setInterval(NSInteger interval);

  /// `frequencyPerYear`  How many periods a year has: 1, 12, 365 or 4, and 26 for weekly (required,
  /// though a year has 52), over the interval. 0 over it for any other frequency; an interval of 0
  /// gives infinity or not-a-number.
  [[nodiscard]] double frequencyPerYear() const noexcept;

  /// `isEqualToRecurrencePeriod:`  Equal frequency and interval; false for nil.
  [[nodiscard]] bool isEqualToRecurrencePeriod(
      const ORLFDateRecurrencePeriod* other) const noexcept;

  /// Keys "frequency", "interval" and "frequencyPerYear", which depends on them.
  [[nodiscard]] const NSKeyTable& keyTable() const override;
  [[nodiscard]] std::string className() const override;
  /// `isEqual:`  A period for which `isEqualToRecurrencePeriod` holds.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// `description`  "2 month": no plural, and no word for a frequency outside the enumeration.
  [[nodiscard]] std::string description() const override;
  /// `copyWithZone:`  The receiver itself, although it has setters; for a subclass, and for a
  /// period on the stack, a new one of the receiver's class.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

  /// `encodeWithCoder:`, `initWithCoder:`  Under "frequency" and "interval", whatever
  /// their values.
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrencePeriod> initWithCoder(NSCoder& coder);
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  ORLFDateRecurrenceFrequency frequency_;
  NSInteger interval_;
};

/// `dateByAddingRecurrencePeriod:value:toDate:options:`  The date moved by `value` periods, month
/// ends clamped. A quarter goes to the calendar as a quarter. nil beyond the calendar.
[[nodiscard]] std::optional<NSDate> dateByAddingRecurrencePeriod(
    const NSCalendar& calendar, const ORLFDateRecurrencePeriod& period, NSInteger value,
    NSDate toDate, NSUInteger options) noexcept;
/// `intervalInRecurrencePeriod:fromDate:toDate:`  Whole periods between two dates, truncated toward
/// zero; 0 when the interval is 0.
[[nodiscard]] NSInteger intervalInRecurrencePeriod(const NSCalendar& calendar,
                                                   const ORLFDateRecurrencePeriod& period,
                                                   NSDate fromDate, NSDate toDate) noexcept;
/// `countInRecurrencePeriod:fromDate:toDate:`  Periods between two dates with their fraction; an
/// interval of 0 gives an infinity or not-a-number.
[[nodiscard]] double countInRecurrencePeriod(const NSCalendar& calendar,
                                             const ORLFDateRecurrencePeriod& period,
                                             NSDate fromDate, NSDate toDate);

}  // namespace ORLFoundation
