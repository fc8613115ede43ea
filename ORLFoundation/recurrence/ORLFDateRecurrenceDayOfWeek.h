/// A day in a rule's list of weekdays: every Friday, the second Tuesday, the last weekday.
///
///     std::make_shared<ORLFDateRecurrenceDayOfWeek>(3, 2);  // the second Tuesday
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class ORLFDateRecurrenceDayOfWeek : public NSObject, public NSSecureCoding {
 public:
  /// `initWithDayOfTheWeek:`, `initWithDayOfTheWeek:weekNumber:`
  explicit ORLFDateRecurrenceDayOfWeek(NSInteger dayOfTheWeek, NSInteger weekNumber = 0);
  /// `dayOfWeek:`  An entry without a week number.
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrenceDayOfWeek> dayOfWeek(
      NSInteger dayOfTheWeek);
  /// `nameForWeekday:`  "Sunday" for 1 to "Saturday" for 7, "day" for -1, "weekday" for -2,
  /// "weekend day" for -3, else "unknown".
  [[nodiscard]] static std::string_view nameForWeekday(NSInteger weekday) noexcept;
  /// `stringForWeekNumber:`  "first" to "fifth", "last" for -1, else "every": also for -2, from
  /// which dates are generated all the same.
  [[nodiscard]] static std::string_view stringForWeekNumber(NSInteger weekNumber) noexcept;

  /// 1 is Sunday, 7 is Saturday; -1 any day, -2 any day outside the weekend, -3 any day of it; 0 is
  /// no day and generates nothing.
  [[nodiscard]] NSInteger dayOfTheWeek() const noexcept { return dayOfTheWeek_; }
  /// Which such day of the month: 1 to 5 from its start, negative from its end, 0 for none given.
  [[nodiscard]] NSInteger weekNumber() const noexcept { return weekNumber_; }

  [[nodiscard]] const NSKeyTable& keyTable() const override;
  [[nodiscard]] std::string className() const override;
  /// `isEqual:`  An entry with equal fields.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// `copyWithZone:`  The receiver; for one on the stack, a new equal entry of its class.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

  /// `encodeWithCoder:`, `initWithCoder:`  Under "dayOfTheWeek" and "weekNumber".
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrenceDayOfWeek> initWithCoder(NSCoder& coder);
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  NSInteger dayOfTheWeek_;
  NSInteger weekNumber_;
};

}  // namespace ORLFoundation
