#include <ORLFoundation/platform/operation/NSProgress.h>

#include <ORLFoundation/platform/operation/NSProgress_testing.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>

#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

using orlftest::progressOf;

TEST(NSProgress, BeginsWithNothingDone) {
  const auto progress = NSProgress::discreteProgressWithTotalUnitCount(1000);
  EXPECT_EQ(progress->totalUnitCount(), 1000);
  EXPECT_EQ(progress->completedUnitCount(), 0);
  EXPECT_EQ(progress->fractionCompleted(), 0);
  EXPECT_FALSE(progress->isIndeterminate());
  EXPECT_FALSE(progress->isFinished());
  EXPECT_EQ(progress->localizedDescription(), std::nullopt);
}

struct CountsCase {
  const char* name;
  std::int64_t completed, total;
  double fraction;
  bool isIndeterminate, isFinished;
};
const CountsCase kCounts[] = {
    {"Half", 5, 10, 0.5, false, false},
    {"All", 10, 10, 1, false, true},
    {"MoreThanAll", 15, 10, 1.5, false, true},
    {"NothingOfNothing", 0, 0, 0, true, false},
    {"SomethingOfNothing", 3, 0, 1, false, true},
    {"NegativeTotal", 3, -1, 0, true, false},
    {"NothingOfNegativeTotal", 0, -1, 0, true, false},
    {"NegativeCount", -3, 10, 0, true, false},
    {"NegativeCountOfNothing", -3, 0, 0, true, false},
    {"BothNegative", -10, -10, 0, true, false},
    {"Largest", kMost, kMost, 1, false, true},
    {"Smallest", kLeast, kLeast, 0, true, false},
};
class NSProgressCounts : public testing::TestWithParam<CountsCase> {};
TEST_P(NSProgressCounts, TellFractionAndState) {
  const CountsCase& row = GetParam();
  const auto progress = progressOf(row.total, row.completed);
  EXPECT_EQ(progress->fractionCompleted(), row.fraction);
  EXPECT_EQ(progress->isIndeterminate(), row.isIndeterminate);
  EXPECT_EQ(progress->isFinished(), row.isFinished);
}
INSTANTIATE_TEST_SUITE_P(Rows, NSProgressCounts, testing::ValuesIn(kCounts),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(NSProgress, CountsAChildAsItsShareOfTheParent) {
  const auto whole = progressOf(10, 2);
  const auto part = progressOf(4);
  whole->addChild(part, 5);
  EXPECT_EQ(whole->fractionCompleted(), 0.2);
  part->setCompletedUnitCount(2);
  EXPECT_EQ(whole->fractionCompleted(), 0.45);
  EXPECT_EQ(whole->completedUnitCount(), 2);
  part->setCompletedUnitCount(1);
  EXPECT_EQ(whole->fractionCompleted(), 0.325);
}

TEST(NSProgress, CountsWhatAChildHasDoneBeforeItWasAdded) {
  const auto whole = progressOf(10);
  whole->addChild(progressOf(4, 2), 5);
  EXPECT_EQ(whole->fractionCompleted(), 0.25);
  whole->addChild(progressOf(4, 4), 5);
  EXPECT_EQ(whole->fractionCompleted(), 0.75);
  EXPECT_EQ(whole->completedUnitCount(), 5);
}

TEST(NSProgress, TakesTheUnitsOfAChildThatFinishes) {
  const auto whole = progressOf(10);
  const auto first = progressOf(3);
  const auto second = progressOf(7);
  whole->addChild(first, 4);
  whole->addChild(second, 6);
  first->setCompletedUnitCount(3);
  EXPECT_EQ(whole->completedUnitCount(), 4);
  EXPECT_EQ(whole->fractionCompleted(), 0.4);
  second->setCompletedUnitCount(7);
  EXPECT_EQ(whole->completedUnitCount(), 10);
  EXPECT_TRUE(whole->isFinished());
}

TEST(NSProgress, GoesBackWithAChildThatGoesBackAndTakesItsUnitsAnew) {
  const auto whole = progressOf(1000);
  const auto part = progressOf(1000);
  whole->addChild(part, 1000);
  part->setCompletedUnitCount(1000);
  part->setCompletedUnitCount(10);
  EXPECT_EQ(whole->completedUnitCount(), 1000);
  EXPECT_DOUBLE_EQ(whole->fractionCompleted(), 0.01);
  part->setCompletedUnitCount(1000);
  EXPECT_EQ(whole->completedUnitCount(), 2000);
  EXPECT_EQ(whole->fractionCompleted(), 1);
}

TEST(NSProgress, TakesTheUnitsOfAFinishedChildAgainWithEachChangeOfIt) {
  const auto whole = progressOf(1000);
  const auto part = progressOf(1000, 1000);
  whole->addChild(part, 1000);
  EXPECT_EQ(whole->completedUnitCount(), 1000);
  part->setCompletedUnitCount(1000);
  EXPECT_EQ(whole->completedUnitCount(), 1000);
  part->setCompletedUnitCount(1200);
  EXPECT_EQ(whole->completedUnitCount(), 2000);
}

TEST(NSProgress, GivesNoUnitsForAChildOfNone) {
  const auto whole = progressOf(10);
  whole->addChild(progressOf(4, 4), 0);
  EXPECT_EQ(whole->completedUnitCount(), 0);
  EXPECT_EQ(whole->fractionCompleted(), 0);
}

TEST(NSProgress, LetsChildrenKeepTheirUnitsUnderAnotherTotal) {
  const auto whole = progressOf(10);
  whole->addChild(progressOf(4, 2), 5);
  whole->setTotalUnitCount(20);
  EXPECT_EQ(whole->fractionCompleted(), 0.125);
  whole->setTotalUnitCount(5);
  EXPECT_EQ(whole->fractionCompleted(), 0.5);
}

TEST(NSProgress, StaysIndeterminateWithTheChildrenThatItHadBelowATotalOfZero) {
  const auto whole = progressOf(1000, 500);
  const auto part = progressOf(1000);
  whole->addChild(part, 1000);
  EXPECT_EQ(whole->fractionCompleted(), 0.5);
  whole->setTotalUnitCount(-1);
  EXPECT_TRUE(whole->isIndeterminate());
  EXPECT_EQ(whole->fractionCompleted(), 0);
  whole->setTotalUnitCount(1000);
  EXPECT_FALSE(whole->isIndeterminate());
  EXPECT_EQ(whole->fractionCompleted(), 0);
}

TEST(NSProgress, IsAsBeforeAfterATotalBelowZeroWithoutChildren) {
  const auto whole = progressOf(1000, 500);
  whole->setTotalUnitCount(-1);
  whole->setTotalUnitCount(1000);
  EXPECT_EQ(whole->fractionCompleted(), 0.5);
}

TEST(NSProgress, CountsAnIndeterminateChildForNothing) {
  const auto whole = progressOf(10);
  const auto part = progressOf(4, 2);
  whole->addChild(part, 10);
  part->setTotalUnitCount(-1);
  EXPECT_EQ(whole->fractionCompleted(), 0);
  part->setTotalUnitCount(4);
  EXPECT_EQ(whole->fractionCompleted(), 0.5);
}

TEST(NSProgress, AddsThirdsUpToOneExactly) {
  const auto whole = progressOf(3);
  std::vector<std::shared_ptr<NSProgress>> parts;
  for (int i = 0; i < 3; ++i) {
    parts.push_back(progressOf(7));
    whole->addChild(parts.back(), 1);
  }
  for (int done = 1; done <= 6; ++done)
    for (const auto& part : parts) part->setCompletedUnitCount(done);
  EXPECT_DOUBLE_EQ(whole->fractionCompleted(), 6.0 / 7);
  const auto above = progressOf(5);
  above->addChild(whole, 5);
  for (const auto& part : parts) part->setCompletedUnitCount(7);
  EXPECT_EQ(above->completedUnitCount(), 5);
  EXPECT_EQ(above->fractionCompleted(), 1);
}

TEST(NSProgress, KeepsAddingWhereCountsPassSixtyFourBits) {
  const auto root = progressOf(1000);
  auto leaf = root;
  for (int depth = 0; depth < 12; ++depth) {
    const auto child = progressOf(997 + depth);
    leaf->addChild(child, leaf->totalUnitCount());
    leaf = child;
  }
  leaf->setCompletedUnitCount(leaf->totalUnitCount() / 2);
  EXPECT_NEAR(root->fractionCompleted(), leaf->fractionCompleted(), 1e-12);
  leaf->setCompletedUnitCount(leaf->totalUnitCount());
  EXPECT_EQ(root->fractionCompleted(), 1);
}

TEST(NSProgress, RefusesAChildThatHasAParentOrIsAnAncestor) {
  const auto first = progressOf(10);
  const auto second = progressOf(10);
  const auto child = progressOf(10, 5);
  first->addChild(child, 10);
  EXPECT_THROW(first->addChild(child, 10), NSException);
  EXPECT_THROW(second->addChild(child, 10), NSException);
  EXPECT_THROW(child->addChild(first, 10), NSException);
  EXPECT_THROW(child->addChild(child, 10), NSException);
  EXPECT_THROW(second->addChild(second, 10), NSException);
  EXPECT_THROW(second->addChild(nullptr, 10), NSException);
  NSProgress unowned(10);
  EXPECT_THROW(unowned.addChild(second, 10), NSException);
  EXPECT_EQ(first->fractionCompleted(), 0.5);
  EXPECT_EQ(second->fractionCompleted(), 0);
  first->addChild(second, 10);
  second->setCompletedUnitCount(2);
  EXPECT_EQ(first->fractionCompleted(), 0.7);
}

TEST(NSProgress, HoldsChildrenUntilTheyHaveFinished) {
  const auto whole = progressOf(10);
  auto part = progressOf(4);
  const auto leaf = progressOf(2);
  whole->addChild(part, 10);
  part->addChild(leaf, 4);
  const std::weak_ptr<NSProgress> weak = part;
  part.reset();
  leaf->setCompletedUnitCount(1);
  EXPECT_EQ(whole->fractionCompleted(), 0.5);
  EXPECT_FALSE(weak.expired());
  leaf->setCompletedUnitCount(2);
  EXPECT_EQ(whole->completedUnitCount(), 10);
  EXPECT_TRUE(weak.expired());
  auto done = progressOf(2, 2);
  whole->addChild(done, 0);
  EXPECT_EQ(done.use_count(), 1);
}

TEST(NSProgress, OutlivesItsParent) {
  auto whole = progressOf(10);
  auto part = progressOf(4);
  whole->addChild(part, 4);
  whole.reset();
  part->setCompletedUnitCount(3);
  EXPECT_EQ(part->fractionCompleted(), 0.75);
  EXPECT_THROW(progressOf(10)->addChild(part, 1), NSException);
}

TEST(NSProgress, TakesAnyCounts) {
  std::mt19937_64 random(7);
  const std::int64_t wild[] = {0, 1, -1, 2, 1000, -1000, kMost, kLeast, kMost - 1, kLeast + 1, 997};
  const auto any = [&] { return wild[random() % std::size(wild)]; };
  for (int round = 0; round < 2000; ++round) {
    std::vector<std::shared_ptr<NSProgress>> tree{progressOf(any())};
    for (int step = 0; step < 25; ++step) {
      const auto& node = tree[random() % tree.size()];
      switch (random() % 3) {
        case 0:
          tree.push_back(progressOf(any(), any()));
          tree[random() % (tree.size() - 1)]->addChild(tree.back(), any());
          break;
        case 1:
          node->setTotalUnitCount(any());
          break;
        default:
          node->setCompletedUnitCount(any());
      }
      const double fraction = tree.front()->fractionCompleted();
      ASSERT_TRUE(fraction >= 0 && fraction <= std::numeric_limits<double>::max()) << fraction;
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
