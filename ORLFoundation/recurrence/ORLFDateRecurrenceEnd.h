/// When a recurrence stops: at a date, which is itself no longer delivered, or after a number of
/// dates. The end date decides which of the two it is; there is no other mark.
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

class ORLFDateRecurrenceEnd : public NSObject, public NSSecureCoding {
 public:
  /// `initEndWithEndDate:`
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrenceEnd> initEndWithEndDate(
      std::optional<NSDate> endDate);
  /// `initEndWithOccurrenceCount:`
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrenceEnd> initEndWithOccurrenceCount(
      NSUInteger occurrenceCount);

  /// The limit by date; nil when the end is by count.
  [[nodiscard]] const std::optional<NSDate>& endDate() const noexcept { return endDate_; }
  void setEndDate(std::optional<NSDate> endDate);
  /// The limit by count, read only where there is no end date.
  [[nodiscard]] NSUInteger occurrenceCount() const noexcept { return occurrenceCount_; }
  void setOccurrenceCount(NSUInteger occurrenceCount);

  /// `shouldEndForDate:count:backwards:`  Whether to stop before this date, when `count` dates were
  /// delivered already. A date on the end date stops in either direction. A nil date with an end
  /// date fails a condition, which is logged, and stops.
  [[nodiscard]] bool shouldEndForDate(std::optional<NSDate> date, NSInteger count,
                                      bool backwards) const;
  /// The same of a date that is there, for walks that ask before each.
  [[nodiscard]] bool shouldEndForDate(NSDate date, NSInteger count, bool backwards) const {
    return endDate_ ? isReachedBy(date, backwards)
                    : static_cast<NSUInteger>(count) >= occurrenceCount_;
  }

  [[nodiscard]] const NSKeyTable& keyTable() const override;
  [[nodiscard]] std::string className() const override;
  /// `isEqual:`  By end date where the receiver has one, else by count alone: an end after 0 dates
  /// equals an end by any date, though not the other way round. This lopsided test is required.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// `copyWithZone:`  The receiver, although it has setters; for one on the stack, a new equal end
  /// of its class.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

  /// `encodeWithCoder:`, `initWithCoder:`  Under "endDate", which may be missing, and
  /// "occurrenceCount".
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrenceEnd> initWithCoder(NSCoder& coder);
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

  /// Use the two named operations above.
  ORLFDateRecurrenceEnd(std::optional<NSDate> endDate, NSUInteger occurrenceCount);

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  [[nodiscard]] bool isReachedBy(NSDate date, bool backwards) const;

  std::optional<NSDate> endDate_;
  NSUInteger occurrenceCount_;
};

}  // namespace ORLFoundation
