/// The keys under which the classes of this folder are read, set and stored. They are part of
/// stored archives and never change.
#pragma once

#include <string_view>

namespace ORLFoundation::internal::recurrence {

inline constexpr std::string_view kFrequencyKey = "frequency";
inline constexpr std::string_view kIntervalKey = "interval";
inline constexpr std::string_view kDayOfTheWeekKey = "dayOfTheWeek";
inline constexpr std::string_view kWeekNumberKey = "weekNumber";
inline constexpr std::string_view kEndDateKey = "endDate";
inline constexpr std::string_view kOccurrenceCountKey = "occurrenceCount";
inline constexpr std::string_view kAnchorIndexKey = "anchorIndex";
inline constexpr std::string_view kAbsoluteKey = "absolute";
inline constexpr std::string_view kDaysOfTheWeekKey = "daysOfTheWeek";
inline constexpr std::string_view kDaysOfTheMonthKey = "daysOfTheMonth";
inline constexpr std::string_view kMonthsOfTheYearKey = "monthsOfTheYear";
inline constexpr std::string_view kWeeksOfTheYearKey = "weeksOfTheYear";
inline constexpr std::string_view kDaysOfTheYearKey = "daysOfTheYear";
inline constexpr std::string_view kSetPositionsKey = "setPositions";

}  // namespace ORLFoundation::internal::recurrence
