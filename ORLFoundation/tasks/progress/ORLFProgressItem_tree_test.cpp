// Items with children: what shows, what reports, who stays.
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem_testing.h>
#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <memory>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ORLFProgressItemTree : public orlftest::ProgressItemTest {
 protected:
  static constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  static constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
};

TEST_F(ORLFProgressItemTree, ShowsItsCurrentChildAllTheWayDown) {
  root->updateValue(1, 10);
  root->setMessage("root");
  root->setMinValue(0.5);
  const auto child = root->childProgressItemWithTotalCount(20);
  const auto grandchild = child->childProgressItemWithTotalCount(30);
  grandchild->setMinValue(2);
  grandchild->updateValue(3);
  grandchild->setIndeterminate(true);
  EXPECT_EQ(root->currentMaxValue(), 10);
  root->makeChildCurrent(child);
  EXPECT_EQ(root->currentMaxValue(), 20);
  EXPECT_EQ(root->currentMessage(), std::nullopt);
  EXPECT_EQ(root->message(), "root");
  child->makeChildCurrent(grandchild);
  EXPECT_EQ(root->currentMaxValue(), 30);
  EXPECT_EQ(root->currentMinValue(), 2);
  EXPECT_EQ(root->currentValue(), 3);
  EXPECT_TRUE(root->currentIndeterminate());
  grandchild->setMessage("leaf");
  EXPECT_EQ(root->currentMessage(), "leaf");
  root->makeChildCurrent(nullptr);
  EXPECT_EQ(root->currentValue(), 1);
  EXPECT_EQ(root->currentMinValue(), 0.5);
  EXPECT_EQ(root->currentMessage(), "root");
}

TEST_F(ORLFProgressItemTree, ReportsAlongTheChainOfCurrentChildrenOnly) {
  const auto child = root->childProgressItemWithTotalCount(20);
  const auto grandchild = child->childProgressItemWithTotalCount(30);
  EXPECT_THAT(take(), IsEmpty());
  child->makeChildCurrent(grandchild);
  grandchild->updateValue(3);
  EXPECT_THAT(take(), IsEmpty());
  root->makeChildCurrent(child);
  EXPECT_THAT(take(), ElementsAre("current will", "current did"));
  grandchild->updateValue(4);
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  child->makeChildCurrent(nullptr);
  EXPECT_THAT(take(), ElementsAre("current will", "current did"));
  grandchild->updateValue(5);
  EXPECT_THAT(take(), IsEmpty());
  root->updateValue(5);  // its own too, though the child is on show
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
}

TEST_F(ORLFProgressItemTree, MakesOnlyOtherChildrenOfItsOwnCurrent) {
  const auto child = root->childProgressItemWithTotalCount(20);
  const auto stranger = ORLFProgressItem().childProgressItemWithTotalCount(5);
  root->makeChildCurrent(stranger);
  root->makeChildCurrent(root);
  root->makeChildCurrent(nullptr);
  EXPECT_THAT(take(), IsEmpty());
  root->makeChildCurrent(child);
  take();
  root->makeChildCurrent(child);
  root->makeChildCurrent(stranger);
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_EQ(root->currentChild(), child);
}

TEST_F(ORLFProgressItemTree, OpensChildrenOfACountOrOfNothing) {
  EXPECT_EQ(root->childProgressItemWithTotalCount(7)->maxValue(), 7);
  EXPECT_EQ(root->childProgressItemWithTotalCount(-3)->maxValue(), 0);
  EXPECT_EQ(root->childProgressItemWithTotalCount(kNaN)->maxValue(), 0);
  EXPECT_EQ(root->childProgressItemWithTotalCount(kInfinity)->maxValue(), kInfinity);
  const auto children = root->children();
  ASSERT_EQ(children.size(), 4U);
  EXPECT_EQ(children[0]->maxValue(), 7);
  EXPECT_EQ(children[0]->parent(), root);
  EXPECT_EQ(root->currentChild(), nullptr);
}

TEST_F(ORLFProgressItemTree, CountsEachChildForTheWholeWhateverThePercentage) {
  for (const double percentage : {0.0, 0.25, 1.0, 2.0, -1.0, kNaN, kInfinity, -kInfinity}) {
    const auto item = std::make_shared<ORLFProgressItem>();
    const auto child = item->childProgressItemWithTotalCount(10, percentage);
    child->updateValue(5);
    EXPECT_EQ(item->observerProgress()->fractionCompleted(), 0.5) << percentage;
    child->updateValue(10);
    EXPECT_EQ(units(*item), 1000) << percentage;
  }
  const auto item = std::make_shared<ORLFProgressItem>();
  item->setIndeterminate(true);
  const auto child = item->childProgressItemWithTotalCount(10);
  child->updateValue(10);
  EXPECT_EQ(units(*item), -1);
}

TEST_F(ORLFProgressItemTree, AddsAnItemToAProgressOnce) {
  const auto progress = NSProgress::discreteProgressWithTotalUnitCount(kMost);
  const auto item = std::make_shared<ORLFProgressItem>();
  addProgressItem(*progress, item, 0.1);
  item->updateValue(1, 1);
  EXPECT_EQ(progress->completedUnitCount(), kMost);  // 2^63 as a double
  EXPECT_THROW(addProgressItem(*progress, item, 0.1), NSException);
  const auto child = item->childProgressItemWithTotalCount(10);
  addProgressItem(*progress, child, 0.1);
  addProgressItem(*progress, nullptr, 0.1);
}

TEST_F(ORLFProgressItemTree, ShowsItselfInItsParentOrOnItsIndicator) {
  const auto child = root->childProgressItemWithTotalCount(20);
  child->addToIndicator();
  EXPECT_EQ(root->currentChild(), child);
  take();
  root->addToIndicator();  // listed already
  EXPECT_THAT(take(), IsEmpty());
  const auto loose = std::make_shared<ORLFProgressItem>();
  loose->addToIndicator();
  loose->removeFromIndicator();
  EXPECT_EQ(loose->currentIndicator(), nullptr);
}

TEST_F(ORLFProgressItemTree, IsNotListedByItsOwnWordAlone) {
  const auto item = std::make_shared<ORLFProgressItem>();
  const auto quiet = std::make_shared<ORLFProgressIndicator>();
  item->setCurrentIndicator(quiet);
  item->addToIndicator();
  EXPECT_FALSE(quiet->isDisplayingProgressItem(item));
  EXPECT_EQ(quiet->progressItems(), std::nullopt);
  item->setCurrentIndicator(nullptr);
}

TEST_F(ORLFProgressItemTree, ClearsTheCurrentChildWithAnyChildThatLeaves) {
  const auto first = root->childProgressItemWithTotalCount(1);
  const auto second = root->childProgressItemWithTotalCount(2);
  first->addToIndicator();
  take();
  second->removeFromIndicator();
  EXPECT_THAT(take(), ElementsAre("current will", "current did"));
  EXPECT_EQ(root->currentChild(), nullptr);
  EXPECT_THAT(root->children(), ElementsAre(first));
  EXPECT_EQ(second->parent(), root);
  second->updateValue(1);
  EXPECT_EQ(root->observerProgress()->fractionCompleted(), 0.5);  // the tie of progress stays
  second->removeFromIndicator();
  root->makeChildCurrent(second);
  EXPECT_EQ(root->currentChild(), nullptr);
}

TEST_F(ORLFProgressItemTree, IsARootWhenItsParentIsGone) {
  auto parent = std::make_shared<ORLFProgressItem>();
  const auto child = parent->childProgressItemWithTotalCount(5);
  parent->makeChildCurrent(child);
  parent.reset();
  EXPECT_EQ(child->parent(), nullptr);
  indicator->removeProgressItem(root);
  root = child;
  indicator->displayProgressItem(child);
  take();
  child->updateValue(3);
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
}

}  // namespace
}  // namespace ORLFoundation
