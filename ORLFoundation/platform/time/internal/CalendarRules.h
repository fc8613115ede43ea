/// What makes one calendar differ from another of its kind: its zone and how it counts weeks.
#pragma once

#include <cstdint>

namespace ORLFoundation::internal::time {

class ZoneTable;

/// Copied by value; the table is kept alive by the calendar's zone.
struct CalendarRules {
  const ZoneTable* zone = nullptr;
  std::int32_t firstWeekday = 1;  // 1 is Sunday
  std::int32_t minimumDays = 1;   // that the first week of a year or month holds of it
};

}  // namespace ORLFoundation::internal::time
