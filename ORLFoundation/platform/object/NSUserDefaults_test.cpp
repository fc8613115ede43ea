#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSUserDefaults.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using Defaults = std::shared_ptr<NSUserDefaults>;

TEST(NSUserDefaults, LooksIntoArgumentsThenSettingsThenRegistered) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  EXPECT_TRUE(defaults->objectForKey("a").isNil());
  defaults->registerDefaults(*NSDictionary::dictionaryWithEntries({{"a", "registered"}}));
  EXPECT_EQ(defaults->objectForKey("a"), id("registered"));
  defaults->setObject("set", "a");
  EXPECT_EQ(defaults->objectForKey("a"), id("set"));
  defaults->setArguments(*NSDictionary::dictionaryWithEntries({{"a", "argument"}}));
  EXPECT_EQ(defaults->valueForKey("a"), id("argument"));
  defaults->setArguments(NSDictionary());
  defaults->removeObjectForKey("a");
  EXPECT_EQ(defaults->objectForKey("a"), id("registered"));
  defaults->setValueForKey("again", "a");
  EXPECT_EQ(defaults->valueForKeyPath("a"), id("again"));
  defaults->setObject(nullptr, "a");
  EXPECT_EQ(defaults->objectForKey("a"), id("registered"));
}

struct BoolCase {
  id value;
  bool answer;
};
const BoolCase kBools[] = {
    {nullptr, false}, {true, true},   {false, false}, {2, true},         {0.5, true},
    {"YES", true},    {"yes", true},  {"true", true}, {"T", true},       {"1", true},
    {"  +007", true}, {"-1", true},   {"NO", false},  {"0", false},      {"", false},
    {"false", false}, {"000", false}, {"x1", false},  {NSDate(), false},
};

TEST(NSUserDefaults, ReadsBooleansFromNumbersAndText) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  for (const auto& row : kBools) {
    defaults->setObject(row.value, "a");
    EXPECT_EQ(defaults->boolForKey("a"), row.answer) << row.value.description();
  }
}

TEST(NSUserDefaults, ReadsIntegersAndText) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  defaults->setObject(" +42 apples", "a");
  EXPECT_EQ(defaults->integerForKey("a"), 42);
  defaults->setObject("99999999999999999999", "a");
  EXPECT_EQ(defaults->integerForKey("a"), NSIntegerMax);
  defaults->setObject("-99999999999999999999", "a");
  EXPECT_EQ(defaults->integerForKey("a"), NSIntegerMin);
  defaults->setObject(3.9, "a");
  EXPECT_EQ(defaults->integerForKey("a"), 3);
  EXPECT_EQ(defaults->stringForKey("a"), "3.9");
  EXPECT_EQ(defaults->integerForKey("b"), 0);
  EXPECT_EQ(defaults->stringForKey("b"), std::nullopt);
}

TEST(NSUserDefaults, RefusesWhatFitsNoPropertyList) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  EXPECT_THROW(defaults->setObject(NSNull(), "a"), NSException);
  EXPECT_THROW(defaults->setObject(std::make_shared<NSObject>(), "a"), NSException);
  defaults->setObject(NSArray::arrayWithObjects({1, "x"}), "a");
  EXPECT_FALSE(defaults->objectForKey("a").isNil());
}

TEST(NSUserDefaults, IsOneForTheProcess) {
  EXPECT_EQ(NSUserDefaults::standardUserDefaults(), NSUserDefaults::standardUserDefaults());
}

TEST(NSUserDefaults, IsUsedFromManyThreads) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < 300; ++i) {
        defaults->setObject(t, "a");
        EXPECT_LT(defaults->integerForKey("a"), 4);
      }
    });
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace ORLFoundation
