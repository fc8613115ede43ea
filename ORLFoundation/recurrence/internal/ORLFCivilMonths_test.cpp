
#include <ORLFoundation/recurrence/internal/ORLFCivilMonths.h>

#include <gtest/gtest.h>

namespace ORLFoundation::internal::recurrence {
namespace {

namespace civil = base::civil;

TEST(ORLFCivilMonths, AgreeWithTheCalendarOfDaysForThirtyThousandYears) {
  for (std::int64_t number = 0; number <= civil::monthNumber(30'000, 12); ++number) {
    const auto [year, month] = civil::yearMonthFromNumber(number);
    const ORLFCivilMonth told = civilMonth(number);
    ASSERT_EQ(told.before, civil::dayFromDate(year, month, 0)) << number;
    ASSERT_EQ(told.length(), civil::daysInMonth(year, month)) << number;
    ASSERT_EQ(told.weekdayOfFirst(), civil::weekdayOfDay(told.before + 1)) << number;
    ASSERT_LT(told.kind, ORLFCivilMonth::kKinds) << number;
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::recurrence
