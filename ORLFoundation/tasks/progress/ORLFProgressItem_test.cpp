#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/tasks/progress/ORLFProgressItem_testing.h>
#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::RecordingIndicator;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

class ORLFProgressItemTest : public orlftest::ProgressItemTest {};

TEST_F(ORLFProgressItemTest, BeginsAtNothingOfNothing) {
  const ORLFProgressItem item;
  EXPECT_EQ(item.value(), 0);
  EXPECT_EQ(item.minValue(), 0);
  EXPECT_EQ(item.maxValue(), 0);
  EXPECT_EQ(item.currentMessage(), std::nullopt);
  EXPECT_FALSE(item.isIndeterminate());
  EXPECT_THAT(item.children(), IsEmpty());
  EXPECT_EQ(item.parent(), nullptr);
  EXPECT_EQ(item.currentChild(), nullptr);
  EXPECT_EQ(item.currentIndicator(), nullptr);
  EXPECT_EQ(item.boundProgress(), nullptr);
  EXPECT_EQ(units(item), 0);
  EXPECT_EQ(total(item), 1000);
}

struct UpdateCase {
  const char* name;
  double minimum, value, max;
  double storedValue, storedMax;
  std::int64_t units;
};
const UpdateCase kUpdates[] = {
    {"Half", 0, 50, 100, 50, 100, 500},
    {"DividesFirst", 0, 33.3, 100, 33.3, 100, 332},
    {"AboveTheMaximum", 0, 150, 100, 100, 100, 1000},
    {"BelowTheMinimum", 10, 5, 100, 10, 100, 100},
    {"Negative", 0, -5, 100, 0, 100, 0},
    {"NegativeMaximum", 0, 5, -1, 0, 0, 0},
    {"MaximumOfNothing", 0, 5, 0, 0, 0, 0},
    {"MaximumNotANumber", 0, 5, kNaN, 0, 0, 0},
    {"MinimumAboveTheMaximum", 10, 3, 5, 5, 5, 1000},
    {"NegativeMinimum", -50, -20, 100, -20, 100, -200},
    {"InfiniteValue", 0, kInfinity, 100, 100, 100, 1000},
    {"NegativeInfiniteValue", 0, -kInfinity, 100, 0, 100, 0},
    {"InfiniteMaximum", 0, 5, kInfinity, 5, kInfinity, 0},
    {"InfiniteBoth", 0, kInfinity, kInfinity, kInfinity, kInfinity, 0},
    {"InfiniteNegativeMinimum", -kInfinity, -kInfinity, 1, -kInfinity, 1, kLeast},
    {"HugeAndTiny", -1e300, -1e300, 1e-300, -1e300, 1e-300, kLeast},
    {"JustInsideSixtyFourBits", -1e20, -9.2e15, 1, -9.2e15, 1, -9'200'000'000'000'000'000},
    {"Tiny", 0, 5e-324, 1, 5e-324, 1, 0},
    {"MinimumNotANumber", kNaN, 50, 100, 50, 100, 500},
};
class ORLFProgressItemUpdates : public testing::TestWithParam<UpdateCase> {};
TEST_P(ORLFProgressItemUpdates, StoreAndCount) {
  const UpdateCase& row = GetParam();
  ORLFProgressItem item;
  item.setMinValue(row.minimum);
  item.updateValue(row.value, row.max);
  EXPECT_EQ(item.value(), row.storedValue);
  EXPECT_EQ(item.maxValue(), row.storedMax);
  EXPECT_EQ(item.observerProgress()->completedUnitCount(), row.units);
  EXPECT_EQ(item.observerProgress()->totalUnitCount(), 1000);
}
INSTANTIATE_TEST_SUITE_P(Rows, ORLFProgressItemUpdates, testing::ValuesIn(kUpdates),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ORLFProgressItemTest, StoresNothingWithoutAMaximum) {
  root->updateValue(5);
  EXPECT_EQ(root->value(), 0);
  EXPECT_EQ(units(*root), 0);
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  root->updateValueByIncrement(5);
  EXPECT_EQ(root->value(), 0);
}

TEST_F(ORLFProgressItemTest, ReportsNothingForTheSameValues) {
  root->updateValue(0);
  root->updateValue(0, 0);
  EXPECT_THAT(take(), IsEmpty());
  root->updateValue(5, 10);
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  root->updateValue(5, 10);
  root->updateValue(5);
  EXPECT_THAT(take(), IsEmpty());
  root->updateValue(5, 20);
  root->updateValue(6, 20);
  EXPECT_EQ(take().size(), 4U);
}

TEST_F(ORLFProgressItemTest, ReportsAgainWhatWasCut) {
  root->updateValue(0, 100);
  take();
  for (int i = 0; i < 2; ++i) {
    root->updateValue(150);
    EXPECT_EQ(root->value(), 100);
    EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  }
  for (int i = 0; i < 2; ++i) {
    root->updateValue(5, -1);
    EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  }
}

TEST_F(ORLFProgressItemTest, KeepsNotANumberAndReportsItAgain) {
  root->updateValue(5, 10);
  take();
  for (int i = 0; i < 2; ++i) {
    root->updateValue(kNaN);
    EXPECT_TRUE(std::isnan(root->value()));
    EXPECT_EQ(units(*root), 0);
    EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  }
  root->updateValue(kNaN, 10);
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  root->updateValueByIncrement(1);
  EXPECT_TRUE(std::isnan(root->value()));
  root->updateValue(5);
  EXPECT_EQ(units(*root), 500);
}

TEST_F(ORLFProgressItemTest, AddsIncrementsAndReportsThoseOfNothing) {
  root->updateValue(1, 10);
  take();
  root->updateValueByIncrement(0);
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  root->updateValueByIncrement(2.5);
  EXPECT_EQ(root->value(), 3.5);
  EXPECT_EQ(units(*root), 350);
  root->updateValueByIncrement(100);
  EXPECT_EQ(root->value(), 10);
  root->updateValueByIncrement(-20);
  EXPECT_EQ(root->value(), 0);
}

TEST_F(ORLFProgressItemTest, SettersOfNumbersStoreAsTheyAre) {
  root->setValue(kInfinity);
  root->setMaxValue(-3);
  root->setMinValue(7);
  EXPECT_EQ(root->value(), kInfinity);
  EXPECT_EQ(root->maxValue(), -3);
  EXPECT_EQ(root->minValue(), 7);
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_EQ(units(*root), 0);
}

TEST_F(ORLFProgressItemTest, ReportsAnotherMessage) {
  root->setMessage(std::nullopt);
  EXPECT_THAT(take(), IsEmpty());
  root->setMessage("Reading");
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  root->setMessage("Reading");
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_EQ(root->observerProgress()->localizedDescription(), "Reading");
  root->setMessage(std::nullopt);
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  EXPECT_EQ(root->observerProgress()->localizedDescription(), std::nullopt);
  root->setMessage("");
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
}

TEST_F(ORLFProgressItemTest, BecomesIndeterminateUntilTheNextUpdateInItsProgressAlone) {
  root->updateValue(5, 10);
  take();
  root->setIndeterminate(true);
  EXPECT_THAT(take(), ElementsAre("values will", "values did"));
  EXPECT_EQ(total(*root), -1);
  root->setIndeterminate(true);
  EXPECT_THAT(take(), IsEmpty());
  root->updateValue(6);
  EXPECT_EQ(total(*root), 1000);
  EXPECT_TRUE(root->isIndeterminate());
  EXPECT_TRUE(root->currentIndeterminate());
  root->setIndeterminate(false);
  EXPECT_EQ(total(*root), 1000);
  EXPECT_FALSE(root->currentIndeterminate());
}

TEST_F(ORLFProgressItemTest, TellsTheOldIndicatorBeforeAndTheNewOneAfterAChange) {
  std::vector<std::string> others;
  const auto other =
      std::make_shared<RecordingIndicator>([&](RecordingIndicator&, const char* operation,
                                               const auto&) { others.push_back(operation); });
  root->setCurrentIndicator(indicator);
  EXPECT_THAT(take(), IsEmpty());
  root->setCurrentIndicator(other);
  EXPECT_THAT(take(), ElementsAre("values will"));
  EXPECT_THAT(others, ElementsAre("progressValuesDidChangeForItem:"));
  EXPECT_EQ(root->currentIndicator(), other);
  root->setCurrentIndicator(nullptr);
}

TEST_F(ORLFProgressItemTest, LetsGoOfTheLockWhenAnObserverThrows) {
  const auto throwing = std::make_shared<RecordingIndicator>(
      [](RecordingIndicator&, const char*, const auto&) { throw std::runtime_error("refused"); });
  const auto item = std::make_shared<ORLFProgressItem>();
  EXPECT_THROW(item->setCurrentIndicator(throwing), std::runtime_error);
  EXPECT_THROW(item->updateValue(1, 2), std::runtime_error);
  std::thread other([&] { root->updateValue(1, 2); });
  other.join();
  EXPECT_EQ(root->value(), 1);
  EXPECT_THROW(item->setCurrentIndicator(nullptr), std::runtime_error);
  EXPECT_EQ(item->currentIndicator(), throwing);
}

}  // namespace
}  // namespace ORLFoundation
