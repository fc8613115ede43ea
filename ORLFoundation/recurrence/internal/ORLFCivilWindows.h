/// The fast path of the main enumeration: windows counted in whole days of the Gregorian calendar.
///
/// All dates of a walk show the start date's time of day. Where the zone's clock shows it once, the
/// order of such dates is the order of their days and each is one sum away from its day. So the
/// rules that people make most often, which repeat a date, name days of a month or weekdays, need
/// no field records there. Where a clock change comes near, and for every other rule, calendar and
/// date, the general walk answers.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <ORLFoundation/recurrence/internal/ORLFCivilMonths.h>

#include <array>
#include <boost/container/small_vector.hpp>
#include <optional>

namespace ORLFoundation::internal::recurrence {

class ORLFCivilWindows {
 public:
  using Dates = boost::container::small_vector<NSDate, 16>;

  /// nil for a rule, a calendar or a start date that it does not serve. The rule and the calendar
  /// must outlive the answer.
  [[nodiscard]] static std::optional<ORLFCivilWindows> forRule(
      const ORLFDateRecurrenceRule& rule,
      const ORLFDateRecurrenceRule::EnumerateDatesStartDate& arguments);

  /// Fills the dates of the next window, in order of delivery without repeats. False for a window
  /// that it leaves to the general walk; it must be called for each window all the same.
  [[nodiscard]] bool collectNext(Dates& window);

 private:
  using Day = std::int32_t;  // since 1970-01-01
  /// Days of one month: bit 1 is its first.
  using DaySet = std::uint32_t;
  /// What the dates of a window come from: its near end, as a simple rule has it, or what the lists
  /// name in each month, or in the week.
  enum class Source {
    kNearEnd,
    kDaysOfTheMonth,
    kDayOfTheDate,
    kDaysOfTheWeek,
    kDaysOfTheSameWeek
  };
  /// One end of a window: where a simple rule has a date, and what picks the months in which the
  /// other rules name days.
  struct WindowEnd {
    /// Else the general walk serves the windows on both sides.
    bool isServed = false;
    // January of year 0 until it is moved to a day that is served, all of which come after.
    std::int32_t monthNumber = 0;
    ORLFCivilMonth month = civilMonth(0);
    std::int32_t dayOfMonth = 0;
    // What it names in its own month or, where months are listed, its own month's place in the year
    // of which they are.
    DaySet named = 0;
    std::int32_t monthOfYear = 0;

    [[nodiscard]] Day day() const noexcept { return month.before + dayOfMonth; }
    [[nodiscard]] std::int32_t monthBeforeYear() const noexcept {
      return monthNumber - monthOfYear;
    }
  };

  ORLFCivilWindows(const ORLFDateRecurrenceRule& rule, const NSCalendar& calendar, Source source,
                   NSInteger step, bool backwards);

  [[nodiscard]] static std::optional<Source> sourceOf(const ORLFDateRecurrenceRule& rule);
  [[nodiscard]] bool startAt(NSDate startDate);

  [[nodiscard]] bool moveToNext(WindowEnd& end);
  [[nodiscard]] bool moveToDay(WindowEnd& end) const noexcept;
  void pickMonths(WindowEnd& end);
  [[nodiscard]] bool isServed(const WindowEnd& end);
  [[nodiscard]] bool isFarFromNamedDays(const WindowEnd& end) const noexcept;
  [[nodiscard]] bool areNamedDaysSteady(const WindowEnd& end);

  [[nodiscard]] DaySet daysNamed(const WindowEnd& end, ORLFCivilMonth month);
  [[nodiscard]] DaySet daysNamedInKind(ORLFCivilMonth month);
  [[nodiscard]] DaySet placesInMonth(ORLFCivilMonth month) const;
  [[nodiscard]] DaySet daysOfTheWeekOf(const WindowEnd& end) const;

  [[nodiscard]] std::uint32_t ahead(std::int32_t place) const noexcept;
  [[nodiscard]] std::uint32_t notBehind(std::int32_t place) const noexcept;
  [[nodiscard]] int takeNext(std::uint32_t& places) const noexcept;

  [[nodiscard]] bool gather(const WindowEnd& nearEnd, const WindowEnd& farEnd, Dates& window);
  [[nodiscard]] bool gatherFromOwnMonths(const WindowEnd& nearEnd, const WindowEnd& farEnd,
                                         Dates& window);
  [[nodiscard]] bool gatherFromListedMonths(const WindowEnd& nearEnd, const WindowEnd& farEnd,
                                            Dates& window);
  [[nodiscard]] bool add(Day before, DaySet days, Dates& window);

  /// The start date's time of day on that day, seconds since 1970 of the zone's clock.
  [[nodiscard]] std::int64_t localTimeOn(Day day) const noexcept;
  /// Whether the zone's clock shows a time once, so that `dateOfSteadyTime` tells its date.
  [[nodiscard]] bool isSteady(std::int64_t local) noexcept;
  [[nodiscard]] bool findSteadyTimes(std::int64_t local) noexcept;
  [[nodiscard]] NSDate dateOfSteadyTime(std::int64_t local) const noexcept;

  const NSTimeZone& zone_;
  std::int32_t firstWeekday_;
  Source source_;
  bool byMonths_;
  bool backwards_;
  bool standsOrWalksAway_;
  bool mayLog_ = false;
  // The rule's lists.
  const ORLFDateRecurrenceRule::DaysOfTheWeek& daysOfTheWeek_;
  DaySet daysOfTheMonth_ = 0;
  std::uint32_t daysOfTheSameWeek_ = 0;  // bit 0 is the week's first day
  std::uint32_t months_ = 0;             // bit 1 is January; none where no month is named
  // What lists that name the same days in all months of one kind name in those that came up; empty
  // before.
  std::array<DaySet, ORLFCivilMonth::kKinds> namedInKind_{};

  std::int64_t step_;  // months or days, below 0 toward earlier dates
  /// The end that was reached last: the number of its month, or of its day.
  std::int64_t reached_ = 0;
  std::int32_t dayOfMonth_ = 0;  // the start date's
  std::int64_t secondOfDay_ = 0;
  WindowEnd end_;

  // The times around the last one asked for that the clock shows once, at one offset, and the
  // seconds from the reference date to the time 0, had it that offset.
  std::int64_t firstSteady_ = 0;
  std::uint64_t steadyLength_ = 0;
  std::int64_t timeZero_ = 0;
};

}  // namespace ORLFoundation::internal::recurrence
