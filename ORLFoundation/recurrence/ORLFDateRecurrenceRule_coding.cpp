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
namespace {

using Integers = ORLFDateRecurrenceRule::Integers;
using DaysOfTheWeek = ORLFDateRecurrenceRule::DaysOfTheWeek;

ORLFDateRecurrenceFrequency decodeFrequency(NSCoder& coder) {
  return static_cast<ORLFDateRecurrenceFrequency>(coder.decodeInteger(internal::kFrequencyKey));
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
  coder.encodeInteger(frequency_, internal::kFrequencyKey);
  coder.encodeInteger(interval_, internal::kIntervalKey);
}

std::shared_ptr<ORLFDateRecurrencePeriod> ORLFDateRecurrencePeriod::initWithCoder(NSCoder& coder) {
  const ORLFDateRecurrenceFrequency frequency = decodeFrequency(coder);
  return std::make_shared<ORLFDateRecurrencePeriod>(frequency,
                                                    coder.decodeInteger(internal::kIntervalKey));
}

const NSCodingClass& ORLFDateRecurrenceDayOfWeek::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFDateRecurrenceDayOfWeek>("ORLFDateRecurrenceDayOfWeek");
  return record;
}

void ORLFDateRecurrenceDayOfWeek::encodeWithCoder(NSCoder& coder) const {
  coder.encodeInteger(dayOfTheWeek_, internal::kDayOfTheWeekKey);
  coder.encodeInteger(weekNumber_, internal::kWeekNumberKey);
}

std::shared_ptr<ORLFDateRecurrenceDayOfWeek> ORLFDateRecurrenceDayOfWeek::initWithCoder(
    NSCoder& coder) {
  const NSInteger day = coder.decodeInteger(internal::kDayOfTheWeekKey);
  return std::make_shared<ORLFDateRecurrenceDayOfWeek>(
      day, coder.decodeInteger(internal::kWeekNumberKey));
}

const NSCodingClass& ORLFDateRecurrenceEnd::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFDateRecurrenceEnd>("ORLFDateRecurrenceEnd");
  return record;
}

void ORLFDateRecurrenceEnd::encodeWithCoder(NSCoder& coder) const {
  if (endDate_) coder.encodeObject(endDate_, internal::kEndDateKey);
  coder.encodeInteger(static_cast<NSInteger>(occurrenceCount_), internal::kOccurrenceCountKey);
}

std::shared_ptr<ORLFDateRecurrenceEnd> ORLFDateRecurrenceEnd::initWithCoder(NSCoder& coder) {
  const auto endDate = coder.decodeObjectOfClass<NSDate>(internal::kEndDateKey);
  const NSInteger count = coder.decodeInteger(internal::kOccurrenceCountKey);
  return std::make_shared<ORLFDateRecurrenceEnd>(endDate, static_cast<NSUInteger>(count));
}

const NSCodingClass& ORLFDateRecurrenceRule::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFDateRecurrenceRule>("ORLFDateRecurrenceRule");
  return record;
}

void ORLFDateRecurrenceRule::encodeWithCoder(NSCoder& coder) const {
  coder.encodeInteger(fields_.frequency, internal::kFrequencyKey);
  coder.encodeInteger(fields_.interval, internal::kIntervalKey);
  coder.encodeInteger(fields_.anchorIndex, internal::kAnchorIndexKey);
  coder.encodeBool(fields_.absolute, internal::kAbsoluteKey);
  encodeList(coder, fields_.daysOfTheWeek, internal::kDaysOfTheWeekKey);
  encodeList(coder, fields_.daysOfTheMonth, internal::kDaysOfTheMonthKey);
  encodeList(coder, fields_.monthsOfTheYear, internal::kMonthsOfTheYearKey);
  encodeList(coder, fields_.weeksOfTheYear, internal::kWeeksOfTheYearKey);
  encodeList(coder, fields_.daysOfTheYear, internal::kDaysOfTheYearKey);
  encodeList(coder, fields_.setPositions, internal::kSetPositionsKey);
}

std::shared_ptr<ORLFDateRecurrenceRule> ORLFDateRecurrenceRule::initWithCoder(NSCoder& coder) {
  // Members of a braced list are evaluated in their order.
  return ruleWithFields({.frequency = decodeFrequency(coder),
                         .interval = coder.decodeInteger(internal::kIntervalKey),
                         .anchorIndex = coder.decodeInteger(internal::kAnchorIndexKey),
                         .absolute = coder.decodeBool(internal::kAbsoluteKey),
                         .daysOfTheWeek = decodeDays(coder, internal::kDaysOfTheWeekKey),
                         .daysOfTheMonth = decodeIntegers(coder, internal::kDaysOfTheMonthKey),
                         .monthsOfTheYear = decodeIntegers(coder, internal::kMonthsOfTheYearKey),
                         .weeksOfTheYear = decodeIntegers(coder, internal::kWeeksOfTheYearKey),
                         .daysOfTheYear = decodeIntegers(coder, internal::kDaysOfTheYearKey),
                         .setPositions = decodeIntegers(coder, internal::kSetPositionsKey)});
}

}  // namespace ORLFoundation
