/// Zones that skipped a whole day by changing sides of the date line, and dates around such a day.
#pragma once

#include <ORLFoundation/calendar/ORLFCalendar_testing.h>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>

namespace orlftest {

struct SkippedDay {
  const char* zone;
  int year, month, day;
};
inline constexpr SkippedDay kSkippedDays[] = {
    {"Pacific/Apia", 2011, 12, 30},      {"Pacific/Fakaofo", 2011, 12, 30},
    {"Pacific/Kwajalein", 1993, 8, 21},  {"Pacific/Kiritimati", 1994, 12, 31},
    {"Pacific/Enderbury", 1994, 12, 31}, {"Asia/Manila", 1844, 12, 31},
};

inline std::ostream& operator<<(std::ostream& stream, const SkippedDay& skipped) {
  return stream << skipped.zone;
}

class SkippedDayTest : public testing::TestWithParam<SkippedDay> {
 protected:
  /// So many days from the skipped one on the calendar's clock.
  [[nodiscard]] ORLFoundation::NSDate dayAt(int offset, int hour) const {
    return at(*calendar_, skipped_.year, skipped_.month, skipped_.day + offset, hour);
  }

  const SkippedDay skipped_ = GetParam();
  const std::shared_ptr<ORLFoundation::NSCalendar> calendar_ = calendarIn(skipped_.zone);
};

}  // namespace orlftest
