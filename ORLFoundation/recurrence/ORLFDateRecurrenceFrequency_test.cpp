
#include <ORLFoundation/recurrence/ORLFDateRecurrenceFrequency.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

struct FrequencyCase {
  ORLFDateRecurrenceFrequency frequency;
  NSInteger value, countInYear;
  const char* description;
};
/// From the most to the least frequent.
constexpr FrequencyCase kNamedFrequencies[] = {
    {ORLFDateRecurrenceFrequencyDaily, 16, 365, "daily"},
    {ORLFDateRecurrenceFrequencyWeekly, 8192, 52, "weekly"},
    {ORLFDateRecurrenceFrequencyMonthly, 8, 12, "monthly"},
    {ORLFDateRecurrenceFrequencyQuarterly, 2048, 4, "quarterly"},
    {ORLFDateRecurrenceFrequencyYearly, 4, 1, "yearly"},
};

TEST(ORLFDateRecurrenceFrequency, HasCodesCountsAndWords) {
  for (const FrequencyCase& row : kNamedFrequencies) {
    EXPECT_EQ(static_cast<NSInteger>(row.frequency), row.value);
    EXPECT_EQ(countInYear(row.frequency), row.countInYear);
    EXPECT_EQ(description(row.frequency), row.description);
  }
}

TEST(ORLFDateRecurrenceFrequency, OrdersTheMoreFrequentFirst) {
  for (const FrequencyCase& left : kNamedFrequencies) {
    for (const FrequencyCase& right : kNamedFrequencies) {
      const bool less = &left < &right;
      const bool same = &left == &right;
      EXPECT_EQ(left.frequency < right.frequency, less);
      EXPECT_EQ(left.frequency <= right.frequency, less || same);
      EXPECT_EQ(left.frequency > right.frequency, !less && !same);
      EXPECT_EQ(left.frequency >= right.frequency, !less);
    }
  }
}

TEST(ORLFDateRecurrenceFrequencyDeathTest, StopsTheProcessForAnUnknownOne) {
  const auto unknown = static_cast<ORLFDateRecurrenceFrequency>(32);
  EXPECT_DEATH(static_cast<void>(countInYear(unknown)),
               "Fatal error: file ORLFoundation/DateRecurrenceRule, line 28");
  EXPECT_DEATH(static_cast<void>(description(unknown)), "Fatal error");
  EXPECT_DEATH(static_cast<void>(unknown < ORLFDateRecurrenceFrequencyDaily), "Fatal error");
}

}  // namespace
}  // namespace ORLFoundation
