/// The main expansion told plainly, stage by stage, for tests that compare it.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule_testing.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace orlftest::told {

using namespace ORLFoundation;

using OptionalDate = std::optional<NSDate>;

template <class List>
bool holds(const List& list) {
  return list && !list->empty();
}

/// The steps of the main expansion. Without a calendar or a date their questions answer 0 or false.
class ToldExpansion {
 public:
  ToldExpansion(const Rule& rule, OptionalDate date, OptionalDate reference,
                const NSCalendar* calendar)
      : rule_(rule), date_(date), reference_(reference), calendar_(calendar) {}

  Rule::WorkingSet run() {
    seed();
    months();
    weeks();
    daysOfTheYearOrMonthOfTheDate();
    if (holds(rule_.daysOfTheMonth())) {
      expandBy(*rule_.daysOfTheMonth(), NSCalendarUnitDay, "day");
      needsDayOfMonth_ = false;
    }
    if (holds(rule_.daysOfTheWeek())) daysOfTheWeek();
    constraints();
    return set_;
  }
  [[nodiscard]] const std::vector<std::string>& log() const { return log_; }

 private:
  void require(bool condition, const std::string& text, const std::string& message) {
    if (!condition) log_.push_back("Condition Failed: " + text + " " + message);
  }
  void write(NSDateComponents& pattern, NSCalendarUnit unit, const std::string& name,
             NSInteger value) {
    require(pattern.valueForComponent(unit) == NSDateComponentUndefined,
            "dateComponent." + name + " == NSDateComponentUndefined",
            "NSDateComponents " + name + " should not be defined yet");
    pattern.setValueForComponent(value, unit);
  }
  [[nodiscard]] NSInteger ofDate(NSCalendarUnit unit) const {
    return calendar_ && date_ ? calendar_->component(unit, *date_) : 0;
  }
  [[nodiscard]] bool isValid(const NSDateComponents& pattern) const {
    return calendar_ && pattern.isValidDateInCalendar(*calendar_);
  }
  [[nodiscard]] NSInteger lastInMonth(NSCalendarUnit unit, NSDate date) const {
    if (!calendar_) return -1;
    const NSRange range = calendar_->rangeOfUnit(unit, NSCalendarUnitMonth, date);
    return static_cast<NSInteger>(static_cast<NSUInteger>(range.location) + range.length - 1);
  }
  static void addOnce(Rule::WorkingSet& set, const NSDateComponents& pattern) {
    if (std::find(set.begin(), set.end(), pattern) == set.end()) set.push_back(pattern);
  }
  void expandBy(const std::vector<NSInteger>& values, NSCalendarUnit unit,
                const std::string& name) {
    Rule::WorkingSet expanded;
    for (const NSInteger value : values) {
      for (NSDateComponents pattern : rule_.makeDateComponentsCopy(set_)) {
        write(pattern, unit, name, value);
        addOnce(expanded, pattern);
      }
    }
    set_ = expanded;
  }

  void seed() {
    constexpr NSUInteger kTimeOfDayMask = 32992;
    NSDateComponents pattern;
    if (calendar_ && reference_) pattern = calendar_->components(kTimeOfDayMask, *reference_);
    pattern.setYear(ofDate(NSCalendarUnitYear));
    set_ = {pattern};
  }
  void months() {
    if (!holds(rule_.monthsOfTheYear())) {
      needsMonth_ = true;
      return;
    }
    const bool ofTheQuarter = (!reference_ || !calendar_) && rule_.frequency() == kQuarterly;
    const NSInteger divisor = ofTheQuarter ? 3 : 12;
    std::vector<NSInteger> months;
    for (const NSInteger month : *rule_.monthsOfTheYear()) {
      // The least number less 1 wraps around.
      const NSInteger before = month == NSIntegerMin ? NSIntegerMax : month - 1;
      const NSInteger reduced = before % divisor + 1;
      for (NSInteger quarter = 0; quarter < (ofTheQuarter ? 4 : 1); ++quarter)
        months.push_back(reduced + 3 * quarter);
    }
    expandBy(months, NSCalendarUnitMonth, "month");
    (holds(rule_.daysOfTheWeek()) ? needsDayOfWeek_ : needsDayOfMonth_) = true;
  }
  void weeks() {
    if (!holds(rule_.weeksOfTheYear())) return;
    expandBy(*rule_.weeksOfTheYear(), NSCalendarUnitWeekOfYear, "weekOfYear");
    needsDayOfWeek_ = true;
    needsMonth_ = false;
  }
  void daysOfTheYearOrMonthOfTheDate() {
    if (holds(rule_.daysOfTheYear())) {
      expandBy(*rule_.daysOfTheYear(), NSCalendarUnitDay, "day");
      needsDayOfWeek_ = needsDayOfMonth_ = false;
      return;
    }
    if (!needsMonth_) return;
    for (NSDateComponents& pattern : set_)
      write(pattern, NSCalendarUnitMonth, "month", ofDate(NSCalendarUnitMonth));
    if (rule_.frequency() == kDaily)
      needsDayOfMonth_ = true;
    else if (rule_.frequency() == kWeekly || holds(rule_.daysOfTheWeek()))
      needsDayOfWeek_ = true;
    else
      needsDayOfMonth_ = true;
  }
  void daysOfTheWeek() {
    Rule::WorkingSet expanded;
    for (const auto& entry : *rule_.daysOfTheWeek()) {
      const NSInteger weekday = entry->dayOfTheWeek();
      NSInteger number = entry->weekNumber();
      if (weekday == 0 || weekday < -3) continue;
      for (NSDateComponents pattern : rule_.makeDateComponentsCopy(set_)) {
        treat(pattern, weekday, number);
        addOnce(expanded, pattern);
        needsDayOfWeek_ = false;
      }
    }
    set_ = expanded;
  }
  void treat(NSDateComponents& pattern, NSInteger weekday, NSInteger& number) {
    const bool weekly = rule_.frequency() == kWeekly;
    if (weekday > 0 && (number > 0 || (weekly && number < 0))) {
      pattern.setWeekday(weekday);
      write(pattern, NSCalendarUnitWeekdayOrdinal, "weekdayOrdinal", number);
      return;
    }
    if (weekday > 0 && weekly) {
      pattern.setWeekday(weekday);
      number = ofDate(NSCalendarUnitWeekOfMonth);
      pattern.setWeekOfMonth(number);
      return;
    }
    if (weekday > 0)
      takeLastWeekday(pattern, weekday);
    else
      takeDay(pattern, weekday, number);
    require(isValid(pattern), "[dateComponent isValidDateInCalendar:calendar]",
            "This should be valid... gulp");
  }
  void takeLastWeekday(NSDateComponents& pattern, NSInteger weekday) {
    require(calendar_ && date_ && calendar_->date(*date_, pattern),
            "[calendar date:dateForComponent matchesComponents:dateComponent]",
            "We should always match this date");
    if (!date_) return;
    const NSInteger month =
        pattern.month() == NSDateComponentUndefined ? ofDate(NSCalendarUnitMonth) : pattern.month();
    const NSInteger last = lastInMonth(NSCalendarUnitWeekdayOrdinal, *date_);
    pattern.setWeekday(weekday);
    pattern.setWeekdayOrdinal(last);
    NSDateComponents copy = pattern;
    copy.setMonth(month);
    if (!isValid(copy)) pattern.setWeekdayOrdinal(last - 1);
  }
  [[nodiscard]] OptionalDate resolve(const NSDateComponents& pattern) const {
    return calendar_ ? calendar_->dateFromComponents(pattern) : std::nullopt;
  }
  void takeDay(NSDateComponents& pattern, NSInteger weekday, NSInteger number) {
    if (pattern.month() == NSDateComponentUndefined) pattern.setMonth(ofDate(NSCalendarUnitMonth));
    if (weekday == -1 && number > 0) {
      pattern.setDay(number);
      return;
    }
    const auto qualifies = [&](NSDate date) {
      return calendar_->isDateInWeekend(date) == (weekday == -3);
    };
    if (number <= 0) {
      OptionalDate date = resolve(pattern);
      require(date.has_value(), "dateForComponent != nil",
              "We should always have date at this point");
      if (!date) return;
      pattern.setDay(lastInMonth(NSCalendarUnitDay, *date));
      if (weekday == -1) return;
      for (date = resolve(pattern); date && !qualifies(*date); date = resolve(pattern))
        pattern.setDay(pattern.day() - 1);
      return;
    }
    pattern.setDay(1);
    OptionalDate date = resolve(pattern);
    NSInteger remaining = date && qualifies(*date) ? number - 1 : number;
    while (date && remaining != 0) {
      pattern.setDay(pattern.day() + 1);
      date = resolve(pattern);
      if (date && qualifies(*date)) --remaining;
    }
  }
  void constraints() {
    require(!needsDayOfMonth_ || !needsDayOfWeek_,
            "!needsDayOfMonthConstraint || !needsDayOfWeekConstraint",
            "We should not ever need both a day of month and a day of week");
    if (needsDayOfMonth_)
      for (NSDateComponents& pattern : set_)
        write(pattern, NSCalendarUnitDay, "day", ofDate(NSCalendarUnitDay));
    if (!needsDayOfWeek_) return;
    for (NSDateComponents& pattern : set_) {
      write(pattern, NSCalendarUnitWeekday, "weekday", ofDate(NSCalendarUnitWeekday));
      pattern.setWeekdayOrdinal(ofDate(NSCalendarUnitWeekdayOrdinal));
    }
  }

  const Rule& rule_;
  OptionalDate date_, reference_;
  const NSCalendar* calendar_;
  Rule::WorkingSet set_;
  std::vector<std::string> log_;
  bool needsMonth_ = false, needsDayOfMonth_ = false, needsDayOfWeek_ = false;
};

}  // namespace orlftest::told
