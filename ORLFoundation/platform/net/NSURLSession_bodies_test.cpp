// Bodies on their way: encoded, cut off, refused, held up by who sends and by who is told of them.
#include <ORLFoundation/platform/net/NSURLSession_testing.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace ORLFoundation;
using orlftest::Loading;
using orlftest::LocalServer;
using orlftest::TaskRecord;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

NSURL at(const std::string& path) { return LocalServer::shared().url(path); }

std::string unpackedText() {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "packed text ";
  return text;
}

TEST(NSURLSessionBodies, ComeDecodedWhateverTheirEncodingIsCalled) {
  Loading loading;
  for (const char* path : {"/packed/gzip", "/packed/gzip?named=X-GZip", "/packed/deflate",
                           "/packed/bare", "/packed/gzip?status=404"}) {
    const TaskRecord record = loading.data(at(path));
    EXPECT_EQ(record.error, nullptr) << path;
    EXPECT_EQ(record.body, unpackedText()) << path;
    EXPECT_EQ(record.expected, -1) << path;
    EXPECT_EQ(loading.download(at(path)).body, unpackedText()) << path;
  }
  EXPECT_EQ(loading.data(at("/packed/nothing")).error, nullptr);
  EXPECT_EQ(loading.download(at("/packed/nothing")).body, "");
}

TEST(NSURLSessionBodies, ThatAreDamagedOrCutOffAreErrors) {
  const std::pair<const char*, NSURLError> rows[] = {
      {"/packed/gzip?cut=1", NSURLErrorCannotDecodeRawData},
      {"/packed/gzip?cut=8", NSURLErrorCannotDecodeRawData},
      {"/packed/gzip?cut=20", NSURLErrorCannotDecodeRawData},
      {"/packed/deflate?cut=1", NSURLErrorCannotDecodeRawData},
      {"/packed/bare?cut=1", NSURLErrorCannotDecodeRawData},
      {"/packed/gzip?more=junk", NSURLErrorCannotDecodeRawData},
      {"/packed/broken", NSURLErrorCannotDecodeRawData},
      {"/packed/gzip?named=deflate", NSURLErrorCannotDecodeRawData},
      {"/packed/gzip?named=br", NSURLErrorCannotDecodeContentData},
      {"/packed/gzip?named=gzip,+gzip", NSURLErrorCannotDecodeContentData},
  };
  Loading loading;
  for (const auto& [path, code] : rows) {
    const TaskRecord data = loading.data(at(path));
    EXPECT_EQ(data.code(), code) << path;
    EXPECT_EQ(data.status(), 200) << path;
    const TaskRecord file = loading.download(at(path));
    EXPECT_EQ(file.code(), code) << path;
    EXPECT_THAT(file.events, Not(Contains("download"))) << path;
  }
}

TEST(NSURLSessionBodies, AreNotAskedForInEncodingsWhereARangeIs) {
  Loading loading;
  EXPECT_THAT(loading.data(at("/echo")).body, HasSubstr(R"("accept-encoding": "gzip, deflate")"));
  const auto request = NSMutableURLRequest::requestWithURL(at("/echo"));
  request->setValue("bytes=1-2", "range");
  EXPECT_THAT(loading.data(request).body, HasSubstr(R"("accept-encoding": "identity")"));
  request->setURL(at("/packed/gzip?cut=4&status=206"));
  const TaskRecord part = loading.data(request);
  EXPECT_EQ(part.error, nullptr);
  EXPECT_EQ(part.body.substr(0, 2), "\x1F\x8B");
}

TEST(NSURLSessionBodies, KeepBlankFieldsOfTheRequest) {
  Loading loading;
  const auto request = NSMutableURLRequest::requestWithURL(at("/echo"));
  request->setValue(" ", "X-Blank");
  EXPECT_THAT(loading.data(request).body, HasSubstr(R"("x-blank": "")"));
}

/// Lets the body come after a while, on another thread.
class LateJudge : public orlftest::RecordingDelegate {
 public:
  void URLSessionDataTaskDidReceiveResponse(const Session&,
                                            const std::shared_ptr<NSURLSessionDataTask>&,
                                            const std::shared_ptr<NSURLResponse>&,
                                            const NSURLSessionResponseHandler& handler) override {
    std::thread([handler] {
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      handler(NSURLSessionResponseAllow);
    }).detach();
  }
};

TEST(NSURLSessionBodies, AreJudgedTheSameWhenTheyHadToWait) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setMaximumBodyLength(12'000);
  const auto delegate = std::make_shared<LateJudge>();
  const auto session = NSURLSession::sessionWithConfiguration(configuration, delegate, nullptr);
  const std::pair<const char*, NSInteger> rows[] = {
      {"/bytes/12000", 0},
      {"/bytes/12001", NSURLErrorDataLengthExceedsMaximum},
      {"/bytes/3000000", NSURLErrorDataLengthExceedsMaximum},
      {"/bomb", NSURLErrorDataLengthExceedsMaximum},
      {"/packed/gzip", 0},
      {"/packed/gzip?cut=1", NSURLErrorCannotDecodeRawData},
      {"/packed/gzip?named=br", NSURLErrorCannotDecodeContentData},
  };
  NSUInteger task = 0;
  for (const auto& [path, code] : rows) {
    session->dataTaskWithRequest(NSURLRequest::requestWithURL(at(path)))->resume();
    ASSERT_TRUE(delegate->waitForCompletions(++task)) << path;
    EXPECT_EQ(delegate->record(task).code(), code) << path;
    EXPECT_LE(delegate->record(task).body.size(), 12'000U) << path;
  }
  EXPECT_EQ(delegate->record(5).body, unpackedText());
  session->invalidateAndCancel();
}

/// Takes its time over each piece, on a queue.
class SlowReader : public orlftest::RecordingDelegate {
 public:
  void URLSessionDataTaskDidReceiveData(const Session& session,
                                        const std::shared_ptr<NSURLSessionDataTask>& dataTask,
                                        const NSData& data) override {
    ++pieces_;
    if (whenToldFirst_) std::exchange(whenToldFirst_, nullptr)();
    std::this_thread::sleep_for(std::chrono::microseconds(100));
    RecordingDelegate::URLSessionDataTaskDidReceiveData(session, dataTask, data);
    if (pieces_ > most_) dataTask->cancel();
  }
  std::function<void()> whenToldFirst_;
  int most_ = 1'000'000;
  std::atomic<int> pieces_{0};
};

TEST(NSURLSessionBodies, ThatSwellWaitForTheirReader) {
  const auto delegate = std::make_shared<SlowReader>();
  const auto session = NSURLSession::sessionWithConfiguration(nullptr, delegate,
                                                              std::make_shared<NSOperationQueue>());
  session->dataTaskWithRequest(NSURLRequest::requestWithURL(at("/bomb")))->resume();
  ASSERT_TRUE(delegate->waitForCompletions(1));
  EXPECT_EQ(delegate->record(1).error, nullptr);
  EXPECT_EQ(delegate->record(1).body, std::string(20'000'000, '\0'));
  session->invalidateAndCancel();
}

TEST(NSURLSessionBodies, LeaveTheQueueToOthersInTurn) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  const auto delegate = std::make_shared<SlowReader>();
  delegate->keepsBodies_ = false;
  delegate->most_ = 600;
  std::atomic<int> piecesBefore{0};
  delegate->whenToldFirst_ = [&] {
    queue->addOperationWithBlock([&] { piecesBefore = delegate->pieces_.load(); });
  };
  const auto session = NSURLSession::sessionWithConfiguration(nullptr, delegate, queue);
  session->dataTaskWithRequest(NSURLRequest::requestWithURL(at("/endless/body")))->resume();
  ASSERT_TRUE(delegate->waitForCompletions(1));
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_GT(piecesBefore, 0);
  EXPECT_LT(piecesBefore, 200);
  session->invalidateAndCancel();
}

TEST(NSURLSessionBodies, ComeThoughAllOperationsOfTheirQueueAreCancelled) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  queue->setSuspended(true);
  Loading loading(nullptr, queue);
  const auto task =
      loading.session->dataTaskWithRequest(NSURLRequest::requestWithURL(at("/bytes/1000")));
  task->resume();
  ASSERT_TRUE(orlftest::becomes([&] { return queue->operationCount() > 0; }));
  queue->cancelAllOperations();
  queue->setSuspended(false);
  ASSERT_TRUE(loading.delegate->waitForCompletions(1));
  EXPECT_EQ(loading.delegate->record(1).body.size(), 1000U);
}

TEST(NSURLSessionBodies, OfUploadsMayBeReadSlowlyButNotStandStill) {
  Loading loading;
  const auto upload = [&](const char* path, double timeout, std::size_t size) {
    const auto request = NSMutableURLRequest::requestWithURL(at(path));
    request->setHTTPMethod("PUT");
    request->setTimeoutInterval(timeout);
    request->setHTTPBody(NSData(std::string(size, 'u')));
    return loading.data(request);
  };
  // Takes 3 ms for each 256 KiB: longer than the timeout in all.
  const TaskRecord slow = upload("/slow-reader", 0.5, 48'000'000);
  EXPECT_EQ(slow.code(), 0);
  EXPECT_EQ(slow.sent, 48'000'000);
  const TaskRecord stuck = upload("/stuck-reader", 0.2, 30'000'000);
  EXPECT_EQ(stuck.code(), NSURLErrorTimedOut);
  EXPECT_LT(stuck.sent, 30'000'000);
}

TEST(NSURLSessionBodies, OfDownloadsThatTheDiskDoesNotTakeAreErrors) {
  Loading loading;
  EXPECT_EQ(loading.data(at("/bytes/1")).code(), 0);
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small{std::size_t{1} << 20, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const TaskRecord record = loading.download(at("/bytes/3000000"));
  ::setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(record.code(), NSURLErrorCannotWriteToFile);
  EXPECT_THAT(record.events, Not(Contains("download")));
}

}  // namespace
