// What becomes of tasks while libcurl gets no memory.
#include <ORLFoundation/platform/net/NSURLSession_testing.h>
#include <curl/curl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

using namespace ORLFoundation;
using orlftest::Loading;
using orlftest::LocalServer;
using orlftest::TaskRecord;
using testing::ElementsAre;

/// While there is one, libcurl gets no memory.
class NoMemory {
 public:
  NoMemory() { isUsedUp_ = true; }
  ~NoMemory() { isUsedUp_ = false; }
  NoMemory(const NoMemory&) = delete;
  NoMemory& operator=(const NoMemory&) = delete;

  /// libcurl takes functions for its memory before its first use alone.
  static CURLcode install() {
    return curl_global_init_mem(CURL_GLOBAL_DEFAULT, give, std::free, giveMore, giveText,
                                giveCleared);
  }

 private:
  static void* give(std::size_t size) { return isUsedUp_ ? nullptr : std::malloc(size); }
  static void* giveCleared(std::size_t count, std::size_t size) {
    return isUsedUp_ ? nullptr : std::calloc(count, size);
  }
  static void* giveMore(void* block, std::size_t size) {
    return isUsedUp_ ? nullptr : std::realloc(block, size);
  }
  static char* giveText(const char* text) { return isUsedUp_ ? nullptr : ::strdup(text); }

  static inline std::atomic<bool> isUsedUp_{false};
};

const CURLcode noMemoryInstalled = NoMemory::install();

TEST(NSURLSessionWithoutMemory, EndsATaskAtOnceAndGoesOnOnceThereIsSome) {
  ASSERT_EQ(noMemoryInstalled, CURLE_OK);
  Loading loading;
  EXPECT_EQ(loading.data(orlftest::patientRequest("/echo")).status(), 200);
  TaskRecord record;
  {
    const NoMemory noMemory;
    record = loading.download(orlftest::patientRequest("/echo"));
  }
  EXPECT_EQ(record.code(), NSURLErrorUnknown);
  ASSERT_NE(record.error, nullptr);
  EXPECT_EQ(record.error->userInfo()->objectForKey(NSLocalizedFailureReasonErrorKey),
            id("There is no memory for it."));
  EXPECT_EQ(record.response, nullptr);
  EXPECT_THAT(record.events, ElementsAre("complete"));
  EXPECT_EQ(loading.data(orlftest::patientRequest("/echo")).status(), 200);
}

TEST(NSURLSessionWithoutMemory, EndsTasksThatWaitedForAConnection) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setHTTPMaximumConnectionsPerHost(1);
  Loading loading(configuration);
  loading.session->dataTaskWithRequest(orlftest::patientRequest("/stalls", 0.5))->resume();
  for (int i = 0; i < 3; ++i)
    loading.session->dataTaskWithRequest(orlftest::patientRequest("/echo"))->resume();
  ASSERT_TRUE(orlftest::becomes([&] { return loading.delegate->record(1).body == "half "; }));
  {
    const NoMemory noMemory;
    ASSERT_TRUE(loading.delegate->waitForCompletions(4));
  }
  EXPECT_EQ(loading.delegate->record(1).code(), NSURLErrorTimedOut);
  for (NSUInteger task = 2; task <= 4; ++task)
    EXPECT_EQ(loading.delegate->record(task).code(), NSURLErrorUnknown) << task;
  EXPECT_EQ(loading.data(orlftest::patientRequest("/echo")).status(), 200);
  EXPECT_EQ(loading.delegate->completions(), 5U);
}

TEST(NSURLSessionWithoutMemory, BeginsWithoutAnyAndGoesOnOnceThereIsSome) {
  Loading loading;
  {
    const NoMemory noMemory;
    EXPECT_EQ(loading.data(orlftest::patientRequest("/echo")).code(), NSURLErrorUnknown);
    EXPECT_EQ(loading.data(NSURL::URLWithString("data:,inside").value()).body, "inside");
    EXPECT_EQ(loading.data(orlftest::patientRequest("/echo")).code(), NSURLErrorUnknown);
  }
  EXPECT_EQ(loading.data(orlftest::patientRequest("/echo")).status(), 200);
}

}  // namespace
