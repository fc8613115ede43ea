#include <ORLFoundation/platform/format/internal/ZoneBridge.h>

#include <ORLFoundation/platform/base/CivilDays.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace ORLFoundation::internal::format {

namespace civil = base::civil;

namespace {

constexpr double kMillisecondsOfSecond = 1000;
constexpr double kSecondsOfDay = civil::kSecondsPerDay;
constexpr NSInteger kSecondsOfHour = 3600;
// Longer than any offset of a zone, in seconds.
constexpr double kLargestOffset = 26 * 3600.0;
// A time that lasts longer is no season's.
constexpr double kLongestSeason = 400 * kSecondsOfDay;

NSDate dateOf(double seconds) { return NSDate::dateWithTimeIntervalSince1970(seconds); }

// One stretch of a zone's time beside another.
struct Neighbour {
  NSInteger offset;
  bool daylight;
};

using Neighbours = std::array<std::optional<Neighbour>, 2>;

Neighbours neighboursOf(const NSTimeZone& zone, const NSTimeZone::OffsetStretch& stretch) {
  const auto at = [&zone](double seconds) -> std::optional<Neighbour> {
    if (!std::isfinite(seconds)) return std::nullopt;
    const NSDate date = dateOf(seconds);
    return Neighbour{zone.secondsFromGMTForDate(date), zone.isDaylightSavingTimeForDate(date)};
  };
  return {at(stretch.begin - 1), at(stretch.end)};
}

// What a time that is called daylight saving adds to the standard time beside it. Nothing where it
// takes away (winter in Dublin): the standard time is then told as the one that adds.
NSInteger savingOfDaylight(NSInteger offset, const Neighbours& neighbours) {
  bool takesAway = false;
  for (const auto& neighbour : neighbours) {
    if (!neighbour || neighbour->daylight) continue;
    if (offset > neighbour->offset) return offset - neighbour->offset;
    takesAway = takesAway || offset < neighbour->offset;
  }
  return takesAway ? 0 : kSecondsOfHour;
}

// What a standard time adds to a daylight saving time that takes away, 0 where there is none.
NSInteger savingOfStandard(NSInteger offset, const Neighbours& neighbours) {
  for (const auto& neighbour : neighbours) {
    if (!neighbour || !neighbour->daylight) continue;
    const NSInteger saving = offset - neighbour->offset;
    if (saving > 0 && saving <= kSecondsOfHour) return saving;
  }
  return 0;
}

std::int32_t millisecondsOf(NSInteger seconds) { return static_cast<std::int32_t>(seconds * 1000); }

}  // namespace

ZoneBridge::ZoneBridge(std::shared_ptr<NSTimeZone> zone)
    : icu::SimpleTimeZone(0, icu::UnicodeString::fromUTF8(zone->name())), zone_(std::move(zone)) {}

double ZoneBridge::instantOfLocal(double localSeconds) const noexcept {
  // From a stretch that is certainly not too late on to the first that shows the time or a later
  // one; a time in the gap before that stretch counts as in the stretch before it.
  NSTimeZone::OffsetStretch stretch =
      zone_->offsetStretchForDate(dateOf(localSeconds - kLargestOffset));
  NSInteger before = stretch.secondsFromGMT;
  while (localSeconds - static_cast<double>(stretch.secondsFromGMT) >= stretch.end &&
         stretch.begin < stretch.end) {
    before = stretch.secondsFromGMT;
    stretch = zone_->offsetStretchForDate(dateOf(stretch.end));
  }
  const double instant = localSeconds - static_cast<double>(stretch.secondsFromGMT);
  return instant < stretch.begin ? localSeconds - static_cast<double>(before) : instant;
}

ZoneBridge::Parts ZoneBridge::partsAt(double seconds) const noexcept {
  const NSDate date = dateOf(seconds);
  const NSTimeZone::OffsetStretch stretch = zone_->offsetStretchForDate(date);
  const NSInteger offset = stretch.secondsFromGMT;
  const bool daylight = zone_->isDaylightSavingTimeForDate(date);
  if (!daylight && !(stretch.end - stretch.begin < kLongestSeason)) return {offset, 0};
  const Neighbours neighbours = neighboursOf(*zone_, stretch);
  const NSInteger saving =
      daylight ? savingOfDaylight(offset, neighbours) : savingOfStandard(offset, neighbours);
  return {offset - saving, saving};
}

// The offset that leads from the local time to its instant: in a gap that before the change.
ZoneBridge::Parts ZoneBridge::partsAtLocal(double seconds) const noexcept {
  const double instant = instantOfLocal(seconds);
  const Parts parts = partsAt(instant);
  if (instant + static_cast<double>(parts.standard + parts.saving) == seconds) return parts;
  const NSTimeZone::OffsetStretch after = zone_->offsetStretchForDate(dateOf(instant));
  return after.begin < after.end ? partsAt(after.begin - 1) : parts;
}

icu::TimeZoneTransition ZoneBridge::changeAt(double seconds) const {
  const auto ruleAt = [this](double at) {
    const Parts parts = partsAt(at);
    return icu::InitialTimeZoneRule(icu::UnicodeString(), millisecondsOf(parts.standard),
                                    millisecondsOf(parts.saving));
  };
  return {seconds * kMillisecondsOfSecond, ruleAt(seconds - 1), ruleAt(seconds)};
}

UBool ZoneBridge::getNextTransition(UDate base, UBool inclusive,
                                    icu::TimeZoneTransition& result) const {
  const NSTimeZone::OffsetStretch stretch =
      zone_->offsetStretchForDate(dateOf(base / kMillisecondsOfSecond));
  const bool isChange = inclusive != 0 && stretch.begin * kMillisecondsOfSecond == base;
  const double change = isChange ? stretch.begin : stretch.end;
  if (!std::isfinite(change) || stretch.begin == stretch.end) return 0;
  result = changeAt(change);
  return 1;
}

UBool ZoneBridge::getPreviousTransition(UDate base, UBool inclusive,
                                        icu::TimeZoneTransition& result) const {
  NSTimeZone::OffsetStretch stretch =
      zone_->offsetStretchForDate(dateOf(base / kMillisecondsOfSecond));
  if (inclusive == 0 && stretch.begin * kMillisecondsOfSecond == base)
    stretch = zone_->offsetStretchForDate(dateOf(stretch.begin - 1));
  if (!std::isfinite(stretch.begin) || stretch.begin == stretch.end) return 0;
  result = changeAt(stretch.begin);
  return 1;
}

std::int32_t ZoneBridge::getOffset(std::uint8_t era, std::int32_t year, std::int32_t month,
                                   std::int32_t day, std::uint8_t dayOfWeek,
                                   std::int32_t milliseconds, std::int32_t /*monthLength*/,
                                   UErrorCode& status) const {
  return getOffset(era, year, month, day, dayOfWeek, milliseconds, status);
}

std::int32_t ZoneBridge::getOffset(std::uint8_t era, std::int32_t year, std::int32_t month,
                                   std::int32_t day, std::uint8_t dayOfWeek,
                                   std::int32_t milliseconds, std::int32_t /*monthLength*/,
                                   std::int32_t /*prevMonthLength*/, UErrorCode& status) const {
  return getOffset(era, year, month, day, dayOfWeek, milliseconds, status);
}

// The day is told in the Gregorian calendar, in the zone's standard time.
std::int32_t ZoneBridge::getOffset(std::uint8_t era, std::int32_t year, std::int32_t month,
                                   std::int32_t day, std::uint8_t /*dayOfWeek*/,
                                   std::int32_t milliseconds, UErrorCode& status) const {
  if (U_FAILURE(status)) return 0;
  if (month < 0 || month > 11 || std::abs(std::int64_t{year}) >= civil::kMaxYear) {
    status = U_ILLEGAL_ARGUMENT_ERROR;
    return 0;
  }
  const auto days =
      static_cast<double>(civil::dayFromDate(era == 0 ? 1 - year : year, month + 1, day));
  std::int32_t standard = 0;
  std::int32_t saving = 0;
  getOffset(days * kSecondsOfDay * kMillisecondsOfSecond + milliseconds - getRawOffset(), 0,
            standard, saving, status);
  return standard + saving;
}

void ZoneBridge::getOffset(UDate date, UBool local, std::int32_t& standard, std::int32_t& saving,
                           UErrorCode& status) const {
  standard = saving = 0;
  if (U_FAILURE(status)) return;
  const double seconds = std::floor(date / kMillisecondsOfSecond);
  const Parts parts = local != 0 ? partsAtLocal(seconds) : partsAt(seconds);
  standard = millisecondsOf(parts.standard);
  saving = millisecondsOf(parts.saving);
}

void ZoneBridge::getOffsetFromLocal(UDate date, UTimeZoneLocalOption /*nonExistingTimeOpt*/,
                                    UTimeZoneLocalOption /*duplicatedTimeOpt*/,
                                    std::int32_t& standard, std::int32_t& saving,
                                    UErrorCode& status) const {
  getOffset(date, 1, standard, saving, status);
}

void ZoneBridge::setRawOffset(std::int32_t /*milliseconds*/) {}

std::int32_t ZoneBridge::getRawOffset() const {
  return millisecondsOf(partsAt(NSDate::date().timeIntervalSince1970()).standard);
}

UBool ZoneBridge::useDaylightTime() const {
  const NSDate now = NSDate::date();
  if (partsAt(now.timeIntervalSince1970()).saving != 0) return 1;
  const auto next = zone_->nextDaylightSavingTimeTransitionAfterDate(now);
  return next && partsAt(next->timeIntervalSince1970()).saving != 0 ? 1 : 0;
}

UBool ZoneBridge::inDaylightTime(UDate date, UErrorCode& status) const {
  if (U_FAILURE(status)) return 0;
  return partsAt(std::floor(date / kMillisecondsOfSecond)).saving != 0 ? 1 : 0;
}

UBool ZoneBridge::hasSameRules(const icu::TimeZone& other) const {
  const auto* bridge = dynamic_cast<const ZoneBridge*>(&other);
  return bridge != nullptr && bridge->zone_->isEqual(zone_.get()) ? 1 : 0;
}

ZoneBridge* ZoneBridge::clone() const { return new ZoneBridge(*this); }

UClassID ZoneBridge::getStaticClassID() {
  static char own = 0;
  return &own;
}

UClassID ZoneBridge::getDynamicClassID() const { return getStaticClassID(); }

std::unique_ptr<icu::TimeZone> icuZone(const std::shared_ptr<NSTimeZone>& zone) {
  return std::make_unique<ZoneBridge>(zone ? zone : NSTimeZone::defaultTimeZone());
}

}  // namespace ORLFoundation::internal::format
