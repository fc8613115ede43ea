
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(NSUserDefaults, ReadsDoubles) {
  const struct {
    id value;
    double answer;
  } rows[] = {
      {nullptr, 0},  {1.5, 1.5},      {7, 7},         {true, 1},
      {"1.5", 1.5},  {" -.5x", -0.5}, {"+2e3", 2000}, {"1e400", HUGE_VAL},
      {"1e-400", 0}, {"inf", 0},      {"nan", 0},     {"0x10", 0},
      {"-", 0},      {".", 0},        {"", 0},        {"1,5", 1},
      {NSDate(), 0},
  };
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  for (const auto& row : rows) {
    defaults->setObject(row.value, "a");
    EXPECT_EQ(defaults->doubleForKey("a"), row.answer) << row.value.description();
  }
  defaults->setFloat(0.5F, "a");
  EXPECT_EQ(defaults->floatForKey("a"), 0.5F);
}

TEST(NSUserDefaults, ReadsCollectionsAndData) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  defaults->setObject(NSArray::arrayWithObjects({"a", "b"}), "texts");
  defaults->setObject(NSArray::arrayWithObjects({"a", 1}), "mixed");
  defaults->setObject(NSDictionary::dictionaryWithEntries({{"k", 1}}), "dictionary");
  defaults->setObject(NSData("bytes"), "data");
  EXPECT_EQ(defaults->arrayForKey("mixed")->count(), 2U);
  EXPECT_EQ(defaults->arrayForKey("dictionary"), nullptr);
  EXPECT_THAT(*defaults->stringArrayForKey("texts"), ElementsAre("a", "b"));
  EXPECT_EQ(defaults->stringArrayForKey("mixed"), std::nullopt);
  EXPECT_EQ(defaults->stringArrayForKey("absent"), std::nullopt);
  EXPECT_EQ(defaults->dictionaryForKey("dictionary")->count(), 1U);
  EXPECT_EQ(defaults->dictionaryForKey("texts"), nullptr);
  EXPECT_EQ(defaults->dataForKey("data"), NSData("bytes"));
  EXPECT_EQ(defaults->dataForKey("texts"), std::nullopt);
}

TEST(NSUserDefaults, KeepsAddresses) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  const std::string home = std::getenv("HOME");
  const NSURL web = *NSURL::URLWithString("https://x.org/a%20b");
  defaults->setURL(web, "web");
  EXPECT_EQ(defaults->URLForKey("web"), web);
  defaults->setURL(NSURL::fileURLWithPath(home + "/a b"), "file");
  EXPECT_EQ(defaults->stringForKey("file"), "~/a b");
  EXPECT_EQ(defaults->URLForKey("file"), NSURL::fileURLWithPath(home + "/a b"));
  defaults->setURL(NSURL::fileURLWithPath(home + "x"), "file");
  EXPECT_EQ(defaults->stringForKey("file"), home + "x");
  defaults->setObject("/etc/~", "file");
  EXPECT_EQ(defaults->URLForKey("file")->path(), "/etc/~");
  defaults->setObject("~", "file");
  EXPECT_EQ(defaults->URLForKey("file")->path(), home);
  defaults->setURL(std::nullopt, "file");
  EXPECT_EQ(defaults->URLForKey("file"), std::nullopt);
  defaults->setObject(NSData("no archive"), "file");
  EXPECT_EQ(defaults->URLForKey("file"), std::nullopt);
  defaults->setObject(3, "file");
  EXPECT_EQ(defaults->URLForKey("file"), std::nullopt);
}

TEST(NSUserDefaults, CopiesCollectionsAllTheWayDown) {
  const auto inner = std::make_shared<NSMutableArray>();
  const auto outer = std::make_shared<NSMutableDictionary>();
  outer->setObject(inner, "inner");
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  defaults->setObject(outer, "a");
  defaults->registerDefaults(*NSDictionary::dictionaryWithEntries({{"b", outer}}));
  inner->addObject("later");
  outer->setObject("later", "more");
  for (const char* key : {"a", "b"}) {
    EXPECT_EQ(defaults->dictionaryForKey(key)->count(), 1U);
    EXPECT_EQ(defaults->dictionaryForKey(key)->objectForKey("inner").as<NSArray>()->count(), 0U);
    EXPECT_EQ(defaults->objectForKey(key).className(), "NSDictionary");
  }
}

TEST(NSUserDefaults, TellsObservers) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  int heard = 0;
  const auto token = defaults->addObserver("a", 0, [&](const NSKeyValueChange&) { ++heard; });
  defaults->setInteger(1, "a");
  defaults->setValueForKey(2, "a");
  defaults->removeObjectForKey("a");
  defaults->setInteger(1, "b");
  EXPECT_EQ(heard, 3);
}

TEST(NSUserDefaults, ShowsAllDomainsAtOnce) {
  const Defaults defaults = std::make_shared<NSUserDefaults>();
  defaults->registerDefaults(*NSDictionary::dictionaryWithEntries({{"a", 1}, {"b", 1}, {"c", 1}}));
  defaults->setInteger(2, "b");
  defaults->setInteger(2, "c");
  defaults->setArguments(*NSDictionary::dictionaryWithEntries({{"c", 3}, {"d", 3}}));
  const auto all = NSDictionary::dictionaryWithEntries({{"a", 1}, {"b", 2}, {"c", 3}, {"d", 3}});
  EXPECT_TRUE(defaults->dictionaryRepresentation()->isEqual(all.get()));
}

struct WordsCase {
  std::string_view name;
  std::vector<std::string> words;
  std::initializer_list<std::pair<id, id>> entries;
};
const WordsCase kWords[] = {
    {"Pairs", {"program", "-a", "1", "-b", "two"}, {{"a", "1"}, {"b", "two"}}},
    {"LastCounts", {"-a", "1", "-a", "2"}, {{"a", "2"}}},
    {"NegativeValue", {"-a", "-3"}, {{"a", "-3"}}},
    {"KeyWithoutValue", {"-verbose", "-level", "3", "-last"}, {{"level", "3"}}},
    {"EmptyValue", {"-a", ""}, {{"a", ""}}},
    {"TwoDashes", {"--a", "1", "-b", "--c"}, {{"b", "--c"}}},
    {"NoKeys", {"a", "-", "1", "-1", "2", "--"}, {}},
    {"Underscore", {"-_a", "1"}, {{"_a", "1"}}},
    {"Nothing", {}, {}},
};

TEST(NSUserDefaults, ReadsArgumentsFromWords) {
  for (const WordsCase& row : kWords) {
    const auto expected = NSDictionary::dictionaryWithEntries(row.entries);
    const auto found = NSUserDefaults::argumentsFromWords(row.words);
    EXPECT_TRUE(found->isEqual(expected.get())) << row.name << ": " << found->description();
  }
}

TEST(NSUserDefaults, AFailingStoreIsLoggedAndTheValuesStay) {
  LogCapture log;
  NSUserDefaults defaults(std::make_shared<NSFailingUserDefaultsStore>());
  EXPECT_THAT(log.lines(), ElementsAre("The user defaults cannot be read: The user defaults cannot "
                                       "be read."));
  log.clear();
  defaults.registerDefaults(*NSDictionary::dictionaryWithEntries({{"a", "registered"}}));
  defaults.setObject("set", "a");
  EXPECT_EQ(defaults.stringForKey("a"), "set");
  defaults.removeObjectForKey("a");
  EXPECT_EQ(defaults.stringForKey("a"), "registered");
  EXPECT_EQ(defaults.dictionaryRepresentation()->objectForKey("a"), id("registered"));
  EXPECT_EQ(log.lines().size(), 2U);
  EXPECT_FALSE(defaults.synchronize());
}

/// Fails until it is mended.
class MendedStore final : public NSUserDefaultsStore {
 public:
  std::shared_ptr<NSDictionary> read(NSErrorSlot error) override { return memory.read(error); }
  std::shared_ptr<NSDictionary> apply(const NSUserDefaultsChanges& changes,
                                      NSErrorSlot error) override {
    return works ? memory.apply(changes, error) : nullptr;
  }
  bool works = false;
  NSUserDefaultsMemory memory;
};

TEST(NSUserDefaults, WritesLaterWhatCouldNotBeWritten) {
  LogCapture log;
  const auto store = std::make_shared<MendedStore>();
  NSUserDefaults defaults(store);
  defaults.setInteger(1, "a");
  EXPECT_THAT(log.lines(), ElementsAre("The user defaults cannot be written: unknown error"));
  EXPECT_EQ(store->memory.read()->count(), 0U);
  store->works = true;
  defaults.setInteger(2, "b");
  const auto both = NSDictionary::dictionaryWithEntries({{"a", 1}, {"b", 2}});
  EXPECT_TRUE(store->memory.read()->isEqual(both.get()));
}

TEST(NSUserDefaults, ASinkMayAskForDefaults) {
  NSUserDefaults defaults(std::make_shared<MendedStore>());
  int heard = 0;
  Replaced sink(NSSetLogSink, [&](std::string_view) {
    heard += static_cast<int>(defaults.integerForKey("a"));
    defaults.synchronize();
  });
  testing::internal::CaptureStderr();
  defaults.setInteger(1, "a");
  EXPECT_NE(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(heard, 1);
}

TEST(NSUserDefaults, StandardOnesCanBeReplaced) {
  const NSStandardUserDefaultsInMemory outer;
  const auto standard = NSUserDefaults::standardUserDefaults();
  EXPECT_EQ(NSUserDefaults::standardUserDefaults(), standard);
  {
    const NSStandardUserDefaultsInMemory inner;
    EXPECT_NE(NSUserDefaults::standardUserDefaults(), standard);
  }
  EXPECT_EQ(NSUserDefaults::standardUserDefaults(), standard);
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
