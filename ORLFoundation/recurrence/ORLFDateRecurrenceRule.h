/// A rule that says when something recurs: a frequency, an interval, and lists that narrow or
/// multiply the dates within each period. A rule holds no calendar; the calendar that an operation
/// is given decides what the dates are.
///
///     const auto rule = std::make_shared<ORLFDateRecurrenceRule>(
///         ORLFDateRecurrenceRule::Recurrence{.frequency = ORLFDateRecurrenceFrequencyMonthly,
///                                            .daysOfTheMonth = {{1, 15}}});
///     rule->enumerateDatesForCalendarStartDate(
///         {.calendar = *calendar,
///          .startDate = start,
///          .end = ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(12)},
///         [&](NSDate date, NSUInteger, bool&) { dates.push_back(date); });
///
/// Rules are shared freely between threads. ORLFCalendarRecurrence.h asks the questions that most
/// callers have: the dates in a range, the next date, whether a date belongs to the rule.
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceBlock.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceDayOfWeek.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceEnd.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceFrequency.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSCalendar;
class NSDateComponents;

class ORLFDateRecurrenceRule : public NSObject, public NSSecureCoding {
 public:
  using Integers = std::optional<std::vector<NSInteger>>;
  using DaysOfTheWeek = std::optional<std::vector<std::shared_ptr<ORLFDateRecurrenceDayOfWeek>>>;
  /// Patterns of dates: sets of calendar fields, in order.
  using WorkingSet = std::vector<NSDateComponents>;

  /// The ten fields of a rule, in the order of the full initializer. Each list may be nil; its
  /// members are not, and null ones are left out.
  struct Recurrence {
    ORLFDateRecurrenceFrequency frequency = ORLFDateRecurrenceFrequencyMonthly;
    NSInteger interval = 1;
    /// The slot, 1 to `interval`, that the dates of an absolute rule fall in.
    NSInteger anchorIndex = 0;
    /// Whether the phase counts from the universal anchor date and not from the reference date.
    bool absolute = false;
    DaysOfTheWeek daysOfTheWeek = std::nullopt;
    Integers daysOfTheMonth = std::nullopt;
    /// January is 1, also on a quarterly rule.
    Integers monthsOfTheYear = std::nullopt;
    Integers weeksOfTheYear = std::nullopt;
    Integers daysOfTheYear = std::nullopt;
    /// Positions within a period's dates; only the older enumeration heeds them.
    Integers setPositions = std::nullopt;
  };

  /// What one main enumeration takes, beside its block.
  struct EnumerateDatesStartDate {
    const NSCalendar& calendar;
    NSDate startDate;
    std::shared_ptr<ORLFDateRecurrenceEnd> end = nullptr;
    bool backwards = false;
    bool exactPatternMatch = false;
  };
  /// What one older enumeration takes, beside its block.
  struct EnumerateDatesRefernceDate {
    const NSCalendar& calendar;
    std::optional<NSDate> refernceDate;
    std::shared_ptr<ORLFDateRecurrenceEnd> end = nullptr;
    bool backwards = false;
  };

  /// `initRecurrenceWithFrequency:interval:`  A simple rule; its anchor is the interval.
  ORLFDateRecurrenceRule(ORLFDateRecurrenceFrequency frequency, NSInteger interval);
  /// `initRecurrenceWithFrequency:interval:anchorIndex:absolute:daysOfTheWeek:daysOfTheMonth:monthsOfTheYear:weeksOfTheYear:daysOfTheYear:setPositions:`
  /// Empty lists become nil. The anchor is brought into 1 to `interval`: positive ones wrap, 0 and
  /// -1 are the last slot, -2 the one before it. Do not pass an interval of 0 with a positive
  /// anchor (the anchor becomes 1).
  explicit ORLFDateRecurrenceRule(Recurrence recurrence);
  /// A rule that holds the fields as they are, for copies and for rules read from an archive:
  /// nothing is normalized, and an empty list stays one.
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrenceRule> ruleWithFields(Recurrence fields);

  // Each reads the field of its name.
  [[nodiscard]] ORLFDateRecurrenceFrequency frequency() const noexcept { return fields_.frequency; }
  [[nodiscard]] NSInteger interval() const noexcept { return fields_.interval; }
  [[nodiscard]] NSInteger anchorIndex() const noexcept { return fields_.anchorIndex; }
  [[nodiscard]] bool absolute() const noexcept { return fields_.absolute; }
  [[nodiscard]] const DaysOfTheWeek& daysOfTheWeek() const noexcept {
    return fields_.daysOfTheWeek;
  }
  [[nodiscard]] const Integers& daysOfTheMonth() const noexcept { return fields_.daysOfTheMonth; }
  [[nodiscard]] const Integers& daysOfTheYear() const noexcept { return fields_.daysOfTheYear; }
  [[nodiscard]] const Integers& weeksOfTheYear() const noexcept { return fields_.weeksOfTheYear; }
  [[nodiscard]] const Integers& monthsOfTheYear() const noexcept { return fields_.monthsOfTheYear; }
  [[nodiscard]] const Integers& setPositions() const noexcept { return fields_.setPositions; }
  /// Both store what they are given.
  void setAnchorIndex(NSInteger anchorIndex);
  void setAbsolute(bool absolute);

  /// `isSimpleRecurrence`  All six lists are nil. An empty list is not nil.
  [[nodiscard]] bool isSimpleRecurrence() const noexcept;
  /// `copySimpleRecurrence`  The receiver when it is simple (on the stack: an equal rule), else a
  /// rule of the receiver's class with its frequency and interval alone.
  [[nodiscard]] std::shared_ptr<ORLFDateRecurrenceRule> copySimpleRecurrence();

  /// `enumerateDatesForCalendar:startDate:end:backwards:exactPatternMatch:usingBlock:`
  /// Walks the dates from the start date on, in either direction, and calls the block with each and
  /// its number, from 1. A simple rule gives the start date first and clamps month ends from it:
  /// 31 January, 29 February, 31 March; with `exactPatternMatch` it gives only dates that repeat
  /// the start date's pattern: 31 January, 31 March. Other rules give the start date only where it
  /// fits. Ends with the end, the block's flag, 60 periods in a row without a date, or where the
  /// calendar ends; a simple rule has no other end. With an interval of 0 a simple rule gives the
  /// start date again and again until something stops it, and a rule with lists gives nothing. Else
  /// no day's instant comes twice. Runs on the calling thread and allocates nothing per period.
  void enumerateDatesForCalendarStartDate(const EnumerateDatesStartDate& arguments,
                                          ORLFDateRecurrenceBlock usingBlock) const;
  /// `generateDateComponentsFromDate:referenceDate:calendar:backwards:`
  /// The patterns of the period that `date` picks, with the time of day of the reference date. A
  /// pattern may describe a date that does not exist. The direction has no influence. Where the
  /// reference date or the calendar is nil, what would come of it stays unset (of the calendar: 0),
  /// and months on a quarterly rule are months of the quarter.
  [[nodiscard]] WorkingSet generateDateComponentsFromDate(std::optional<NSDate> date,
                                                          std::optional<NSDate> referenceDate,
                                                          const NSCalendar* calendar,
                                                          bool backwards) const;
  /// `makeDateComponentsCopy:`
  [[nodiscard]] WorkingSet makeDateComponentsCopy(const WorkingSet& dateComponents) const;

  /// `dateRecurrenceRuleForExactMatchToReferenceDate:calendar:`
  /// A rule that names the reference date's day (monthly, quarterly), weekday (weekly) or day and
  /// month (yearly), so that periods without it yield no date. The receiver (on the stack: an equal
  /// rule) when it names days already, and for any other frequency. The new rule has the anchor of
  /// a new rule and is not absolute; a yearly one replaces the receiver's months.
  [[nodiscard]] std::shared_ptr<ORLFDateRecurrenceRule>
  dateRecurrenceRuleForExactMatchToReferenceDate(NSDate referenceDate, const NSCalendar& calendar);

  /// `matchingDateComponentsOld`  The rule's lists as patterns without year or time; nil when there
  /// is nothing to match. On a quarterly rule a month is one of the quarter's, in each quarter.
  [[nodiscard]] std::optional<WorkingSet> matchingDateComponentsOld() const;
  /// `makeDateComponentsCopyOld:`  Leaves out nanoseconds.
  [[nodiscard]] WorkingSet makeDateComponentsCopyOld(const WorkingSet& dateComponents) const;
  /// `enumerateDatesForCalendar:refernceDate:end:backwards:usingBlock:`
  /// The older walk, which alone heeds `absolute`, `anchorIndex` and `setPositions`. Counts from 0.
  /// Forward it begins one interval after its base, backward at its base. A stop lets the rest of
  /// the period's dates pass, and an end answers anew for each of them, so that the block may be
  /// called again after it asked to stop. A period has one date for each pattern that the calendar
  /// can match, one where there is no pattern: where no position reaches any of them, the walk ends
  /// before it begins. A day that the zone skipped is passed over. With an interval of 0 it gives
  /// the dates of one period again and again.
  void enumerateDatesForCalendarRefernceDate(const EnumerateDatesRefernceDate& arguments,
                                             ORLFDateRecurrenceBlock usingBlock) const;

  /// `universalAnchorDateInCalendar:`  1 January 2012, from which absolute phases count.
  [[nodiscard]] static std::optional<NSDate> universalAnchorDateInCalendar(
      const NSCalendar& calendar) noexcept;
  /// `anchorIndexForAbsoluteRecurrenceWithFrequency:interval:occurrenceDate:inCalendar:`
  /// The slot that a date falls in, from 1; quarterly slots are months. An interval of 0 has the
  /// slot 1.
  [[nodiscard]] static NSInteger anchorIndexForAbsoluteRecurrenceWithFrequency(
      ORLFDateRecurrenceFrequency frequency, NSInteger interval, NSDate occurrenceDate,
      const NSCalendar& inCalendar) noexcept;
  /// `canonicalReferenceDateForDate:inCalendar:`  The start of the date's day (nil: of the current
  /// instant's); on an absolute rule of interval 2 or more moved on, by less than one span, into
  /// phase with the anchor. Without patterns the span's last unit is taken.
  [[nodiscard]] std::optional<NSDate> canonicalReferenceDateForDate(
      std::optional<NSDate> date, const NSCalendar& inCalendar) const;
  /// `boundingDatesForReferenceDate:inCalendar:`  The dates before and after a date (nil: the
  /// current instant), by the older walk; empty unless both exist. A date of the rule is its own
  /// predecessor.
  [[nodiscard]] std::vector<NSDate> boundingDatesForReferenceDate(
      std::optional<NSDate> date, const NSCalendar& inCalendar) const;

  [[nodiscard]] const NSKeyTable& keyTable() const override;
  /// `dateRecurrenceRuleFromICalendarString:`  The rule of an iCalendar recurrence line: what
  /// follows the first "RRULE:" in the text. Reads FREQ, INTERVAL, BYDAY, BYMONTH, BYMONTHDAY,
  /// BYWEEKNO and BYYEARDAY; other keys (COUNT, UNTIL, BYSETPOS ...) are passed over, so that the
  /// rule can be weaker than its text. Keys and words are in capitals and nothing is trimmed.
  /// Yearly when no frequency is named; the anchor is 1. nil for a text that is not read whole.
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrenceRule>
  dateRecurrenceRuleFromICalendarString(std::string_view text);

  /// `humanReadableDescription`  One English sentence: "repeats monthly on the second Tuesday".
  /// With nothing but a frequency and an interval it ends in a full stop: "repeats every 2 weeks.".
  /// Stops the process for an unknown frequency and for a month outside 1 to 12.
  [[nodiscard]] std::string humanReadableDescription() const;
  /// `partialDescriptionForDaysOfTheWeek:`  "Monday, and Friday", "the first Monday"; grouped by
  /// week number, the last ones first. This and the next two give nil for a nil or empty list.
  [[nodiscard]] static std::optional<std::string> partialDescriptionForDaysOfTheWeek(
      const DaysOfTheWeek& days);
  /// `partialDescriptionForDaysOfTheMonth:`  "1st, and 15th"; 111 reads 111st and -1 reads -1th.
  [[nodiscard]] static std::optional<std::string> partialDescriptionForDaysOfTheMonth(
      const Integers& days);
  /// `partialDescriptionForMonthsOfYear:`  "January, and March", in the order of the list.
  [[nodiscard]] static std::optional<std::string> partialDescriptionForMonthsOfYear(
      const Integers& months);

  [[nodiscard]] std::string className() const override;
  /// `isEqual:`  A rule with equal fields; `absolute` takes no part, here or in the hash.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// `copyWithZone:`  A new rule of the receiver's class with the same fields, nothing normalized.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

  /// `encodeWithCoder:`, `initWithCoder:`  Each field under its name, in the order of
  /// `Recurrence`. Reading normalizes nothing: a missing list is nil, an empty one stays empty, and
  /// a missing number is 0.
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] static std::shared_ptr<ORLFDateRecurrenceRule> initWithCoder(NSCoder& coder);
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  [[nodiscard]] std::shared_ptr<ORLFDateRecurrenceRule> receiver();

  Recurrence fields_;
};

}  // namespace ORLFoundation
