// What the classes of this folder write to a coder: keys, kinds and their order.
#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;
using Lines = std::vector<std::string>;

/// Notes what it is given, in order.
class NotingCoder final : public NSCoder {
 public:
  void encodeInt64(std::int64_t value, std::string_view forKey) override {
    note("integer", forKey, std::to_string(value));
  }
  void encodeBool(bool value, std::string_view forKey) override {
    note("flag", forKey, value ? "true" : "false");
  }
  void encodeObject(const id& object, std::string_view forKey) override {
    const auto list = object.as<NSArray>();
    note(list ? "list" : "object", forKey, std::to_string(list ? list->count() : 1));
  }
  [[nodiscard]] const Lines& lines() const { return lines_; }

 private:
  void note(std::string_view kind, std::string_view key, std::string_view value) {
    lines_.push_back(std::string(kind).append(" ").append(key).append(" ").append(value));
  }
  Lines lines_;
};

Lines linesOf(const NSSecureCoding& object) {
  NotingCoder coder;
  object.encodeWithCoder(coder);
  return coder.lines();
}

TEST(ORLFDateRecurrenceRule, WritesItsFieldsAndAllSixListsInTheirOrder) {
  // Lists of six lengths, so that none can stand for another.
  const auto rule = Rule::ruleWithFields({.frequency = kYearly,
                                          .interval = 3,
                                          .anchorIndex = 2,
                                          .absolute = true,
                                          .daysOfTheWeek = weekdays({{2, 1}}),
                                          .daysOfTheMonth = {{1, 2}},
                                          .monthsOfTheYear = {{1, 2, 3}},
                                          .weeksOfTheYear = {{1, 2, 3, 4}},
                                          .daysOfTheYear = {{1, 2, 3, 4, 5}},
                                          .setPositions = {{1, 2, 3, 4, 5, 6}}});
  EXPECT_EQ(linesOf(*rule),
            (Lines{"integer frequency 4", "integer interval 3", "integer anchorIndex 2",
                   "flag absolute true", "list daysOfTheWeek 1", "list daysOfTheMonth 2",
                   "list monthsOfTheYear 3", "list weeksOfTheYear 4", "list daysOfTheYear 5",
                   "list setPositions 6"}));
}

TEST(ORLFDateRecurrenceRule, WritesNoListThatIsNil) {
  EXPECT_EQ(linesOf(Rule(kMonthly, 2)), (Lines{"integer frequency 8", "integer interval 2",
                                               "integer anchorIndex 2", "flag absolute false"}));
}

TEST(ORLFDateRecurrencePeriod, WritesFrequencyAndInterval) {
  EXPECT_EQ(linesOf(ORLFDateRecurrencePeriod(kWeekly, -2)),
            (Lines{"integer frequency 8192", "integer interval -2"}));
}

TEST(ORLFDateRecurrenceDayOfWeek, WritesDayAndNumber) {
  EXPECT_EQ(linesOf(ORLFDateRecurrenceDayOfWeek(-3, 5)),
            (Lines{"integer dayOfTheWeek -3", "integer weekNumber 5"}));
}

TEST(ORLFDateRecurrenceEnd, WritesItsDateWhereItHasOneAndItsCount) {
  EXPECT_EQ(linesOf(ORLFDateRecurrenceEnd(NSDate(), 0)),
            (Lines{"object endDate 1", "integer occurrenceCount 0"}));
  EXPECT_EQ(linesOf(ORLFDateRecurrenceEnd(std::nullopt, 7)), (Lines{"integer occurrenceCount 7"}));
}

template <class Class>
class SecureCoding : public testing::Test {};
using CodedClasses = testing::Types<ORLFDateRecurrencePeriod, ORLFDateRecurrenceDayOfWeek,
                                    ORLFDateRecurrenceEnd, ORLFDateRecurrenceRule>;
TYPED_TEST_SUITE(SecureCoding, CodedClasses);

TYPED_TEST(SecureCoding, IsSupported) {
  EXPECT_TRUE(TypeParam::supportsSecureCoding());
  EXPECT_TRUE(TypeParam::codingClass().supportsSecureCoding());
}

}  // namespace
}  // namespace ORLFoundation
