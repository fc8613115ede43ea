
#include <ORLFoundation/recurrence/ORLFDateRecurrenceEnd.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/Id.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using End = ORLFDateRecurrenceEnd;

NSDate afterReference(double seconds) {
  return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

TEST(ORLFDateRecurrenceEnd, IsOneOfTwoKinds) {
  const auto byDate = End::initEndWithEndDate(afterReference(5));
  EXPECT_EQ(byDate->endDate(), afterReference(5));
  EXPECT_EQ(byDate->occurrenceCount(), 0U);
  const auto byCount = End::initEndWithOccurrenceCount(3);
  EXPECT_EQ(byCount->endDate(), std::nullopt);
  EXPECT_EQ(byCount->occurrenceCount(), 3U);
}

struct EndCase {
  const char* name;
  double date;
  bool forward, backward;
};
constexpr EndCase kByDate[] = {
    {"Before", 99, false, true}, {"Exactly", 100, true, true}, {"After", 101, true, false}};

TEST(ORLFDateRecurrenceEnd, EndsOnItsDateInEitherDirection) {
  const auto end = End::initEndWithEndDate(afterReference(100));
  for (const EndCase& row : kByDate) {
    EXPECT_EQ(end->shouldEndForDate(afterReference(row.date), 1000, false), row.forward)
        << row.name;
    EXPECT_EQ(end->shouldEndForDate(afterReference(row.date), 0, true), row.backward) << row.name;
  }
}

TEST(ORLFDateRecurrenceEnd, EndsAfterItsCountOfDates) {
  const auto end = End::initEndWithOccurrenceCount(3);
  for (const bool backwards : {false, true}) {
    EXPECT_FALSE(end->shouldEndForDate(afterReference(0), 0, backwards));
    EXPECT_FALSE(end->shouldEndForDate(afterReference(0), 2, backwards));
    EXPECT_TRUE(end->shouldEndForDate(afterReference(0), 3, backwards));
    EXPECT_TRUE(end->shouldEndForDate(std::nullopt, 4, backwards));
  }
  EXPECT_TRUE(end->shouldEndForDate(afterReference(0), -1, false));  // taken as unsigned
  EXPECT_TRUE(End::initEndWithOccurrenceCount(0)->shouldEndForDate(afterReference(0), 0, false));
}

TEST(ORLFDateRecurrenceEnd, AnswersForADateThatMayBeNil) {
  const LogCapture log;
  const auto byDate = End::initEndWithEndDate(afterReference(100));
  EXPECT_FALSE(byDate->shouldEndForDate(std::optional(afterReference(99)), 0, false));
  EXPECT_TRUE(byDate->shouldEndForDate(std::optional(afterReference(100)), 0, false));
  const auto byCount = End::initEndWithOccurrenceCount(3);
  EXPECT_FALSE(byCount->shouldEndForDate(std::nullopt, 2, false));
  EXPECT_TRUE(byCount->shouldEndForDate(std::nullopt, 3, false));
  EXPECT_TRUE(log.lines().empty());
}

TEST(ORLFDateRecurrenceEnd, LogsANilDateAndEnds) {
  const LogCapture log;
  EXPECT_TRUE(
      End::initEndWithEndDate(afterReference(100))->shouldEndForDate(std::nullopt, 0, false));
  EXPECT_EQ(log.lines(), std::vector<std::string>{"Condition Failed: date != nil NIL date for "
                                                  "ORLFDateRecurrenceEnd with and end date"});
}

TEST(ORLFDateRecurrenceEnd, IsEqualByDateWhereItHasOneElseByCountAlone) {
  const auto byDate = End::initEndWithEndDate(afterReference(5));
  const auto none = End::initEndWithOccurrenceCount(0);
  EXPECT_TRUE(byDate->isEqual(End::initEndWithEndDate(afterReference(5)).get()));
  EXPECT_FALSE(byDate->isEqual(End::initEndWithEndDate(afterReference(6)).get()));
  EXPECT_TRUE(none->isEqual(byDate.get()));
  EXPECT_FALSE(byDate->isEqual(none.get()));
  EXPECT_FALSE(End::initEndWithOccurrenceCount(1)->isEqual(none.get()));
  EXPECT_FALSE(none->isEqual(nullptr));
  EXPECT_FALSE(none->isEqual(std::make_shared<NSObject>().get()));
}

TEST(ORLFDateRecurrenceEnd, HashesItsDateElseItsCount) {
  EXPECT_EQ(End::initEndWithEndDate(afterReference(5))->hash(), afterReference(5).hash());
  EXPECT_EQ(End::initEndWithOccurrenceCount(7)->hash(), 7U);
}

TEST(ORLFDateRecurrenceEnd, CopiesToItselfAlthoughItHasSetters) {
  const auto end = End::initEndWithOccurrenceCount(7);
  const auto copy = copyOf(end);
  EXPECT_EQ(copy, end);
  end->setOccurrenceCount(8);
  end->setEndDate(afterReference(1));
  EXPECT_EQ(copy->occurrenceCount(), 8U);
  EXPECT_EQ(copy->endDate(), afterReference(1));
}

TEST(ORLFDateRecurrenceEnd, CopiesOneOnTheStackToAnEqualEndOfItsClass) {
  class Deadline final : public End {
   public:
    using End::End;
    [[nodiscard]] std::string className() const override { return "Deadline"; }

   protected:
    [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
      return std::make_shared<Deadline>(std::nullopt, 1);
    }
  };
  Deadline deadline(afterReference(5), 7);
  const auto copy = std::dynamic_pointer_cast<Deadline>(deadline.copy());
  ASSERT_TRUE(copy);
  EXPECT_TRUE(copy->isEqual(&deadline));
  EXPECT_EQ(copy->endDate(), afterReference(5));
  EXPECT_EQ(copy->occurrenceCount(), 7U);
  End end(std::nullopt, 3);
  EXPECT_TRUE(end.copy()->isEqual(&end));
}

TEST(ORLFDateRecurrenceEnd, IsReadAndSetByKey) {
  const auto end = End::initEndWithOccurrenceCount(7);
  EXPECT_EQ(end->className(), "ORLFDateRecurrenceEnd");
  end->setValueForKey(9, "occurrenceCount");
  end->setValueForKey(afterReference(1), "endDate");
  EXPECT_EQ(end->valueForKey("occurrenceCount").as<NSUInteger>(), 9U);
  EXPECT_EQ(end->valueForKey("endDate").as<NSDate>(), afterReference(1));
}

}  // namespace
}  // namespace ORLFoundation
