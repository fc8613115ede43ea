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
  struct CivilDay {
    Day day = 0;
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t dayOfMonth = 0;
    std::int32_t daysInMonth = 0;
  };
  /// The days that an end names in one month, and where that month lies.
  struct MonthOfDays {
    Day before = 0;  // the day before its first
    DaySet named = 0;
    /// The days that are not yet behind at the end, named or not: those that the window beginning
    /// there may have, while the one ending there may not.
    DaySet ahead = 0;
  };
  /// One end of a window with the months that its period's patterns name days in, in order. The
  /// general walk serves the windows of an end that is not served.
  struct WindowEnd {
    bool isServed = false;
    Day day = 0;
    std::size_t monthCount = 0;
    std::array<MonthOfDays, 12> months{};
  };

  ORLFCivilWindows(const ORLFDateRecurrenceRule& rule, const NSCalendar& calendar, Source source,
                   NSInteger step, bool backwards);

  [[nodiscard]] static std::optional<Source> sourceOf(const ORLFDateRecurrenceRule& rule);
  [[nodiscard]] bool startAt(NSDate startDate);
  [[nodiscard]] static std::optional<CivilDay> civilDay(std::int64_t number) noexcept;
  [[nodiscard]] std::optional<CivilDay> moveToNextEnd() noexcept;

  [[nodiscard]] bool setEnd(const CivilDay& day, WindowEnd& end);
  void nameDays(const CivilDay& day, WindowEnd& end) const;
  [[nodiscard]] DaySet daysNamed(const CivilDay& day, Day before, std::int32_t length) const;
  [[nodiscard]] DaySet placesInMonth(Day before, std::int32_t length) const;
  [[nodiscard]] DaySet daysOfTheWeekOf(const CivilDay& day) const;
  [[nodiscard]] DaySet aheadInMonth(const CivilDay& day, std::int32_t month) const noexcept;
  [[nodiscard]] bool isFarFromNamedDays(const CivilDay& day) const noexcept;
  [[nodiscard]] bool areSteady(const WindowEnd& end) noexcept;

  [[nodiscard]] bool gather(const WindowEnd& nearEnd, const WindowEnd& farEnd, Dates& window);
  [[nodiscard]] bool add(Day before, DaySet days, Dates& window);

  /// The start date's time of day on that day; nil where the zone's clock does not show it once.
  [[nodiscard]] std::optional<NSDate> dateOfDay(Day day) noexcept;
  [[nodiscard]] bool findStretch(Day day) noexcept;

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

  std::int64_t step_;  // months or days, below 0 toward earlier dates
  /// The end that was reached last: the number of its month, or of its day.
  std::int64_t reached_ = 0;
  std::int32_t dayOfMonth_ = 0;  // the start date's
  std::int64_t secondOfDay_ = 0;
  bool isNearFirst_ = true;
  std::array<WindowEnd, 2> ends_;

  // The dates of one offset among which the last one asked for lay, without those near a clock
  // change, and how far that offset puts them from GMT's midnight: seconds since 2001.
  double firstSteady_ = 1;
  double lastSteady_ = 0;
  double secondsFromMidnight_ = 0;
};

}  // namespace ORLFoundation::internal::recurrence
