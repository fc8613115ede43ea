
#include <ORLFoundation/web/logging/ORLFURLSessionFileLogger.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <map>
#include <thread>

namespace ORLFoundation {
namespace {

constexpr int kProcesses = 2, kThreads = 4, kEntries = 100;

/// An entry of many lines, which a torn one would mix with others.
std::string entryOf(int process, int thread, int entry) {
  const std::string line = std::to_string(process) + "." + std::to_string(thread) + "." +
                           std::to_string(entry) + std::string(200, 'x') + "\n";
  std::string text;
  for (int i = 0; i < 40; ++i) text += line;
  return text + "end";
}

/// Some of the threads share a logger, the others have their own.
void logFromThreads(const NSURL& file, int process) {
  ORLFURLSessionFileLogger shared(file, "shared");
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&shared, &file, process, thread] {
      ORLFURLSessionFileLogger own(file, "own");
      for (int entry = 0; entry < kEntries; ++entry)
        (thread % 2 == 0 ? own : shared).logMessage(entryOf(process, thread, entry));
    });
  }
  for (std::thread& thread : threads) thread.join();
}

class SharedLog : public orlftest::TemporaryFolderTest {};

TEST_F(SharedLog, HoldsWholeEntriesOfTwoProcessesAndManyThreads) {
  const NSURL file = NSURL::fileURLWithPath(path("log"));
  // The child ends without the parent's cleaning up, so it may not be one of many threads' forks.
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    logFromThreads(file, 1);
    ::_exit(0);
  }
  logFromThreads(file, 0);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);

  std::map<std::string, int> entries;
  std::string text = read("log");
  for (std::size_t end = 0; (end = text.find("end\n\n")) != std::string::npos;) {
    ++entries[text.substr(0, end + 3)];
    text.erase(0, end + 5);
  }
  EXPECT_EQ(text, "");
  EXPECT_EQ(entries.size(), std::size_t{kProcesses * kThreads * kEntries});
  for (int process = 0; process < kProcesses; ++process)
    for (int thread = 0; thread < kThreads; ++thread)
      for (int entry = 0; entry < kEntries; ++entry)
        ASSERT_EQ(entries.count(entryOf(process, thread, entry)), 1U);
}

/// Appends a letter, for processors that come and go.
class Letter final : public ORLFURLSessionLogProcessor {
 public:
  std::optional<std::string> process(std::optional<std::string> string) override {
    return string.value_or("") + "a";
  }
};

TEST(ORLFURLSessionFileLogger, TakesChangesWhileItRedacts) {
  ORLFURLSessionFileLogger logger(std::nullopt, "Bank");
  std::thread changes([&] {
    for (int i = 0; i < 500; ++i) {
      const auto letter = std::make_shared<Letter>();
      logger.addRequestBodyProcessor(letter);
      const bool isNamed = i % 50 != 0 || logger.addSecret("secret" + std::to_string(i));
      EXPECT_TRUE(isNamed);
      logger.removeRequestBodyProcessor(letter);
    }
  });
  for (int i = 0; i < 500; ++i)
    EXPECT_THAT(*logger.redactRequestBody("b"), testing::AnyOf("b", "ba"));
  changes.join();
  EXPECT_EQ(logger.redactRequestBody("secret450"), "***");
}

}  // namespace
}  // namespace ORLFoundation
