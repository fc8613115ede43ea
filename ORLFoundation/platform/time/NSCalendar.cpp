
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <ORLFoundation/platform/time/internal/CalendarArithmetic.h>
#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <ORLFoundation/platform/time/internal/CalendarRanges.h>
#include <ORLFoundation/platform/time/internal/CalendarSearch.h>
#include <ORLFoundation/platform/time/internal/LocaleWeek.h>
#include <ORLFoundation/platform/time/internal/OtherCalendar.h>

#include <functional>
#include <utility>

namespace ORLFoundation {

using namespace internal::time;

namespace {

constexpr NSUInteger kDayAndWeekUnits = NSCalendarUnitDay | NSCalendarUnitWeekday |
                                        NSCalendarUnitWeekdayOrdinal | NSCalendarUnitWeekOfMonth |
                                        NSCalendarUnitWeekOfYear | NSCalendarUnitWeek;

constexpr LocaleWeek kWorldsWeek;

NSDate notADate() noexcept { return dateFromInstant(Instant::none()); }

}  // namespace

NSCalendar::NSCalendar(std::string identifier, std::shared_ptr<NSTimeZone> zone)
    : other_(OtherCalendar::withIdentifier(identifier)), identifier_(std::move(identifier)) {
  setTimeZone(std::move(zone));
  if (identifier_ != NSCalendarIdentifierISO8601) return;
  setFirstWeekday(2);
  setMinimumDaysInFirstWeek(4);
}

std::shared_ptr<NSCalendar> NSCalendar::initWithCalendarIdentifier(std::string_view identifier) {
  const bool isKnown = identifier == NSCalendarIdentifierGregorian ||
                       identifier == NSCalendarIdentifierISO8601 ||
                       OtherCalendar::withIdentifier(identifier) != nullptr;
  if (!isKnown) return nullptr;
  return std::make_shared<NSCalendar>(std::string(identifier), NSTimeZone::defaultTimeZone());
}

const std::string& NSCalendar::calendarIdentifier() const noexcept { return identifier_; }

const std::shared_ptr<NSTimeZone>& NSCalendar::timeZone() const noexcept { return zone_; }

void NSCalendar::setTimeZone(std::shared_ptr<NSTimeZone> zone) {
  zone_ = zone ? std::move(zone) : NSTimeZone::defaultTimeZone();
  rules_.zone = &zone_->table();
}

NSInteger NSCalendar::firstWeekday() const noexcept { return rules_.firstWeekday; }

void NSCalendar::setFirstWeekday(NSInteger weekday) {
  if (weekday < 1 || weekday > 7) return;
  rules_.firstWeekday = static_cast<std::int32_t>(weekday);
  hasFirstWeekday_ = true;
}

NSInteger NSCalendar::minimumDaysInFirstWeek() const noexcept { return rules_.minimumDays; }

void NSCalendar::setMinimumDaysInFirstWeek(NSInteger days) {
  if (days < 1 || days > 7) return;
  rules_.minimumDays = static_cast<std::int32_t>(days);
  hasMinimumDays_ = true;
}

const std::string& NSCalendar::localeIdentifier() const noexcept { return localeIdentifier_; }

void NSCalendar::setLocaleIdentifier(std::string identifier) {
  localeIdentifier_ = std::move(identifier);
  localeWeek_ = localeIdentifier_.empty()
                    ? nullptr
                    : std::make_shared<const LocaleWeek>(weekOfLocale(localeIdentifier_));
  const LocaleWeek& week = localeWeek_ ? *localeWeek_ : kWorldsWeek;
  if (!hasFirstWeekday_) rules_.firstWeekday = week.firstWeekday;
  if (!hasMinimumDays_) rules_.minimumDays = week.minimumDays;
}

NSDateComponents NSCalendar::components(NSUInteger unitFlags, NSDate fromDate) const noexcept {
  Instant instant;
  if (!splitDate(fromDate, instant)) return {};
  if (other_) return other_->fieldsOfInstant(rules_, unitFlags, instant);
  return fieldsOfInstant(rules_, unitFlags, instant);
}

NSInteger NSCalendar::component(NSCalendarUnit unit, NSDate fromDate) const noexcept {
  Instant instant;
  if (!splitDate(fromDate, instant)) return NSDateComponentUndefined;
  if (other_) return other_->fieldsOfInstant(rules_, unit, instant).valueForComponent(unit);
  return fieldOfInstant(rules_, unit, instant);
}

NSDateComponents NSCalendar::components(NSUInteger unitFlags, NSDate fromDate, NSDate toDate,
                                        NSUInteger options) const noexcept {
  Instant from;
  Instant to;
  if (!splitDate(fromDate, from) || !splitDate(toDate, to)) return {};
  if ((options & NSCalendarWrapComponents) != 0 && (unitFlags & ~kDayAndWeekUnits) == 0)
    return differenceInDaysThatWere(rules_, unitFlags, from, to);
  if (other_) return other_->differenceOfInstants(rules_, unitFlags, from, to);
  return differenceOfInstants(rules_, unitFlags, from, to);
}

NSDate NSCalendar::addUnitToDate(NSCalendarUnit unit, NSInteger value, NSDate toDate,
                                 NSUInteger options) const noexcept {
  Instant to;
  if (!splitDate(toDate, to)) return notADate();
  const bool wrap = (options & NSCalendarWrapComponents) != 0;
  if (other_) return dateFromInstant(other_->addUnit(rules_, unit, value, to, wrap));
  return dateFromInstant(wrap ? addUnitWrapping(rules_, unit, value, to)
                              : addUnit(rules_, unit, value, to));
}

NSDate NSCalendar::addComponentsToDate(const NSDateComponents& components, NSDate toDate,
                                       NSUInteger options) const noexcept {
  Instant to;
  if (!splitDate(toDate, to)) return notADate();
  const bool wrap = (options & NSCalendarWrapComponents) != 0;
  if (other_) return dateFromInstant(other_->addFields(rules_, components, to, wrap));
  return dateFromInstant(addFields(rules_, components, to, wrap));
}

NSDate NSCalendar::resolveComponents(const NSDateComponents& components) const noexcept {
  if (other_) return dateFromInstant(other_->instantFromFields(rules_, components));
  return dateFromInstant(instantFromFields(rules_, components));
}

NSDate NSCalendar::setUnitOfDate(NSCalendarUnit unit, NSInteger value, NSDate ofDate,
                                 NSUInteger options) const noexcept {
  Instant of;
  if (!splitDate(ofDate, of)) return notADate();
  const bool strict = (options & NSCalendarMatchStrictly) != 0;
  if (other_) return dateFromInstant(other_->instantBySettingUnit(rules_, unit, value, of, strict));
  return dateFromInstant(instantBySettingUnit(rules_, unit, value, of, strict));
}

bool NSCalendar::rangeOfUnit(NSCalendarUnit unit, NSDate* startDate, NSTimeInterval* interval,
                             NSDate forDate) const noexcept {
  Instant instant;
  if (!splitDate(forDate, instant)) return false;
  const InstantRange range = other_ ? other_->rangeAroundInstant(rules_, unit, instant)
                                    : rangeAroundInstant(rules_, unit, instant);
  if (!range.start.exists()) return false;
  if (startDate) *startDate = dateFromInstant(range.start);
  if (interval) *interval = range.length;
  return true;
}

NSRange NSCalendar::rangeOfUnit(NSCalendarUnit unit, NSCalendarUnit inUnit,
                                NSDate forDate) const noexcept {
  Instant instant;
  if (!splitDate(forDate, instant)) return {static_cast<NSUInteger>(NSNotFound), 0};
  if (other_) return other_->rangeWithin(rules_, unit, inUnit, instant);
  return rangeWithin(rules_, unit, inUnit, instant);
}

NSRange NSCalendar::maximumRangeOfUnit(NSCalendarUnit unit) const noexcept {
  if (other_) return other_->largestRange(rules_, unit);
  return largestRange(rules_, unit);
}

NSRange NSCalendar::minimumRangeOfUnit(NSCalendarUnit unit) const noexcept {
  if (other_) return other_->smallestRange(rules_, unit);
  return smallestRange(rules_, unit);
}

bool NSCalendar::date(NSDate date, const NSDateComponents& matchesComponents) const noexcept {
  Instant instant;
  if (!splitDate(date, instant)) return false;
  return other_ ? other_->matchesFields(rules_, matchesComponents, instant)
                : matchesFields(rules_, matchesComponents, instant);
}

NSDate NSCalendar::findDateAfterDate(NSDate date, const NSDateComponents& matchingComponents,
                                     NSUInteger options) const noexcept {
  Instant from;
  if (!splitDate(date, from)) return notADate();
  const bool backward = (options & NSCalendarSearchBackwards) != 0;
  const bool strict = (options & NSCalendarMatchNextTime) == 0;
  return dateFromInstant(
      other_ ? other_->nearestMatch(rules_, matchingComponents, from, backward, strict)
             : nearestMatch(rules_, matchingComponents, from, backward, strict));
}

NSDate NSCalendar::resolveValidComponents(const NSDateComponents& components) const noexcept {
  if (!other_) return dateFromInstant(instantIfValid(rules_, components));
  return other_->areFieldsValid(rules_, components) ? resolveComponents(components) : notADate();
}

bool NSCalendar::isDateInWeekend(NSDate date) const noexcept {
  Instant instant;
  if (!splitDate(date, instant)) return false;
  const civil::DayTime local = localDayTime(rules_, instant.seconds);
  const auto weekday = static_cast<std::size_t>(civil::weekdayOfDay(local.day) - 1);
  const LocaleWeek& week = localeWeek_ ? *localeWeek_ : kWorldsWeek;
  return local.second >= week.weekendFrom[weekday] && local.second < week.weekendTo[weekday];
}

std::string NSCalendar::className() const { return "NSCalendar"; }

bool NSCalendar::isEqual(const NSObject* other) const {
  const auto* calendar = dynamic_cast<const NSCalendar*>(other);
  return calendar && calendar->identifier_ == identifier_ &&
         calendar->localeIdentifier_ == localeIdentifier_ &&
         calendar->rules_.firstWeekday == rules_.firstWeekday &&
         calendar->rules_.minimumDays == rules_.minimumDays &&
         calendar->zone_->isEqual(zone_.get());
}

NSUInteger NSCalendar::hash() const {
  return std::hash<std::string>{}(identifier_) ^ zone_->hash();
}

std::string NSCalendar::description() const {
  return "<NSCalendar: " + identifier_ + ", " + zone_->name() + ">";
}

std::shared_ptr<NSObject> NSCalendar::copy() {
  auto calendar = std::make_shared<NSCalendar>(identifier_, zone_);
  calendar->rules_ = rules_;
  calendar->hasFirstWeekday_ = hasFirstWeekday_;
  calendar->hasMinimumDays_ = hasMinimumDays_;
  calendar->localeWeek_ = localeWeek_;
  calendar->localeIdentifier_ = localeIdentifier_;
  return calendar;
}

}  // namespace ORLFoundation
