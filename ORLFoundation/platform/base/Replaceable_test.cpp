#include <ORLFoundation/platform/base/Replaceable.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using internal::base::Replaceable;
using internal::base::ReplaceableFunction;
using Text = std::shared_ptr<const std::string>;

int defaultsMade = 0;

Text makeDefault() {
  ++defaultsMade;
  return std::make_shared<const std::string>("default " + std::to_string(defaultsMade));
}

Text text(const char* characters) { return std::make_shared<const std::string>(characters); }

TEST(Replaceable, MakesItsDefaultOnceAndWhenItIsNeeded) {
  static constinit Replaceable<const std::string> door(makeDefault);
  defaultsMade = 0;
  EXPECT_EQ(door.exchange(text("a")), nullptr);
  EXPECT_EQ(*door.current(), "a");
  EXPECT_EQ(defaultsMade, 0);
  EXPECT_EQ(*door.exchange(nullptr), "a");
  EXPECT_EQ(*door.current(), "default 1");
  EXPECT_EQ(*door.current(), "default 1");
  EXPECT_EQ(*door.exchange(text("b")), "default 1");
}

TEST(Replaceable, NullHasTheDefaultMadeAnew) {
  static constinit Replaceable<const std::string> door(makeDefault);
  defaultsMade = 0;
  EXPECT_EQ(*door.current(), "default 1");
  EXPECT_EQ(*door.exchange(nullptr), "default 1");
  EXPECT_EQ(*door.current(), "default 2");
}

TEST(Replaceable, IsNullWithoutADefault) {
  static constinit Replaceable<const std::string> door;
  EXPECT_EQ(door.current(), nullptr);
  EXPECT_EQ(door.exchange(text("a")), nullptr);
  EXPECT_EQ(*door.current(), "a");
  EXPECT_EQ(*door.exchange(nullptr), "a");
  EXPECT_EQ(door.current(), nullptr);
}

TEST(Replaceable, GivesTheDefaultBackWhereNullIsNoAnswer) {
  static constinit Replaceable<const std::string> door(makeDefault);
  defaultsMade = 0;
  EXPECT_EQ(*door.exchangeMade(text("a")), "default 1");
  EXPECT_EQ(*door.exchangeMade(nullptr), "a");
  EXPECT_EQ(*door.exchangeMade(text("b")), "default 2");
  EXPECT_EQ(*door.current(), "b");
}

TEST(ReplaceableFunction, IsNullOrEmptyWhereTheDefaultStands) {
  static constinit ReplaceableFunction<std::function<int()>> door;
  EXPECT_EQ(door.current(), nullptr);
  EXPECT_FALSE(door.exchange([] { return 1; }));
  const auto first = door.current();
  const auto before = door.exchange([] { return 2; });
  EXPECT_EQ((*first)(), 1);  // still held
  EXPECT_EQ(before(), 1);
  EXPECT_EQ((*door.current())(), 2);
  EXPECT_EQ(door.exchange({})(), 2);
  EXPECT_EQ(door.current(), nullptr);
}

constinit Replaceable<const std::string> selfAsking([]() -> Text {
  static int depth = 0;
  ++depth;
  const std::string inner = depth > 1 ? "" : " in " + *selfAsking.current();
  return std::make_shared<const std::string>("made" + inner);
});

TEST(Replaceable, ADefaultMayAskForItselfWhileItIsMade) {
  EXPECT_EQ(*selfAsking.current(), "made");  // the inner one was there first
}

// Deletes itself in the middle of an exchange, and asks there.
struct Asking {
  explicit Asking(Replaceable<Asking>& asked) : door(asked) {}
  ~Asking() { wasEmpty = door.current() == nullptr; }
  Replaceable<Asking>& door;
  static inline bool wasEmpty = false;
};

TEST(Replaceable, AValueMayAskWhileItDies) {
  static constinit Replaceable<Asking> door;
  door.exchange(std::make_shared<Asking>(door));
  door.exchange(nullptr);
  EXPECT_TRUE(Asking::wasEmpty);
}

TEST(Replaceable, ThreadsSeeWholeValuesAndOneDefault) {
  static constinit Replaceable<const std::string> door(
      [] { return std::make_shared<const std::string>(100, 'd'); });
  std::atomic<bool> isDone = false;
  std::atomic<int> faults = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&] {
      while (!isDone) {
        const Text value = door.current();
        if (value->size() != 100 || value->find_first_not_of(value->front()) != value->npos)
          ++faults;
      }
    });
  }
  for (int i = 0; i < 2000; ++i) {
    door.exchange(i % 3 == 0 ? nullptr
                             : std::make_shared<const std::string>(100, i % 3 == 1 ? 'a' : 'b'));
  }
  isDone = true;
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(faults, 0);
}

TEST(Replaceable, RacingThreadsGetOneDefault) {
  for (int round = 0; round < 50; ++round) {
    static constinit Replaceable<const int> door([] { return std::make_shared<const int>(1); });
    door.exchange(nullptr);
    std::vector<std::shared_ptr<const int>> seen(4);
    std::vector<std::thread> threads;
    for (auto& place : seen) threads.emplace_back([&place] { place = door.current(); });
    for (auto& thread : threads) thread.join();
    for (const auto& value : seen) ASSERT_EQ(value, seen.front());
  }
}

constinit Replaceable<const std::string> lent;
Text setLent(Text value) { return lent.exchange(std::move(value)); }

TEST(Replaced, PutsBackWhatStoodThereInTheOrderOfItsLives) {
  {
    const Replaced outer(setLent, text("outer"));
    EXPECT_EQ(outer.before(), nullptr);
    {
      const Replaced inner(setLent, std::make_shared<std::string>("inner"));
      EXPECT_EQ(*inner.before(), "outer");
      EXPECT_EQ(*lent.current(), "inner");
    }
    EXPECT_EQ(*lent.current(), "outer");
  }
  EXPECT_EQ(lent.current(), nullptr);
}

int level = 3;
int setLevel(int value) { return std::exchange(level, value); }

TEST(Replaced, WorksOnEveryFunctionThatGivesBackTheValueBefore) {
  {
    const Replaced raised(setLevel, 9);
    EXPECT_EQ(level, 9);
  }
  EXPECT_EQ(level, 3);
}

}  // namespace
}  // namespace ORLFoundation
