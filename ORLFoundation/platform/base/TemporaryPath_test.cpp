#include <ORLFoundation/platform/base/TemporaryPath.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/TemporaryFolder.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation::internal::base {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What remains of files when a program ends; each ending is one of a process of its own.
class TemporaryPathTest : public orlftest::TemporaryFolderTest {
 protected:
  template <class Work>
  std::string ending(const Work& work) {
    return orlftest::inChild([&]() -> std::string {
      work();
      return "";
    });
  }
};

TEST_F(TemporaryPathTest, RemovesTheFilesOfThePathsThatAreNoted) {
  const std::string kept = write("kept", "x"), gone = write("gone", "x");
  EXPECT_EQ(ending([&] {
              { const TemporaryPath passed(kept); }
              const TemporaryPath noted(gone);
              const TemporaryPath missing(path("missing"));
              removeTemporaryFiles();
            }),
            "");
  EXPECT_THAT(names(), ElementsAre("kept"));
}

TEST_F(TemporaryPathTest, RemovesNothingByItself) {
  const std::string file = write("file", "x");
  { const TemporaryPath noted(file); }
  EXPECT_THAT(names(), ElementsAre("file"));
}

TEST_F(TemporaryPathTest, NotesAnyNumberOfPathsAndUsesTheirMemoryAgain) {
  for (int i = 0; i < 100; ++i) write("file" + std::to_string(i), "x");
  EXPECT_EQ(
      ending([&] {
        for (int round = 0; round < 3; ++round) {
          std::vector<std::unique_ptr<TemporaryPath>> noted;
          for (int i = 0; i < 100; ++i)
            noted.push_back(std::make_unique<TemporaryPath>(path("file" + std::to_string(i))));
          if (round == 2) removeTemporaryFiles();
        }
      }),
      "");
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(TemporaryPathTest, LeavesAPathOutThatIsTooLong) {
  const std::string file = write("file", "x");
  EXPECT_EQ(ending([&] {
              const TemporaryPath longer(std::string(PATH_MAX, 'x'));
              const TemporaryPath empty("");
              const TemporaryPath noted(file);
              removeTemporaryFiles();
            }),
            "");
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(TemporaryPathTest, LetsNobodyNoteAPathWhenTheProgramEnds) {
  EXPECT_EQ(orlftest::inChild([&]() -> std::string {
              removeTemporaryFiles();
              const auto isNoted = std::make_shared<std::atomic<bool>>(false);
              std::thread([isNoted, late = path("late")] {
                const TemporaryPath noted(late);
                *isNoted = true;
              }).detach();
              std::this_thread::sleep_for(std::chrono::milliseconds(20));
              return *isNoted ? "noted" : "";
            }),
            "");
}

/// While many threads note paths, a thread that ends the program removes those of that moment.
TEST_F(TemporaryPathTest, IsSafeOnManyThreads) {
  const std::string file = write("file", "x");
  EXPECT_EQ(orlftest::inChild([&]() -> std::string {
              const TemporaryPath noted(file);
              const auto turns = std::make_shared<std::atomic<int>>(0);
              for (int i = 0; i < 3; ++i)
                std::thread([turns, first = path("one"), second = path("other")] {
                  while (true) {
                    const TemporaryPath one(first), other(second);
                    ++*turns;
                  }
                }).detach();
              while (*turns < 1000) std::this_thread::yield();
              removeTemporaryFiles();
              return "";
            }),
            "");
  EXPECT_THAT(names(), IsEmpty());
}

}  // namespace
}  // namespace ORLFoundation::internal::base
