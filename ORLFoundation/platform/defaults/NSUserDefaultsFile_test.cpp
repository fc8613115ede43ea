
#include <ORLFoundation/platform/defaults/NSUserDefaultsFile.h>

#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <thread>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::EnvironmentVariable;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NSUserDefaultsFileTest : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] std::shared_ptr<NSUserDefaultsFile> file() const {
    return std::make_shared<NSUserDefaultsFile>(path_.string());
  }
  [[nodiscard]] std::shared_ptr<NSUserDefaults> defaults() const {
    return std::make_shared<NSUserDefaults>(file());
  }

  const fs::path path_ = folder_ / "app" / "defaults.plist";
  LogCapture log_;
};

TEST_F(NSUserDefaultsFileTest, KeepsValuesOfEveryKindBetweenRuns) {
  const auto values = NSDictionary::dictionaryWithEntries(
      {{"text", "Grüße\x01"},
       {"bool", true},
       {"integer", NSIntegerMin},
       {"double", 0.1},
       {"date", NSDate::dateWithTimeIntervalSinceReferenceDate(0.25)},
       {"data", NSData("\x01\x02")},
       {"array", NSArray::arrayWithObjects({1, "two", NSArray::arrayWithObjects({})})},
       {"dictionary", NSDictionary::dictionaryWithEntries({{"key", 1}})}});
  for (const auto& [key, value] : values->entries())
    defaults()->setObject(value, *key.get<std::string>());
  EXPECT_TRUE(defaults()->dictionaryRepresentation()->isEqual(values.get()));
  defaults()->removeObjectForKey("text");
  EXPECT_TRUE(defaults()->objectForKey("text").isNil());
  EXPECT_EQ(defaults()->dictionaryRepresentation()->count(), 7U);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(NSUserDefaultsFileTest, NeitherArgumentsNorRegisteredDefaultsAreWritten) {
  const auto first = defaults();
  first->setArguments(*NSDictionary::dictionaryWithEntries({{"argument", 1}}));
  first->registerDefaults(*NSDictionary::dictionaryWithEntries({{"registered", 1}}));
  EXPECT_FALSE(fs::exists(path_));
  first->setInteger(2, "argument");
  EXPECT_EQ(defaults()->integerForKey("argument"), 2);
  EXPECT_TRUE(defaults()->objectForKey("registered").isNil());
}

TEST_F(NSUserDefaultsFileTest, ReadsXML) {
  write(path_,
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>Columns</key>"
        "<integer>3</integer></dict></plist>");
  EXPECT_EQ(defaults()->integerForKey("Columns"), 3);
}

TEST_F(NSUserDefaultsFileTest, IsForTheUserAloneAndLeavesNothingElse) {
  defaults()->setInteger(1, "a");
  defaults()->setInteger(2, "a");
  EXPECT_THAT(names("app"), ElementsAre("defaults.plist"));
  EXPECT_EQ(modeOf("app/defaults.plist"), 0600U);
  EXPECT_EQ(modeOf("app"), 0700U);
}

TEST_F(NSUserDefaultsFileTest, IsNotWrittenForAValueThatItHas) {
  defaults()->setInteger(1, "a");
  struct stat before {
  }, after{};
  ASSERT_EQ(::stat(path_.c_str(), &before), 0);
  defaults()->setInteger(1, "a");
  defaults()->removeObjectForKey("b");
  ASSERT_EQ(::stat(path_.c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(NSUserDefaultsFileTest, ReplacesTheFileThatALinkLeadsTo) {
  const fs::path target = folder_ / "elsewhere.plist";
  fs::create_directories(path_.parent_path());
  NSUserDefaults(std::make_shared<NSUserDefaultsFile>(target.string())).setInteger(1, "a");
  fs::create_symlink(target, path_);
  defaults()->setInteger(2, "b");
  EXPECT_TRUE(fs::is_symlink(path_));
  const NSUserDefaults linked(std::make_shared<NSUserDefaultsFile>(target.string()));
  EXPECT_EQ(linked.integerForKey("a"), 1);
  EXPECT_EQ(linked.integerForKey("b"), 2);
}

TEST_F(NSUserDefaultsFileTest, ChangesOfOthersStay) {
  const auto first = defaults(), second = defaults();
  first->setInteger(1, "a");
  second->setInteger(2, "b");
  EXPECT_EQ(second->integerForKey("a"), 1);
  EXPECT_EQ(first->integerForKey("b"), 0);
  EXPECT_TRUE(first->synchronize());
  EXPECT_EQ(first->integerForKey("b"), 2);
  second->removeObjectForKey("a");
  first->setInteger(3, "c");
  EXPECT_EQ(first->integerForKey("a"), 0);
}

TEST_F(NSUserDefaultsFileTest, AValueThatIsSetAgainTakesThePlaceOfAnothers) {
  const auto first = defaults(), second = defaults();
  first->setInteger(1, "a");
  second->setInteger(2, "a");
  first->setInteger(1, "a");
  EXPECT_EQ(defaults()->integerForKey("a"), 1);
  second->removeObjectForKey("a");
  first->setInteger(1, "a");
  EXPECT_EQ(defaults()->integerForKey("a"), 1);
  first->removeObjectForKey("b");
  second->setInteger(2, "b");
  first->removeObjectForKey("b");
  EXPECT_TRUE(defaults()->objectForKey("b").isNil());
}

TEST_F(NSUserDefaultsFileTest, KeepsTheKindsOfNumbersThatAreEqual) {
  const id kinds[] = {true, 1, 1.0, false, 0, 0.0, -0.0, 5, 5.0};
  const auto isKept = [](const id& value, const id& kept) {
    const auto *number = value.get<NSNumber>(), *back = kept.get<NSNumber>();
    return back != nullptr && number->kind() == back->kind() && *number == *back &&
           std::signbit(number->doubleValue()) == std::signbit(back->doubleValue());
  };
  const auto own = defaults();
  for (const id& value : kinds) {
    own->setObject(value, "a");
    own->setObject(NSArray::arrayWithObjects({value}), "array");
    own->setObject(NSDictionary::dictionaryWithEntries({{"k", value}}), "dictionary");
    const auto others = defaults();
    for (const auto& reader : {own, others}) {
      EXPECT_TRUE(isKept(value, reader->objectForKey("a"))) << value.description();
      EXPECT_TRUE(isKept(value, reader->arrayForKey("array")->firstObject()));
      EXPECT_TRUE(isKept(value, reader->dictionaryForKey("dictionary")->objectForKey("k")));
    }
  }
  own->setObject(std::make_shared<NSArray>(std::vector<id>(std::begin(kinds), std::end(kinds))),
                 "all");
  const auto all = defaults()->arrayForKey("all");
  for (NSUInteger index = 0; index < all->count(); ++index)
    EXPECT_TRUE(isKept(kinds[index], all->objectAtIndex(index))) << index;
}

TEST_F(NSUserDefaultsFileTest, ChangesOfManyThreadsAndObjectsStay) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      const auto own = defaults();
      for (int i = 0; i < 10; ++i) own->setInteger(i + 1, std::to_string(t * 10 + i));
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(defaults()->dictionaryRepresentation()->count(), 40U);
  EXPECT_THAT(names("app"), ElementsAre("defaults.plist"));
}

TEST_F(NSUserDefaultsFileTest, ChangesOfManyProcessesStay) {
  std::vector<pid_t> children;
  for (int c = 0; c < 3; ++c) {
    const pid_t child = ::fork();
    if (child == 0) {
      for (int i = 0; i < 10; ++i) defaults()->setInteger(1, std::to_string(c * 10 + i));
      ::_exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(defaults()->dictionaryRepresentation()->count(), 30U);
}

struct BrokenCase {
  std::string_view name;
  std::string contents;
};
const BrokenCase kBroken[] = {
    {"Empty", ""},
    {"Text", "not a list"},
    {"CutShort", "bplist00\xd1\x01"},
    {"NoDictionary", "<plist version=\"1.0\"><array/></plist>"},
};

TEST_F(NSUserDefaultsFileTest, ABrokenFileIsLoggedAndKeptAside) {
  for (const BrokenCase& row : kBroken) {
    SCOPED_TRACE(row.name);
    log_.clear();
    write(path_, row.contents);
    const auto own = defaults();
    EXPECT_THAT(log_.lines(),
                ElementsAre("The user defaults cannot be read: " + path_.string() +
                            ": it is broken, and no property list with a dictionary"));
    EXPECT_EQ(own->dictionaryRepresentation()->count(), 0U);
    EXPECT_EQ(read(path_), row.contents);
    own->setInteger(1, "a");
    EXPECT_EQ(read(path_.string() + ".broken"), row.contents);
    EXPECT_EQ(defaults()->integerForKey("a"), 1);
    EXPECT_THAT(names("app"), ElementsAre("defaults.plist", "defaults.plist.broken"));
    fs::remove_all(path_.parent_path());
  }
}

TEST_F(NSUserDefaultsFileTest, NoBrokenFileTakesTheNameOfAnother) {
  for (const char* contents : {"one", "two", "three"}) {
    write(path_, contents);
    defaults()->setInteger(1, "a");
  }
  EXPECT_EQ(read(path_.string() + ".broken"), "one");
  EXPECT_EQ(read(path_.string() + ".broken2"), "two");
  EXPECT_EQ(read(path_.string() + ".broken3"), "three");
}

TEST_F(NSUserDefaultsFileTest, WhatCannotBeReadIsNotReplaced) {
  fs::create_directories(path_ / "inside");
  const auto own = defaults();
  EXPECT_THAT(log_.lines(), ElementsAre("The user defaults cannot be read: " + path_.string() +
                                        ": Is a directory"));
  log_.clear();
  own->setInteger(1, "a");
  EXPECT_EQ(own->integerForKey("a"), 1);
  EXPECT_THAT(log_.lines(), ElementsAre("The user defaults cannot be written: " + path_.string() +
                                        ": Is a directory"));
  EXPECT_TRUE(fs::exists(path_ / "inside"));
  EXPECT_FALSE(own->synchronize());
  fs::remove_all(path_);
  EXPECT_TRUE(own->synchronize());
  EXPECT_EQ(defaults()->integerForKey("a"), 1);
}

TEST_F(NSUserDefaultsFileTest, AFolderThatCannotBeMadeIsAnError) {
  write("app", "a file");
  std::shared_ptr<const NSError> error;
  EXPECT_EQ(file()->apply({{"a", 1}}, &error), nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->domain(), NSPOSIXErrorDomain);
  EXPECT_EQ(error->code(), ENOTDIR);
  EXPECT_THAT(error->localizedDescription(), HasSubstr((folder_ / "app").string()));
}

TEST_F(NSUserDefaultsFileTest, ADiskThatIsFullKeepsTheFile) {
  defaults()->setObject("old", "a");
  const pid_t child = ::fork();
  if (child == 0) {
    // Writing beyond the limit fails as a full disk does.
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{10, 10};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const auto own = defaults();
    own->setObject(std::string(1000, 'x'), "a");
    const bool kept = own->stringForKey("a") == std::string(1000, 'x');
    ::_exit(kept && defaults()->stringForKey("a") == "old" ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_THAT(names("app"), ElementsAre("defaults.plist"));
}

struct PathCase {
  std::string_view name;
  const char *configuration, *home;
  std::string_view domain, path;
};
const PathCase kPaths[] = {
    {"Configuration", "/c", "/h", "com.example.app", "/c/com.example.app/defaults.plist"},
    {"Home", nullptr, "/h", "app", "/h/.config/app/defaults.plist"},
    {"EmptyConfiguration", "", "/h", "app", "/h/.config/app/defaults.plist"},
    {"RelativeConfiguration", "c", "/h", "app", "/h/.config/app/defaults.plist"},
    {"NoFolder", nullptr, nullptr, "app", ""},
    {"RelativeHome", nullptr, "h", "app", ""},
    {"NoDomain", "/c", "/h", "", ""},
    {"Slashes", "/c", "/h", "../a/b", "/c/_._a_b/defaults.plist"},
};

// The environment and what is made once for the process are changed in processes of their own.
class NSUserDefaultsFileDeathTest : public NSUserDefaultsFileTest {
 protected:
  NSUserDefaultsFileDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(NSUserDefaultsFileDeathTest, StandsInTheUsersConfigurationFolder) {
  for (const PathCase& row : kPaths) {
    EXPECT_EXIT(
        {
          const EnvironmentVariable configuration("XDG_CONFIG_HOME", row.configuration);
          const EnvironmentVariable home("HOME", row.home);
          const std::string path = NSUserDefaultsFile::pathForDomain(row.domain);
          std::fprintf(stderr, "path '%s'\n", path.c_str());
          ::_exit(path == row.path ? 0 : 1);
        },
        testing::ExitedWithCode(0), "")
        << row.name;
  }
}

TEST_F(NSUserDefaultsFileDeathTest, StandardDefaultsAreKeptInIt) {
  const auto check = [this](bool hasIdentifier) {
    const EnvironmentVariable configuration("XDG_CONFIG_HOME", folder_.c_str());
    if (hasIdentifier)
      NSBundle::mainBundle()->setInfoDictionary(
          *NSDictionary::dictionaryWithEntries({{kCFBundleIdentifierKey, "com.example.app"}}));
    NSUserDefaults::standardUserDefaults()->setInteger(3, "Columns");
    const fs::path domain = hasIdentifier ? "com.example.app" : "orlf_platform_defaults_tests";
    const NSUserDefaults kept(
        std::make_shared<NSUserDefaultsFile>((folder_ / domain / "defaults.plist").string()));
    fs::remove_all(folder_);
    ::_exit(kept.integerForKey("Columns") == 3 ? 0 : 1);
  };
  EXPECT_EXIT(check(true), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(check(false), testing::ExitedWithCode(0), "");
}

TEST_F(NSUserDefaultsFileDeathTest, StandardDefaultsAreInMemoryWithoutAFolder) {
  EXPECT_EXIT(
      {
        const EnvironmentVariable configuration("XDG_CONFIG_HOME", nullptr);
        const EnvironmentVariable home("HOME", nullptr);
        NSUserDefaults::standardUserDefaults()->setInteger(3, "Columns");
        ::_exit(NSUserDefaults::standardUserDefaults()->integerForKey("Columns") == 3 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ORLFoundation
