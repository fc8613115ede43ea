/// Our zones as ICU takes them: the offsets are those of the zone's own table, the names those that
/// ICU knows under the zone's identifier. Every formatter of dates gets its zone through this,
/// since ICU's own rules of clock changes are older than the system's.
///
///     format->adoptTimeZone(icuZone(NSTimeZone::defaultTimeZone()).release());
#pragma once

#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <unicode/simpletz.h>
#include <unicode/tztrans.h>

#include <cstdint>
#include <memory>

namespace ORLFoundation::internal::format {

/// Never changes, so that it may be read on any thread. A local time that is doubled is its first
/// occurrence; one that a clock change leaves out counts with the offset before the change, which
/// moves it on by the length of the gap.
///
/// ICU finds a zone's clock changes, which decide the names of its kind of time, only where the
/// zone is one of four kinds of its own. Of the simple one, which this stands for, nothing is used.
class ZoneBridge final : public icu::SimpleTimeZone {
 public:
  /// The zone is not nil.
  explicit ZoneBridge(std::shared_ptr<NSTimeZone> zone);

  [[nodiscard]] const std::shared_ptr<NSTimeZone>& zone() const noexcept { return zone_; }
  /// Seconds since 1970 of a local time, told in seconds as if its clock were GMT's.
  [[nodiscard]] double instantOfLocal(double localSeconds) const noexcept;

  std::int32_t getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                         std::uint8_t dayOfWeek, std::int32_t milliseconds,
                         UErrorCode& status) const override;
  std::int32_t getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                         std::uint8_t dayOfWeek, std::int32_t milliseconds,
                         std::int32_t monthLength, UErrorCode& status) const override;
  std::int32_t getOffset(std::uint8_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                         std::uint8_t dayOfWeek, std::int32_t milliseconds,
                         std::int32_t monthLength, std::int32_t prevMonthLength,
                         UErrorCode& status) const override;
  void getOffset(UDate date, UBool local, std::int32_t& standard, std::int32_t& saving,
                 UErrorCode& status) const override;
  /// Whatever the options: as told above.
  void getOffsetFromLocal(UDate date, UTimeZoneLocalOption nonExistingTimeOpt,
                          UTimeZoneLocalOption duplicatedTimeOpt, std::int32_t& standard,
                          std::int32_t& saving, UErrorCode& status) const override;
  UBool getNextTransition(UDate base, UBool inclusive,
                          icu::TimeZoneTransition& result) const override;
  UBool getPreviousTransition(UDate base, UBool inclusive,
                              icu::TimeZoneTransition& result) const override;
  /// Does nothing: the zone's rules are what they are.
  void setRawOffset(std::int32_t milliseconds) override;
  std::int32_t getRawOffset() const override;
  UBool useDaylightTime() const override;
  UBool inDaylightTime(UDate date, UErrorCode& status) const override;
  UBool hasSameRules(const icu::TimeZone& other) const override;
  ZoneBridge* clone() const override;
  static UClassID getStaticClassID();
  UClassID getDynamicClassID() const override;

 private:
  /// What ICU wants apart: the standard offset and what daylight saving time adds, in seconds.
  struct Parts {
    NSInteger standard;
    NSInteger saving;
  };
  [[nodiscard]] Parts partsAt(double seconds) const noexcept;
  [[nodiscard]] Parts partsAtLocal(double seconds) const noexcept;
  [[nodiscard]] icu::TimeZoneTransition changeAt(double seconds) const;

  std::shared_ptr<NSTimeZone> zone_;
};

/// nil is the default zone.
[[nodiscard]] std::unique_ptr<icu::TimeZone> icuZone(const std::shared_ptr<NSTimeZone>& zone);

}  // namespace ORLFoundation::internal::format
