/// A zone of civil time: its offsets from GMT at every instant, from the system's zoneinfo, with
/// the rule that continues after the last listed change. Each zone is read once per process into an
/// immutable table; a zone object is shared and safe on any thread.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

namespace internal::time {
class ZoneTable;
}

class NSTimeZone : public NSObject {
 public:
  /// A stretch of time in which the zone keeps one offset.
  struct OffsetStretch {
    /// Seconds since 1970, from the first instant up to the one that is no longer in it; infinite
    /// where no clock change bounds it.
    NSTimeInterval begin;
    NSTimeInterval end;
    NSInteger secondsFromGMT;
  };

  /// `timeZoneWithName:`  "America/New_York", "UTC", "GMT+0530"; nil for a name that is unknown.
  /// Every call with one name gives the same object.
  [[nodiscard]] static std::shared_ptr<NSTimeZone> timeZoneWithName(std::string_view name);
  /// `timeZoneForSecondsFromGMT:`  Named "GMT+0530"; nil beyond 18 hours on either side.
  [[nodiscard]] static std::shared_ptr<NSTimeZone> timeZoneForSecondsFromGMT(NSInteger seconds);
  /// `systemTimeZone`  From TZ, which may hold a name, a path or a POSIX text, or from the
  /// machine's own file, /etc/localtime; where TZ tells no zone a line in the log says so. UTC,
  /// with a line in the log, when neither can be read.
  [[nodiscard]] static std::shared_ptr<NSTimeZone> systemTimeZone();
  /// `defaultTimeZone`  The zone of calendars that were given none; `systemTimeZone` until set.
  [[nodiscard]] static std::shared_ptr<NSTimeZone> defaultTimeZone();
  /// `setDefaultTimeZone:`  nil restores `systemTimeZone`.
  static void setDefaultTimeZone(std::shared_ptr<NSTimeZone> zone);

  /// `name`
  [[nodiscard]] const std::string& name() const noexcept;
  /// `secondsFromGMTForDate:`  0 for a date that is not finite or too far away to count with.
  [[nodiscard]] NSInteger secondsFromGMTForDate(NSDate date) const noexcept;
  /// `isDaylightSavingTimeForDate:`
  [[nodiscard]] bool isDaylightSavingTimeForDate(NSDate date) const noexcept;
  /// `nextDaylightSavingTimeTransitionAfterDate:`  The next change of the zone's clock; nil when
  /// none follows.
  [[nodiscard]] std::optional<NSDate> nextDaylightSavingTimeTransitionAfterDate(NSDate date) const;

  /// The stretch of one offset that holds the date. For callers that convert many dates: within it
  /// they need not ask again. A date that is not finite gives an empty stretch at offset 0.
  [[nodiscard]] OffsetStretch offsetStretchForDate(NSDate date) const noexcept;

  std::string className() const override;
  bool isEqual(const NSObject* other) const override;
  NSUInteger hash() const override;
  std::string description() const override;
  std::shared_ptr<NSObject> copy() override;

  /// The immutable table behind the zone, for calendars.
  [[nodiscard]] const internal::time::ZoneTable& table() const noexcept { return *table_; }

  /// Use one of the operations above.
  NSTimeZone(std::string name, std::shared_ptr<const internal::time::ZoneTable> table);

 private:
  std::string name_;
  std::shared_ptr<const internal::time::ZoneTable> table_;
};

}  // namespace ORLFoundation
