#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/tasks/progress/ORLFProgress_testing.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::RecordingIndicator;
using Item = std::shared_ptr<ORLFProgressItem>;

/// A node as told, without weak references, locks and a second tree.
struct Told {
  double value = 0, minValue = 0, maxValue = 0;
  bool indeterminate = false;
  std::optional<std::string> message;
  long double completed = 0;
  long total = 1000;
  Told* parent = nullptr;
  Told* currentChild = nullptr;
  std::vector<Told*> children;
  bool hadChildren = false;
  bool isOnIndicator = false;
  std::vector<std::string>* events = nullptr;

  void climb(const std::string& event) {
    if (parent) {
      if (parent->currentChild == this) parent->climb(event);
    } else if (isOnIndicator) {
      events->push_back(event);
    }
  }
  void commit() {
    value = value < minValue ? minValue : value;
    value = maxValue < value ? maxValue : value;
    completed = maxValue > 0 ? std::trunc(static_cast<long double>(value / maxValue * 1000)) : 0;
    constexpr long double kMost = std::numeric_limits<std::int64_t>::max();
    constexpr long double kLeast = std::numeric_limits<std::int64_t>::min();
    if (std::isnan(completed)) completed = 0;
    if (completed > kMost) completed = kMost;
    if (completed < kLeast) completed = kLeast;
    total = 1000;
    climb("did");
  }
  void update(double newValue, double newMax) {
    if (newValue == value && newMax == maxValue) return;
    climb("will");
    maxValue = newMax > 0 ? newMax : 0;
    value = newValue;
    commit();
  }
  void update(double newValue) {
    if (newValue == value) return;
    climb("will");
    value = newValue;
    commit();
  }
  void increment(double amount) {
    climb("will");
    value = amount + value;
    commit();
  }
  void setMessage(const std::optional<std::string>& text) {
    if (text == message) return;
    climb("will");
    message = text;
    climb("did");
  }
  void setIndeterminate(bool flag) {
    if (flag == indeterminate) return;
    climb("will");
    indeterminate = flag;
    total = flag ? -1 : 1000;
    climb("did");
  }
  void makeCurrent(Told* child) {
    if (child && std::find(children.begin(), children.end(), child) == children.end()) return;
    if (child == currentChild) return;
    climb("current will");
    currentChild = child;
    climb("current did");
  }
  void remove() {
    if (!parent) return;
    parent->makeCurrent(nullptr);
    std::erase(parent->children, this);
  }
  [[nodiscard]] const Told& shown() const { return currentChild ? currentChild->shown() : *this; }
};

bool same(double left, double right) {
  return left == right || (std::isnan(left) && std::isnan(right));
}

void expectSame(const Told& told, const ORLFProgressItem& item) {
  EXPECT_TRUE(same(told.value, item.value())) << told.value << " " << item.value();
  EXPECT_TRUE(same(told.maxValue, item.maxValue()));
  EXPECT_TRUE(same(told.shown().value, item.currentValue()));
  EXPECT_TRUE(same(told.shown().minValue, item.currentMinValue()));
  EXPECT_TRUE(same(told.shown().maxValue, item.currentMaxValue()));
  EXPECT_EQ(told.shown().message, item.currentMessage());
  EXPECT_EQ(told.shown().indeterminate, item.currentIndeterminate());
  EXPECT_EQ(told.total, item.observerProgress()->totalUnitCount());
}

TEST(ORLFProgressItemLaws, DoesWhatIsToldOnAnyInput) {
  orlftest::VirtualMainLoop loop;
  std::mt19937_64 random(42);
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  const double wild[] = {0,    1,      -1,        0.5,        33.3, 100, 1e300, -1e300, 5e-324,
                         -0.0, 1e-300, kInfinite, -kInfinite, NAN,  10,  150,   1000,   999.9999};
  const auto any = [&] { return wild[random() % std::size(wild)]; };
  for (int round = 0; round < 250; ++round) {
    std::vector<std::string> expected;
    std::vector<std::string> events;
    const auto indicator = std::make_shared<RecordingIndicator>(
        [&](RecordingIndicator&, const std::string& operation, const Item&) {
          events.push_back(std::string(operation.starts_with("current") ? "current " : "") +
                           (operation.find("Will") != operation.npos ? "will" : "did"));
        });
    std::vector<Item> items{std::make_shared<ORLFProgressItem>()};
    std::vector<std::unique_ptr<Told>> told;
    told.push_back(std::make_unique<Told>());
    told[0]->isOnIndicator = true;
    told[0]->events = &expected;
    indicator->displayProgressItem(items[0]);
    events.clear();
    for (int step = 0; step < 30; ++step) {
      const std::size_t at = random() % items.size();
      ORLFProgressItem& item = *items[at];
      Told& node = *told[at];
      const double first = any();
      const double second = any();
      const std::size_t other = random() % items.size();
      switch (random() % 10) {
        case 0:
          item.updateValue(first, second);
          node.update(first, second);
          break;
        case 1:
          item.updateValue(first);
          node.update(first);
          break;
        case 2:
          item.updateValueByIncrement(first);
          node.increment(first);
          break;
        case 3: {
          item.setMinValue(first);
          node.minValue = first;
          break;
        }
        case 4: {
          const auto text = first > 0 ? std::optional(std::to_string(first)) : std::nullopt;
          item.setMessage(text);
          node.setMessage(text);
          break;
        }
        case 5:
          item.setIndeterminate(first > 0);
          node.setIndeterminate(first > 0);
          break;
        case 6:
          item.makeChildCurrent(items[other]);
          node.makeCurrent(told[other].get());
          break;
        case 7:
          if (at == 0) break;
          item.removeFromIndicator();
          node.remove();
          break;
        case 8:
          item.addToIndicator();
          if (node.parent) node.parent->makeCurrent(&node);
          break;
        default:
          items.push_back(item.childProgressItemWithTotalCount(first, second));
          told.push_back(std::make_unique<Told>());
          told.back()->update(0, first > 0 ? first : 0);
          told.back()->parent = &node;
          told.back()->events = &expected;
          node.children.push_back(told.back().get());
          node.hadChildren = true;
      }
      ASSERT_EQ(events, expected) << round << " " << step;
      for (std::size_t i = 0; i < items.size(); ++i) expectSame(*told[i], *items[i]);
      // Children that finish add units of their own.
      if (!node.hadChildren) {
        EXPECT_EQ(static_cast<std::int64_t>(node.completed),
                  item.observerProgress()->completedUnitCount());
      }
      if (testing::Test::HasFailure()) return;
    }
    for (const Item& item : items) item->setCurrentIndicator(nullptr);
    loop.advance(1'000'000'000);
  }
}

/// Leaves that go forward only, in a tree that grows.
TEST(ORLFProgressItemLaws, NeverFallsWhileWorkGoesOn) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 150; ++round) {
    const auto root = std::make_shared<ORLFProgressItem>();
    std::vector<Item> leaves{root->childProgressItemWithTotalCount(10)};
    double before = 0;
    double shownBefore = 0;
    root->makeChildCurrent(leaves[0]);
    for (int step = 0; step < 60; ++step) {
      const Item leaf = leaves[random() % leaves.size()];
      if (random() % 8 == 0) {
        leaves.push_back(root->childProgressItemWithTotalCount(static_cast<double>(random() % 20)));
      } else {
        leaf->updateValueByIncrement(static_cast<double>(random() % 30) / 10);
      }
      const double now = root->observerProgress()->fractionCompleted();
      ASSERT_GE(now, before - 1e-12);
      ASSERT_GE(root->currentValue(), shownBefore);
      before = now;
      shownBefore = root->currentValue();
    }
  }
}

TEST(ORLFProgressItemLaws, FallsWhenTheWorkGrows) {
  const auto root = std::make_shared<ORLFProgressItem>();
  root->updateValue(50, 100);
  root->updateValue(50, 200);
  EXPECT_EQ(root->observerProgress()->fractionCompleted(), 0.25);
}

}  // namespace
}  // namespace ORLFoundation
