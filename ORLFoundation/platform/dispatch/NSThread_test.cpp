
#include <ORLFoundation/platform/dispatch/NSThread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace ORLFoundation {
namespace {

using testing::StartsWith;

[[gnu::noinline]] std::vector<std::string> stackOfCallee() {
  auto lines = NSThread::callStackSymbols();
  return lines;
}

TEST(NSThread, IsOneForEachThread) {
  const auto thread = NSThread::currentThread();
  EXPECT_EQ(NSThread::currentThread(), thread);
  std::shared_ptr<NSThread> other;
  std::thread([&] { other = NSThread::currentThread(); }).join();
  EXPECT_NE(other, thread);
}

TEST(NSThread, KeepsADictionaryForEachThread) {
  NSThread::currentThread()->threadDictionary()->setObject("mine", "key");
  std::thread([] {
    EXPECT_TRUE(NSThread::currentThread()->threadDictionary()->objectForKey("key").isNil());
    NSThread::currentThread()->threadDictionary()->setObject("theirs", "key");
  }).join();
  EXPECT_EQ(NSThread::currentThread()->threadDictionary()->objectForKey("key"), id("mine"));
  NSThread::currentThread()->threadDictionary()->removeObjectForKey("key");
}

/// Asks for the thread's object when the thread's own variables are being destroyed.
struct AsksAtTheEnd {
  ~AsksAtTheEnd() {
    if (heard != nullptr) *heard = NSThread::currentThread()->threadDictionary()->count() == 0;
  }
  bool* heard = nullptr;
};

TEST(NSThread, AnswersAThreadThatIsEnding) {
  bool heard = false;
  std::thread([&] {
    thread_local AsksAtTheEnd asker;  // Made before the thread's object, destroyed after it.
    asker.heard = &heard;
    NSThread::currentThread()->threadDictionary()->setObject("value", "key");
  }).join();
  EXPECT_TRUE(heard);
}

TEST(NSThread, TheFirstThreadIsTheMainOne) {
  EXPECT_TRUE(NSThread::isMainThread());
  bool isMain = true;
  std::thread([&] { isMain = NSThread::isMainThread(); }).join();
  EXPECT_FALSE(isMain);
}

TEST(NSThread, NumbersTheLinesOfTheCallStackFromTheCaller) {
  const std::vector<std::string> lines = stackOfCallee();
  ASSERT_GE(lines.size(), 3U);
  EXPECT_THAT(lines[0], StartsWith("0   orlf_platform_dispatch_tests"));
  EXPECT_THAT(lines[1], StartsWith("1   "));
  EXPECT_NE(lines[0].find(" 0x"), std::string::npos);
  EXPECT_NE(lines[0].find(" + "), std::string::npos);
  const std::vector<std::string> own = NSThread::callStackSymbols();
  EXPECT_EQ(lines.size(), own.size() + 1);
}

std::size_t depthBelow(int levels);
// A pointer and a value that may change keep the calls from becoming jumps.
std::size_t (*volatile callBelow)(int) = depthBelow;

std::size_t depthBelow(int levels) {
  if (levels == 0) return NSThread::callStackSymbols().size();
  const volatile std::size_t lines = callBelow(levels - 1);
  return lines;
}

TEST(NSThread, BoundsTheCallStack) { EXPECT_EQ(depthBelow(300), 128U); }

}  // namespace
}  // namespace ORLFoundation
