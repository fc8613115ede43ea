/// The fast path of the main enumeration: windows counted in whole days of the Gregorian calendar.
///
/// All dates of a walk show the start date's time of day. Far from a change of the zone's clock,
/// the order of such dates is the order of their days and each is one subtraction away from its
/// day. So the rules that people make most often, which name days of a month or weekdays, need no
/// field records there. Where a clock change comes near, and for every other rule, calendar and
/// date, the general walk answers.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

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

  /// Fills the dates of the next window, in order of delivery without repeats, and answers its far
  /// end. nil for a window that it leaves to the general walk; it must be called for each window
  /// all the same.
  [[nodiscard]] std::optional<NSDate> collectNext(Dates& window);

 private:
  using Day = std::int32_t;  // since 1970-01-01
  using Days = boost::container::small_vector<Day, 8>;
  /// What a rule's lists name in each month, or in the week.
  enum class Source { kDaysOfTheMonth, kDayOfTheDate, kDaysOfTheWeek, kDaysOfTheSameWeek };
  struct CivilDay {
    Day day = 0;
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t dayOfMonth = 0;
  };
  /// One end of a window with the days that its period's patterns name.
  struct WindowEnd {
    std::optional<NSDate> date;
    Day day = 0;
    Days named;
  };

  ORLFCivilWindows(const ORLFDateRecurrenceRule& rule, const NSCalendar& calendar, Source source,
                   NSInteger step, bool backwards);

  [[nodiscard]] static std::optional<Source> sourceOf(const ORLFDateRecurrenceRule& rule);
  [[nodiscard]] bool startAt(NSDate startDate);
  [[nodiscard]] static std::optional<CivilDay> civilDay(std::int64_t number) noexcept;
  [[nodiscard]] std::optional<CivilDay> endOfWindow(NSInteger index) const noexcept;

  void setEnd(const CivilDay& day, WindowEnd& end);
  void nameDaysInMonth(const CivilDay& date, std::int32_t month, Days& named) const;
  void nameDaysInWeek(const CivilDay& date, Days& named) const;
  [[nodiscard]] bool areSteady(const Days& days) noexcept;
  void gatherDays();
  [[nodiscard]] std::optional<NSDate> dateOfDay(Day day) noexcept;

  const ORLFDateRecurrenceRule& rule_;
  const NSTimeZone& zone_;
  NSInteger firstWeekday_;
  Source source_;
  bool byMonths_;
  NSInteger step_;  // months or days
  bool backwards_;

  CivilDay start_;
  std::int64_t secondsOfDay_ = 0;
  NSInteger index_ = 0;
  WindowEnd current_;
  WindowEnd next_;
  Days inWindow_;

  [[nodiscard]] bool isSteady(double instant) const noexcept {
    return instant >= firstSteady_ && instant <= lastSteady_;
  }
  // The stretch of one offset that the last date lay in, cut at both ends so that nothing near a
  // clock change is inside: instants, seconds since 1970.
  double firstSteady_ = 1;
  double lastSteady_ = 0;
  double offset_ = 0;
};

}  // namespace ORLFoundation::internal::recurrence
