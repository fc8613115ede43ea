// The rule as a value: construction, copies, equality, keys.

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;

Rule::Recurrence full() {
  return {.frequency = ORLFDateRecurrenceFrequencyYearly,
          .interval = 3,
          .anchorIndex = 2,
          .absolute = true,
          .daysOfTheWeek = {{ORLFDateRecurrenceDayOfWeek::dayOfWeek(2)}},
          .daysOfTheMonth = {{1, 15}},
          .monthsOfTheYear = {{6}},
          .weeksOfTheYear = {{20, 21}},
          .daysOfTheYear = {{5}},
          .setPositions = {{-1}}};
}

struct AnchorCase {
  NSInteger interval, anchor, stored;
};
constexpr AnchorCase kAnchors[] = {{3, 1, 1},
                                   {3, 3, 3},
                                   {3, 4, 1},
                                   {3, 7, 1},
                                   {3, 0, 3},
                                   {3, -1, 3},
                                   {3, -3, 1},
                                   {3, -4, 0},
                                   {1, 5, 1},
                                   {1, 0, 1},
                                   {0, 5, 1},
                                   {0, 0, 0},
                                   {0, -1, 0},
                                   {-2, 3, 1},
                                   {-1, NSIntegerMax, 1},
                                   {3, NSIntegerMin, NSIntegerMin + 4}};

TEST(ORLFDateRecurrenceRule, NormalizesItsAnchor) {
  for (const AnchorCase& row : kAnchors) {
    const Rule rule(Rule::Recurrence{.interval = row.interval, .anchorIndex = row.anchor});
    EXPECT_EQ(rule.anchorIndex(), row.stored) << row.interval << ' ' << row.anchor;
  }
}

TEST(ORLFDateRecurrenceRule, StoresItsFields) {
  const Rule rule(full());
  EXPECT_EQ(rule.frequency(), ORLFDateRecurrenceFrequencyYearly);
  EXPECT_EQ(rule.interval(), 3);
  EXPECT_EQ(rule.anchorIndex(), 2);
  EXPECT_TRUE(rule.absolute());
  EXPECT_EQ(rule.daysOfTheWeek()->front()->dayOfTheWeek(), 2);
  EXPECT_EQ(rule.daysOfTheMonth(), (Rule::Integers{{1, 15}}));
  EXPECT_EQ(rule.monthsOfTheYear(), (Rule::Integers{{6}}));
  EXPECT_EQ(rule.weeksOfTheYear(), (Rule::Integers{{20, 21}}));
  EXPECT_EQ(rule.daysOfTheYear(), (Rule::Integers{{5}}));
  EXPECT_EQ(rule.setPositions(), (Rule::Integers{{-1}}));
  EXPECT_FALSE(rule.isSimpleRecurrence());
}

TEST(ORLFDateRecurrenceRule, IsSimpleWithAFrequencyAndAnInterval) {
  const Rule rule(ORLFDateRecurrenceFrequencyMonthly, 4);
  EXPECT_EQ(rule.anchorIndex(), 4);
  EXPECT_FALSE(rule.absolute());
  EXPECT_TRUE(rule.isSimpleRecurrence());
}

TEST(ORLFDateRecurrenceRule, TakesEmptyListsForNone) {
  const Rule rule(Rule::Recurrence{.daysOfTheWeek = Rule::DaysOfTheWeek::value_type{},
                                   .daysOfTheMonth = Rule::Integers::value_type{},
                                   .monthsOfTheYear = Rule::Integers::value_type{},
                                   .weeksOfTheYear = Rule::Integers::value_type{},
                                   .daysOfTheYear = Rule::Integers::value_type{},
                                   .setPositions = Rule::Integers::value_type{}});
  EXPECT_TRUE(rule.isSimpleRecurrence());
}

TEST(ORLFDateRecurrenceRule, IsNotSimpleWithAnyOneList) {
  const Rule::Integers one = {{1}};
  EXPECT_FALSE(Rule(Rule::Recurrence{.daysOfTheMonth = one}).isSimpleRecurrence());
  EXPECT_FALSE(Rule(Rule::Recurrence{.monthsOfTheYear = one}).isSimpleRecurrence());
  EXPECT_FALSE(Rule(Rule::Recurrence{.weeksOfTheYear = one}).isSimpleRecurrence());
  EXPECT_FALSE(Rule(Rule::Recurrence{.daysOfTheYear = one}).isSimpleRecurrence());
  EXPECT_FALSE(Rule(Rule::Recurrence{.setPositions = one}).isSimpleRecurrence());
  EXPECT_FALSE(
      Rule(Rule::Recurrence{.daysOfTheWeek = {{ORLFDateRecurrenceDayOfWeek::dayOfWeek(1)}}})
          .isSimpleRecurrence());
}

TEST(ORLFDateRecurrenceRule, KeepsTheFieldsOfAnArchiveAsTheyAre) {
  const auto rule = Rule::ruleWithFields(
      {.interval = 3, .anchorIndex = 0, .daysOfTheMonth = Rule::Integers::value_type{}});
  EXPECT_EQ(rule->anchorIndex(), 0);
  EXPECT_FALSE(rule->isSimpleRecurrence());
}

TEST(ORLFDateRecurrenceRule, StoresAnyAnchorThatIsSet) {
  Rule rule(ORLFDateRecurrenceFrequencyMonthly, 3);
  rule.setAnchorIndex(99);
  rule.setAbsolute(true);
  EXPECT_EQ(rule.anchorIndex(), 99);
  EXPECT_TRUE(rule.absolute());
}

TEST(ORLFDateRecurrenceRule, CopiesItsSimplePart) {
  const auto simple = std::make_shared<Rule>(ORLFDateRecurrenceFrequencyWeekly, 2);
  EXPECT_EQ(simple->copySimpleRecurrence(), simple);
  const auto rule = std::make_shared<Rule>(full());
  const auto part = rule->copySimpleRecurrence();
  EXPECT_NE(part, rule);
  EXPECT_TRUE(part->isSimpleRecurrence());
  EXPECT_EQ(part->frequency(), rule->frequency());
  EXPECT_EQ(part->interval(), 3);
  EXPECT_EQ(part->anchorIndex(), 3);
  EXPECT_FALSE(part->absolute());
}

TEST(ORLFDateRecurrenceRule, CopiesAllFieldsWithoutNormalizing) {
  const auto rule = Rule::ruleWithFields(full());
  rule->setAnchorIndex(-7);
  const auto copy = copyOf(rule);
  EXPECT_NE(copy, rule);
  EXPECT_TRUE(copy->isEqual(rule.get()));
  EXPECT_EQ(copy->anchorIndex(), -7);
  EXPECT_TRUE(copy->absolute());
  rule->setAnchorIndex(1);
  EXPECT_EQ(copy->anchorIndex(), -7);
}

class Reminder final : public Rule {
 public:
  using Rule::Rule;
  [[nodiscard]] std::string className() const override { return "Reminder"; }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return std::make_shared<Reminder>(kDaily, 9);
  }
};

TEST(ORLFDateRecurrenceRule, CopiesASubclassToItsOwnClass) {
  const auto reminder = std::make_shared<Reminder>(full());
  reminder->setAnchorIndex(-7);
  const auto copy = copyOf(reminder);
  EXPECT_NE(copy, reminder);
  EXPECT_EQ(copy->className(), "Reminder");
  EXPECT_TRUE(copy->isEqual(reminder.get()));
  EXPECT_TRUE(copy->absolute());
  const auto simple = reminder->copySimpleRecurrence();
  EXPECT_EQ(simple->className(), "Reminder");
  EXPECT_TRUE(simple->isEqual(std::make_shared<Rule>(kYearly, 3).get()));
  EXPECT_FALSE(simple->absolute());
}

class Unfinished final : public Rule {
 public:
  using Rule::Rule;
};

TEST(ORLFDateRecurrenceRule, RefusesACopyOfASubclassThatMakesNoObjectsOfItsOwn) {
  const auto rule = std::make_shared<Unfinished>(full());
  EXPECT_THROW(static_cast<void>(rule->copy()), NSException);
  EXPECT_THROW(static_cast<void>(rule->copySimpleRecurrence()), NSException);
}

TEST(ORLFDateRecurrenceRule, AnswersAnEqualRuleForOneOnTheStack) {
  Rule monthly(kMonthly, 2);
  monthly.setAnchorIndex(1);
  monthly.setAbsolute(true);
  const auto part = monthly.copySimpleRecurrence();
  EXPECT_NE(part.get(), &monthly);
  EXPECT_TRUE(part->isEqual(&monthly));
  EXPECT_TRUE(part->absolute());
  Rule rule(full());
  EXPECT_TRUE(rule.copy()->isEqual(&rule));
  EXPECT_TRUE(rule.copySimpleRecurrence()->isSimpleRecurrence());
  Reminder reminder(kMonthly, 2);
  EXPECT_EQ(reminder.copySimpleRecurrence()->className(), "Reminder");
}

TEST(ORLFDateRecurrenceRule, LeavesNilOutOfItsLists) {
  const Rule::DaysOfTheWeek days = {{nullptr, ORLFDateRecurrenceDayOfWeek::dayOfWeek(2), nullptr}};
  EXPECT_EQ(Rule(Rule::Recurrence{.daysOfTheWeek = days}).daysOfTheWeek()->size(), 1U);
  EXPECT_EQ(Rule::ruleWithFields({.daysOfTheWeek = days})->daysOfTheWeek()->size(), 1U);
  EXPECT_TRUE(Rule(Rule::Recurrence{.daysOfTheWeek = {{nullptr}}}).isSimpleRecurrence());
}

TEST(ORLFDateRecurrenceRule, IsEqualWithoutRegardToAbsolute) {
  const auto left = Rule::ruleWithFields(full());
  const auto right = Rule::ruleWithFields(full());
  right->setAbsolute(false);
  EXPECT_TRUE(left->isEqual(right.get()));
  EXPECT_EQ(left->hash(), right->hash());
}

TEST(ORLFDateRecurrenceRule, DiffersInEachOtherField) {
  const auto rule = Rule::ruleWithFields(full());
  const auto differs = [&](auto change) {
    Rule::Recurrence fields = full();
    change(fields);
    return !rule->isEqual(Rule::ruleWithFields(fields).get());
  };
  EXPECT_TRUE(differs([](auto& f) { f.frequency = ORLFDateRecurrenceFrequencyDaily; }));
  EXPECT_TRUE(differs([](auto& f) { f.interval = 4; }));
  EXPECT_TRUE(differs([](auto& f) { f.anchorIndex = 1; }));
  EXPECT_TRUE(differs([](auto& f) { f.daysOfTheWeek.reset(); }));
  EXPECT_TRUE(differs(
      [](auto& f) { f.daysOfTheWeek = {{std::make_shared<ORLFDateRecurrenceDayOfWeek>(2, 1)}}; }));
  EXPECT_TRUE(differs([](auto& f) { f.daysOfTheMonth = {{15, 1}}; }));
  EXPECT_TRUE(differs([](auto& f) { f.monthsOfTheYear.reset(); }));
  EXPECT_TRUE(differs([](auto& f) { f.weeksOfTheYear = {{20}}; }));
  EXPECT_TRUE(differs([](auto& f) { f.daysOfTheYear = {{6}}; }));
  EXPECT_TRUE(differs([](auto& f) { f.setPositions = {{1}}; }));
  EXPECT_FALSE(rule->isEqual(nullptr));
  EXPECT_FALSE(rule->isEqual(std::make_shared<NSObject>().get()));
}

TEST(ORLFDateRecurrenceRule, HashesTheSumOfItsFields) {
  EXPECT_EQ(Rule(ORLFDateRecurrenceFrequencyMonthly, 4).hash(), 16U);
  // Lists count by their lengths: one weekday, two days, one month, two weeks, one day, one
  // position.
  EXPECT_EQ(Rule::ruleWithFields(full())->hash(), 3U + 2 + 4 + 1 + 2 + 1 + 2 + 1 + 1);
}

TEST(ORLFDateRecurrenceRule, IsReadByKey) {
  const auto rule = Rule::ruleWithFields(full());
  EXPECT_EQ(rule->className(), "ORLFDateRecurrenceRule");
  EXPECT_EQ(rule->valueForKey("frequency").as<NSInteger>(), 4);
  EXPECT_EQ(rule->valueForKey("absolute").as<bool>(), true);
  EXPECT_EQ(rule->valueForKey("weeksOfTheYear").as<NSArray>()->count(), 2U);
  EXPECT_EQ(rule->valueForKey("daysOfTheWeek").as<NSArray>()->count(), 1U);
  EXPECT_TRUE(Rule(ORLFDateRecurrenceFrequencyDaily, 1).valueForKey("setPositions").isNil());
  rule->setValueForKey(5, "anchorIndex");
  EXPECT_EQ(rule->anchorIndex(), 5);
}

}  // namespace
}  // namespace ORLFoundation
