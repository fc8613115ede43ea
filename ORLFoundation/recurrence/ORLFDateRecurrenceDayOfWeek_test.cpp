
#include <ORLFoundation/recurrence/ORLFDateRecurrenceDayOfWeek.h>

#include <ORLFoundation/platform/object/Id.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using DayOfWeek = ORLFDateRecurrenceDayOfWeek;

struct NameCase {
  NSInteger value;
  const char* name;
};

TEST(ORLFDateRecurrenceDayOfWeek, NamesWeekdays) {
  constexpr NameCase kNames[] = {{NSIntegerMin, "unknown"},
                                 {-4, "unknown"},
                                 {-3, "weekend day"},
                                 {-2, "weekday"},
                                 {-1, "day"},
                                 {0, "unknown"},
                                 {1, "Sunday"},
                                 {2, "Monday"},
                                 {3, "Tuesday"},
                                 {4, "Wednesday"},
                                 {5, "Thursday"},
                                 {6, "Friday"},
                                 {7, "Saturday"},
                                 {8, "unknown"},
                                 {NSIntegerMax, "unknown"}};
  for (const NameCase& row : kNames)
    EXPECT_EQ(DayOfWeek::nameForWeekday(row.value), row.name) << row.value;
}

TEST(ORLFDateRecurrenceDayOfWeek, NamesWeekNumbers) {
  constexpr NameCase kNames[] = {
      {NSIntegerMin, "every"}, {-2, "every"}, {-1, "last"},  {0, "every"}, {1, "first"},
      {2, "second"},           {3, "third"},  {4, "fourth"}, {5, "fifth"}, {6, "every"},
      {NSIntegerMax, "every"}};
  for (const NameCase& row : kNames)
    EXPECT_EQ(DayOfWeek::stringForWeekNumber(row.value), row.name) << row.value;
}

TEST(ORLFDateRecurrenceDayOfWeek, HasNoWeekNumberUntilGivenOne) {
  EXPECT_EQ(DayOfWeek::dayOfWeek(4)->weekNumber(), 0);
  EXPECT_EQ(DayOfWeek(4).weekNumber(), 0);
  EXPECT_EQ(DayOfWeek(4, -1).weekNumber(), -1);
  EXPECT_EQ(DayOfWeek(4, -1).dayOfTheWeek(), 4);
}

TEST(ORLFDateRecurrenceDayOfWeek, IsEqualAndHashedByItsFields) {
  const auto second = std::make_shared<DayOfWeek>(3, 2);
  EXPECT_TRUE(second->isEqual(std::make_shared<DayOfWeek>(3, 2).get()));
  EXPECT_FALSE(second->isEqual(std::make_shared<DayOfWeek>(3, 1).get()));
  EXPECT_FALSE(second->isEqual(std::make_shared<DayOfWeek>(2, 3).get()));
  EXPECT_FALSE(second->isEqual(nullptr));
  EXPECT_FALSE(second->isEqual(std::make_shared<NSObject>().get()));
  EXPECT_EQ(second->hash(), 5U);
  EXPECT_EQ(DayOfWeek(NSIntegerMax, NSIntegerMax).hash(), ~NSUInteger{0} - 1);
}

TEST(ORLFDateRecurrenceDayOfWeek, CopiesToItself) {
  const auto day = std::make_shared<DayOfWeek>(3, 2);
  EXPECT_EQ(copyOf(day), day);
}

TEST(ORLFDateRecurrenceDayOfWeek, CopiesOneOnTheStackToAnEqualEntryOfItsClass) {
  class Holiday final : public DayOfWeek {
   public:
    using DayOfWeek::DayOfWeek;
    [[nodiscard]] std::string className() const override { return "Holiday"; }

   protected:
    [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
      return std::make_shared<Holiday>(1);
    }
  };
  Holiday holiday(3, 2);
  EXPECT_EQ(holiday.copy()->className(), "Holiday");
  EXPECT_TRUE(holiday.copy()->isEqual(&holiday));
  DayOfWeek day(3, 2);
  EXPECT_TRUE(day.copy()->isEqual(&day));
}

TEST(ORLFDateRecurrenceDayOfWeek, IsReadByKey) {
  const auto day = std::make_shared<DayOfWeek>(3, 2);
  EXPECT_EQ(day->className(), "ORLFDateRecurrenceDayOfWeek");
  EXPECT_EQ(day->valueForKey("dayOfTheWeek").as<NSInteger>(), 3);
  EXPECT_EQ(day->valueForKey("weekNumber").as<NSInteger>(), 2);
}

}  // namespace
}  // namespace ORLFoundation
