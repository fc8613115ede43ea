// How the classes of this folder are archived.

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceDayOfWeek.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceEnd.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceKeys.h>

#include <utility>

namespace ORLFoundation {

using namespace internal::recurrence;

namespace {

using Integers = ORLFDateRecurrenceRule::Integers;
using DaysOfTheWeek = ORLFDateRecurrenceRule::DaysOfTheWeek;

ORLFDateRecurrenceFrequency decodeFrequency(NSCoder& coder) {
  return static_cast<ORLFDateRecurrenceFrequency>(coder.decodeInteger(kFrequencyKey));
}

template <class List>
void encodeList(NSCoder& coder, const List& list, std::string_view key) {
  if (!list) return;
  coder.encodeObject(std::make_shared<NSArray>(std::vector<id>(list->begin(), list->end())), key);
}

// A list of members that `read` makes of each; nil when the key is missing.
template <class Member, class Read>
std::optional<std::vector<Member>> decodeList(NSCoder& coder, const id& value, Read&& read) {
  if (value.isNil()) return std::nullopt;
  const auto list = value.as<NSArray>();
  if (!list) {
    coder.failWithError("A list of a recurrence rule is none.");
    return std::nullopt;
  }
  std::vector<Member> members;
  members.reserve(list->count());
  for (const id& each : *list) {
    auto member = read(each);
    if (!member) coder.failWithError("A list of a recurrence rule holds a list.");
    if (!member) return std::nullopt;
    members.push_back(std::move(*member));
  }
  return members;
}

Integers decodeIntegers(NSCoder& coder, std::string_view key) {
  return decodeList<NSInteger>(coder, coder.decodeObjectOfClasses<NSNumber, NSArray>(key),
                               [](const id& member) { return member.as<NSInteger>(); });
}

DaysOfTheWeek decodeDays(NSCoder& coder, std::string_view key) {
  using Day = ORLFDateRecurrenceDayOfWeek;
  return decodeList<std::shared_ptr<Day>>(
      coder, coder.decodeObjectOfClasses<Day, NSArray>(key), [](const id& member) {
        auto day = member.as<Day>();
        return day ? std::optional(std::move(day)) : std::nullopt;
      });
}

}  // namespace

const NSCodingClass& ORLFDateRecurrencePeriod::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFDateRecurrencePeriod>("ORLFDateRecurrencePeriod");
  return record;
}

void ORLFDateRecurrencePeriod::encodeWithCoder(NSCoder& coder) const {
  coder.encodeInteger(frequency_, kFrequencyKey);
  coder.encodeInteger(interval_, kIntervalKey);
}

std::shared_ptr<ORLFDateRecurrencePeriod> ORLFDateRecurrencePeriod::initWithCoder(NSCoder& coder) {
  const ORLFDateRecurrenceFrequency frequency = decodeFrequency(coder);
  return std::make_shared<ORLFDateRecurrencePeriod>(frequency, coder.decodeInteger(kIntervalKey));
}

const NSCodingClass& ORLFDateRecurrenceDayOfWeek::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFDateRecurrenceDayOfWeek>("ORLFDateRecurrenceDayOfWeek");
  return record;
}

void ORLFDateRecurrenceDayOfWeek::encodeWithCoder(NSCoder& coder) const {
  coder.encodeInteger(dayOfTheWeek_, kDayOfTheWeekKey);
  coder.encodeInteger(weekNumber_, kWeekNumberKey);
}

std::shared_ptr<ORLFDateRecurrenceDayOfWeek> ORLFDateRecurrenceDayOfWeek::initWithCoder(
    NSCoder& coder) {
  const NSInteger day = coder.decodeInteger(kDayOfTheWeekKey);
  return std::make_shared<ORLFDateRecurrenceDayOfWeek>(day, coder.decodeInteger(kWeekNumberKey));
}

const NSCodingClass& ORLFDateRecurrenceEnd::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFDateRecurrenceEnd>("ORLFDateRecurrenceEnd");
  return record;
}

void ORLFDateRecurrenceEnd::encodeWithCoder(NSCoder& coder) const {
  if (endDate_) coder.encodeObject(endDate_, kEndDateKey);
  coder.encodeInteger(static_cast<NSInteger>(occurrenceCount_), kOccurrenceCountKey);
}

std::shared_ptr<ORLFDateRecurrenceEnd> ORLFDateRecurrenceEnd::initWithCoder(NSCoder& coder) {
  const auto endDate = coder.decodeObjectOfClass<NSDate>(kEndDateKey);
  const NSInteger count = coder.decodeInteger(kOccurrenceCountKey);
  return std::make_shared<ORLFDateRecurrenceEnd>(endDate, static_cast<NSUInteger>(count));
}

const NSCodingClass& ORLFDateRecurrenceRule::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFDateRecurrenceRule>("ORLFDateRecurrenceRule");
  return record;
}

void ORLFDateRecurrenceRule::encodeWithCoder(NSCoder& coder) const {
  coder.encodeInteger(fields_.frequency, kFrequencyKey);
  coder.encodeInteger(fields_.interval, kIntervalKey);
  coder.encodeInteger(fields_.anchorIndex, kAnchorIndexKey);
  coder.encodeBool(fields_.absolute, kAbsoluteKey);
  encodeList(coder, fields_.daysOfTheWeek, kDaysOfTheWeekKey);
  encodeList(coder, fields_.daysOfTheMonth, kDaysOfTheMonthKey);
  encodeList(coder, fields_.monthsOfTheYear, kMonthsOfTheYearKey);
  encodeList(coder, fields_.weeksOfTheYear, kWeeksOfTheYearKey);
  encodeList(coder, fields_.daysOfTheYear, kDaysOfTheYearKey);
  encodeList(coder, fields_.setPositions, kSetPositionsKey);
}

std::shared_ptr<ORLFDateRecurrenceRule> ORLFDateRecurrenceRule::initWithCoder(NSCoder& coder) {
  // Members of a braced list are evaluated in their order.
  return ruleWithFields({.frequency = decodeFrequency(coder),
                         .interval = coder.decodeInteger(kIntervalKey),
                         .anchorIndex = coder.decodeInteger(kAnchorIndexKey),
                         .absolute = coder.decodeBool(kAbsoluteKey),
                         .daysOfTheWeek = decodeDays(coder, kDaysOfTheWeekKey),
                         .daysOfTheMonth = decodeIntegers(coder, kDaysOfTheMonthKey),
                         .monthsOfTheYear = decodeIntegers(coder, kMonthsOfTheYearKey),
                         .weeksOfTheYear = decodeIntegers(coder, kWeeksOfTheYearKey),
                         .daysOfTheYear = decodeIntegers(coder, kDaysOfTheYearKey),
                         .setPositions = decodeIntegers(coder, kSetPositionsKey)});
}

}  // namespace ORLFoundation
