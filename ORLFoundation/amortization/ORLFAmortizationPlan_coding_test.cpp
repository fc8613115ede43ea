// What archives of plans and segments hold, and what is refused in them.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/platform/archive/NSKeyedArchive_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {
namespace {

/// A value of its own in every field.
Segment fullSegment() {
  auto segment = makeSegment({.principal = number("1.5"),
                              .contribution = number("2.5"),
                              .frequency = monthly(2),
                              .rate = number("0.03"),
                              .inflation = number("0.04")});
  segment->setCompoundingFrequncy(monthly(6));
  segment->setStartDate(kJan24);
  return segment;
}

/// The fields of an archive's root, in the order in which they were written.
std::vector<std::string> fieldsOf(const id& root) {
  const auto archive =
      NSPropertyListSerialization::propertyListWithData(archived(root), 0).as<NSDictionary>();
  const auto objects = archive->objectForKey("$objects").as<NSArray>();
  std::vector<std::string> names;
  for (const id& name : objects->objectAtIndex(1).as<NSDictionary>()->allKeys())
    names.push_back(name.as<std::string>().value());
  return names;
}

template <class T>
auto reread(const id& root) {
  return NSKeyedUnarchiver::unarchivedObjectOfClass<T>(archived(root));
}

using testing::UnorderedElementsAre;

TEST(ORLFAmortizationPlanSegment, WritesEachFieldUnderItsKeyAndLeavesOutWhatIsNil) {
  const Segment segment = fullSegment();
  EXPECT_THAT(fieldsOf(segment),
              UnorderedElementsAre("startDate", "currentPrincipal", "contribution",
                                   "contributionFrequncy", "anualCompoundingRate",
                                   "compoundingFrequncy", "anualInflationRate", "$class"));
  const auto plan = std::make_shared<ORLFAmortizationPlan>();
  const auto linked = makeSegment({.frequency = noPeriod()});
  linked->setAmortizationPlan(plan);
  EXPECT_THAT(fieldsOf(linked), UnorderedElementsAre("amortizationPlan", "$class"));
  EXPECT_THAT(fieldsOf(plan), UnorderedElementsAre("segments", "$class"));
  EXPECT_THAT(fieldsOf(twoYears()), UnorderedElementsAre("segments", "endDate", "$class"));
}

TEST(ORLFAmortizationPlanSegment, ReadsEachFieldBack) {
  const auto back = reread<ORLFAmortizationPlanSegment>(fullSegment());
  ASSERT_TRUE(back);
  EXPECT_EQ(back->description(), fullSegment()->description());
  EXPECT_TRUE(back->isEqual(fullSegment().get()));
  // Without one of its own it is monthly.
  const auto without = reread<ORLFAmortizationPlanSegment>(makeSegment({.frequency = noPeriod()}));
  ASSERT_TRUE(without);
  EXPECT_TRUE(without->contributionFrequncy()->isEqual(monthly().get()));
}

TEST(ORLFAmortizationPlanSegment, ReadsItsPlanThoughThatDoesNotHoldIt) {
  const auto plan = twoYears();
  const auto segment = makeSegment({});
  segment->setAmortizationPlan(plan);
  const auto both = NSKeyedUnarchiver::unarchivedObjectOfClasses<NSArray, ORLFAmortizationPlan,
                                                                 ORLFAmortizationPlanSegment>(
                        archived(list({id(segment), id(plan)})))
                        .as<NSArray>();
  ASSERT_TRUE(both);
  const auto back = both->objectAtIndex(0).as<ORLFAmortizationPlanSegment>();
  EXPECT_EQ(back->amortizationPlan(), both->objectAtIndex(1).as<ORLFAmortizationPlan>());
  EXPECT_TRUE(back->amortizationPlan()->isEqual(plan.get()));
}

TEST(ORLFAmortizationPlanSegment, IsReadAlthoughItsPlanRefersToIt) {
  const auto plan = twoYears();
  const auto back = reread<ORLFAmortizationPlanSegment>(plan->lastSegment());
  ASSERT_TRUE(back);
  EXPECT_TRUE(back->isEqual(plan->lastSegment().get()));
}

TEST(ORLFAmortizationPlan, ReadsItsSegmentsInOrderAndItsEnd) {
  const auto plan = makePlan({{kJan24, {.principal = number("1")}},
                              {utc(2024, 6, 1), {.principal = number("2")}},
                              {kJan25, {.principal = number("3")}}},
                             kJan26);
  const auto back = reread<ORLFAmortizationPlan>(plan);
  ASSERT_TRUE(back);
  EXPECT_TRUE(back->isEqual(plan.get()));
  EXPECT_EQ(back->endDate(), kJan26);
  ASSERT_EQ(back->segments().size(), 3U);
  for (const Segment& member : back->segments()) EXPECT_EQ(member->amortizationPlan(), back);
  EXPECT_EQ(textOf(back->lastSegment()->currentPrincipal()), "3");
}

/// What reading says of a plan of these fields, the further objects of which stand from 2 on.
std::string answerTo(const NSDictionary::Entries& fields, std::vector<id> further) {
  NSDictionary::Entries entries = fields;
  const auto place = static_cast<std::uint32_t>(further.size() + 2);
  entries.emplace_back("$class", uid(place));
  std::vector<id> objects{dictionary(entries)};
  objects.insert(objects.end(), further.begin(), further.end());
  objects.push_back(classNamed("ORLFAmortizationPlan"));
  std::shared_ptr<const NSError> error;
  const auto plan = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlan>(
      archiveOf(std::move(objects)), &error);
  EXPECT_EQ(plan == nullptr, error != nullptr);
  return error ? error->localizedDescription() : plan->description();
}

TEST(ORLFAmortizationPlan, IsReadWithoutSegmentsAndWithoutAnEnd) {
  EXPECT_EQ(answerTo({}, {}), "(\n)\r(null)");
}

TEST(ORLFAmortizationPlan, RefusesSegmentsThatAreNone) {
  const char* const refusal = "A plan holds something else than segments.";
  // A segment in the place of the list, and a list in the place of a segment.
  EXPECT_EQ(answerTo({{"segments", uid(2)}},
                     {dictionary({{"$class", uid(3)}}), classNamed("ORLFAmortizationPlanSegment")}),
            refusal);
  EXPECT_EQ(
      answerTo({{"segments", uid(2)}},
               {dictionary({{"NS.objects", list({uid(3)})}, {"$class", uid(4)}}),
                dictionary({{"NS.objects", list({})}, {"$class", uid(4)}}), classNamed("NSArray")}),
      refusal);
}

}  // namespace
}  // namespace orlftest
