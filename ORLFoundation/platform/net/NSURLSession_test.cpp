#include <ORLFoundation/platform/net/NSURLSession.h>

#include <ORLFoundation/platform/net/NSURLSession_testing.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/EnvironmentVariable.h>

#include <filesystem>
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
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::shared_ptr<NSMutableURLRequest> requestTo(const std::string& path) {
  return NSMutableURLRequest::requestWithURL(LocalServer::shared().url(path));
}

std::string countingBytes(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t index = 0; index < size; ++index) bytes[index] = static_cast<char>(index);
  return bytes;
}

TEST(NSURLSession, TellsOfDataThenOfTheEnd) {
  Loading loading;
  const TaskRecord record = loading.data(LocalServer::shared().url("/bytes/1000"));
  EXPECT_THAT(record.events, ElementsAre("data", "complete"));
  EXPECT_EQ(record.error, nullptr);
  EXPECT_EQ(record.status(), 200);
  EXPECT_EQ(record.body, countingBytes(1000));
  EXPECT_EQ(record.received, 1000);
  EXPECT_EQ(record.expected, 1000);
}

TEST(NSURLSession, TellsOfTheBodySentBeforeTheAnswer) {
  Loading loading;
  const auto request = requestTo("/echo");
  request->setHTTPMethod("POST");
  request->setHTTPBody(NSData(std::string(3'000'000, 'x')));
  const TaskRecord record = loading.data(request);
  EXPECT_THAT(record.events, ElementsAre("sent", "data", "complete"));
  EXPECT_EQ(record.sent, 3'000'000);
  EXPECT_EQ(record.sentSum, 3'000'000);
  EXPECT_EQ(record.expectedToSend, 3'000'000);
  EXPECT_THAT(record.body, HasSubstr(R"("length": 3000000)"));
  EXPECT_THAT(record.body, HasSubstr(R"("method": "POST")"));
}

TEST(NSURLSession, TellsOfWritingThenOfTheFileThenOfTheEnd) {
  Loading loading;
  const TaskRecord record = loading.download(LocalServer::shared().url("/bytes/1000000"));
  EXPECT_THAT(record.events, ElementsAre("written", "download", "complete"));
  EXPECT_EQ(record.body, countingBytes(1'000'000));
  EXPECT_EQ(record.written, 1'000'000);
  EXPECT_EQ(record.writtenSum, 1'000'000);
  EXPECT_EQ(record.expectedToWrite, 1'000'000);
  EXPECT_EQ(record.received, 1'000'000);
  EXPECT_FALSE(std::filesystem::exists(record.location));
}

TEST(NSURLSession, DownloadsAnEmptyBodyToAnEmptyFile) {
  Loading loading;
  const TaskRecord record = loading.download(LocalServer::shared().url("/bytes/0"));
  EXPECT_THAT(record.events, ElementsAre("download", "complete"));
  EXPECT_EQ(record.body, "");
  EXPECT_EQ(record.error, nullptr);
}

TEST(NSURLSession, GivesEveryStatusAsAnAnswer) {
  Loading loading;
  for (const int status : {200, 201, 400, 401, 403, 404, 418, 500, 503}) {
    const auto url = LocalServer::shared().url("/status/" + std::to_string(status));
    for (const TaskRecord& record : {loading.data(url), loading.download(url)}) {
      EXPECT_EQ(record.error, nullptr) << status;
      EXPECT_EQ(record.status(), status);
      EXPECT_EQ(record.body, "status " + std::to_string(status));
    }
  }
}

TEST(NSURLSession, SendsMethodHeaderAndBodyAsAsked) {
  Loading loading;
  for (const char* method : {"GET", "POST", "PUT", "PATCH", "DELETE", "OPTIONS", "REPORT"}) {
    const auto request = requestTo("/echo?a=b%20c&d=%26");
    request->setHTTPMethod(method);
    request->setValue("text/x; a=\"b\"", "Content-Type");
    request->setValue("", "X-Empty");
    request->setValue("7", "Content-Length");
    request->setValue("chunked", "Transfer-Encoding");
    request->setHTTPBody(NSData("some body"));
    const TaskRecord record = loading.data(request);
    EXPECT_EQ(record.status(), 200) << method;
    EXPECT_THAT(record.body, HasSubstr(R"("method": ")" + std::string(method)));
    EXPECT_THAT(record.body, HasSubstr(R"("target": "/echo?a=b%20c&d=%26")"));
    EXPECT_THAT(record.body, HasSubstr(R"("content-type": "text/x; a=\"b\"")"));
    EXPECT_THAT(record.body, HasSubstr(R"("x-empty": "")"));
    EXPECT_THAT(record.body, HasSubstr(R"("content-length": "9")"));
    EXPECT_THAT(record.body, HasSubstr(R"("body": "some body")"));
    EXPECT_THAT(record.body, Not(HasSubstr("transfer-encoding")));
    EXPECT_THAT(record.body, Not(HasSubstr("expect")));
  }
}

TEST(NSURLSession, SendsNothingThatWasNotAskedFor) {
  Loading loading;
  const TaskRecord get = loading.data(requestTo("/echo"));
  EXPECT_THAT(get.body, Not(HasSubstr("content-")));
  EXPECT_THAT(get.body, Not(HasSubstr("cache-control")));
  const auto post = requestTo("/echo");
  post->setHTTPMethod("POST");
  const TaskRecord record = loading.data(post);
  EXPECT_THAT(record.body, HasSubstr(R"("content-length": "0")"));
  EXPECT_THAT(record.events, ElementsAre("data", "complete"));
}

TEST(NSURLSession, HasNoBodyOfAHead) {
  Loading loading;
  const auto request = requestTo("/bytes/500");
  request->setHTTPMethod("HEAD");
  const TaskRecord record = loading.data(request);
  EXPECT_THAT(record.events, ElementsAre("complete"));
  EXPECT_EQ(record.field("content-length"), "500");
  EXPECT_EQ(record.received, 0);
  EXPECT_EQ(loading.download(request).body, "");
}

TEST(NSURLSession, ReadsTheAnswersHeader) {
  Loading loading;
  const TaskRecord record = loading.data(LocalServer::shared().url(
      "/headed/200?X-Text=r%C3%A9sum%C3%A9&Content-Type=text/csv;+charset=x&Last-Modified=then"));
  EXPECT_EQ(record.field("X-TEXT"), "r\xC3\xA9sum\xC3\xA9");
  EXPECT_EQ(record.field("last-modified"), "then");
  EXPECT_EQ(record.response->MIMEType(), "text/csv");
  EXPECT_EQ(record.response->textEncodingName(), "x");
  EXPECT_EQ(record.response->URL()->path(), "/headed/200");
}

TEST(NSURLSession, PassesOverInterimAnswersAndTrailers) {
  Loading loading;
  const TaskRecord interim = loading.data(LocalServer::shared().url("/interim"));
  EXPECT_EQ(interim.body, "after");
  EXPECT_EQ(interim.field("X-Late"), "1");
  EXPECT_EQ(interim.field("X-Early"), "");
  const TaskRecord chunked = loading.data(LocalServer::shared().url("/chunked"));
  EXPECT_EQ(chunked.body, "hello world");
  EXPECT_EQ(chunked.expected, -1);
  EXPECT_EQ(chunked.field("X-Trailer"), "");
}

TEST(NSURLSession, DecodesBodiesAndThenDoesNotKnowTheirLength) {
  Loading loading;
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "packed text ";
  for (const char* kind : {"gzip", "deflate"}) {
    const auto url = LocalServer::shared().url(std::string("/packed/") + kind);
    const TaskRecord record = loading.data(url);
    EXPECT_EQ(record.body, text) << kind;
    EXPECT_EQ(record.expected, -1);
    EXPECT_EQ(record.received, static_cast<std::int64_t>(text.size()));
    const TaskRecord file = loading.download(url);
    EXPECT_EQ(file.body, text);
    EXPECT_EQ(file.expectedToWrite, -1);
  }
}

TEST(NSURLSession, LeavesBodiesEncodedWhereTheRequestSaysHow) {
  Loading loading;
  const auto request = requestTo("/packed/gzip");
  request->setValue("gzip", "Accept-Encoding");
  EXPECT_EQ(loading.data(request).body.substr(0, 2), "\x1F\x8B");
}

TEST(NSURLSession, AsksTheProxyThatTheEnvironmentNamesAsItBegins) {
  const std::string proxy = LocalServer::shared().text("");
  const auto asked = [&](const char* name, const char* address) {
    static_cast<void>(Loading().data(LocalServer::shared().url("/requests")));
    {
      const orlftest::EnvironmentVariable variable(name, proxy);
      static_cast<void>(Loading().data(NSURL::URLWithString(address).value()));
    }
    return Loading().data(LocalServer::shared().url("/requests")).body;
  };
  for (const char* name : {"http_proxy", "all_proxy", "ALL_PROXY"})
    EXPECT_EQ(asked(name, "http://shop.invalid/echo"), "GET /echo") << name;
  for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
    EXPECT_EQ(asked(name, "https://shop.invalid/"), "CONNECT /shop.invalid:443") << name;
}

TEST(NSURLSession, NumbersItsTasksFromOne) {
  Loading loading;
  const auto request = requestTo("/echo");
  EXPECT_EQ(loading.session->dataTaskWithRequest(request)->taskIdentifier(), 1U);
  EXPECT_EQ(loading.session->downloadTaskWithRequest(request)->taskIdentifier(), 2U);
  EXPECT_EQ(loading.session->dataTaskWithRequest(nullptr), nullptr);
  EXPECT_EQ(loading.session->downloadTaskWithRequest(nullptr), nullptr);
  EXPECT_EQ(loading.session->dataTaskWithRequest(request)->taskIdentifier(), 3U);
}

TEST(NSURLSession, RunsATaskOnceAndOfTheRequestAsItWas) {
  Loading loading;
  const auto request = requestTo("/status/201");
  const auto task = loading.session->dataTaskWithRequest(request);
  EXPECT_EQ(task->response(), nullptr);
  EXPECT_EQ(task->countOfBytesExpectedToReceive(), 0);
  request->setURL(LocalServer::shared().url("/status/500"));
  task->resume();
  const TaskRecord record = loading.run(task);
  task->resume();
  EXPECT_EQ(record.status(), 201);
  EXPECT_EQ(record.completions, 1);
  EXPECT_EQ(loading.data(requestTo("/echo")).status(), 200);
  EXPECT_EQ(loading.delegate->completions(), 2U);
}

TEST(NSURLSession, DeliversInOrderOnTheQueueThatIsGiven) {
  const auto queue = std::make_shared<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  Loading loading(nullptr, queue);
  const auto request = requestTo("/echo");
  request->setHTTPMethod("PUT");
  request->setHTTPBody(NSData(std::string(200'000, 'x')));
  EXPECT_THAT(loading.data(request).events, ElementsAre("sent", "data", "complete"));
  EXPECT_EQ(loading.data(LocalServer::shared().url("/bytes/20000000")).body,
            countingBytes(20'000'000));
  const TaskRecord file = loading.download(LocalServer::shared().url("/bytes/1000000"));
  EXPECT_THAT(file.events, ElementsAre("written", "download", "complete"));
  EXPECT_EQ(file.body, countingBytes(1'000'000));
}

TEST(NSURLSession, TellsOnTheQueueThatIsGivenAndOnNoOther) {
  class OnQueue : public NSURLSessionDataDelegate {
   public:
    void URLSessionTaskDidCompleteWithError(const std::shared_ptr<NSURLSession>&,
                                            const std::shared_ptr<NSURLSessionTask>&,
                                            const std::shared_ptr<const NSError>&) override {
      queue_ = NSOperationQueue::currentQueue();
      done_.notify_all();
    }
    std::condition_variable done_;
    std::shared_ptr<NSOperationQueue> queue_;
  };
  const auto queue = std::make_shared<NSOperationQueue>();
  const auto delegate = std::make_shared<OnQueue>();
  const auto session = NSURLSession::sessionWithConfiguration(nullptr, delegate, queue);
  session->dataTaskWithRequest(requestTo("/echo"))->resume();
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (session.use_count() > 1 && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(delegate->queue_, queue);
}

/// Asks its delegate's question of each answer.
class Judge : public orlftest::RecordingDelegate {
 public:
  void URLSessionDataTaskDidReceiveResponse(const Session&,
                                            const std::shared_ptr<NSURLSessionDataTask>&,
                                            const std::shared_ptr<NSURLResponse>& response,
                                            const NSURLSessionResponseHandler& handler) override {
    EXPECT_NE(response, nullptr);
    judge_(handler);
  }
  std::function<void(const NSURLSessionResponseHandler&)> judge_;
};

TaskRecord judged(const std::string& path,
                  std::function<void(const NSURLSessionResponseHandler&)> judge) {
  const auto delegate = std::make_shared<Judge>();
  delegate->judge_ = std::move(judge);
  const auto session = NSURLSession::sessionWithConfiguration(nullptr, delegate, nullptr);
  session->dataTaskWithRequest(requestTo(path))->resume();
  EXPECT_TRUE(delegate->waitForCompletions(1));
  session->invalidateAndCancel();
  return delegate->record(1);
}

TEST(NSURLSession, WaitsForTheDelegatesAnswerToAResponse) {
  const auto allow = [](const NSURLSessionResponseHandler& handler) {
    std::thread([handler] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      handler(NSURLSessionResponseAllow);
      handler(NSURLSessionResponseCancel);  // Only the first answer counts.
    }).detach();
  };
  EXPECT_EQ(judged("/bytes/100000", allow).body, countingBytes(100'000));
  EXPECT_THAT(judged("/bytes/0", allow).events, ElementsAre("complete"));
  EXPECT_EQ(judged("/bytes/0", allow).error, nullptr);
  const auto cancel = [](const NSURLSessionResponseHandler& handler) {
    handler(NSURLSessionResponseCancel);
  };
  EXPECT_EQ(judged("/bytes/100", cancel).code(), NSURLErrorCancelled);
  EXPECT_EQ(judged("/bytes/0", cancel).code(), NSURLErrorCancelled);
  EXPECT_THAT(judged("/bytes/100", cancel).events, ElementsAre("complete"));
  EXPECT_EQ(judged("/bytes/100", [](const NSURLSessionResponseHandler&) {}).code(),
            NSURLErrorCancelled);
}

TEST(NSURLSession, AsksTheProviderThatIsInstalled) {
  std::shared_ptr<NSURLSessionConfiguration> asked;
  const auto before =
      NSSetURLSessionProvider([&](auto configuration, auto, auto) -> std::shared_ptr<NSURLSession> {
        asked = configuration;
        return nullptr;
      });
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  // It has no session to give: the library's own one serves.
  EXPECT_NE(NSURLSession::sessionWithConfiguration(configuration, nullptr, nullptr), nullptr);
  EXPECT_EQ(asked, configuration);
  NSSetURLSessionProvider(before);
  EXPECT_NE(NSURLSession::sessionWithConfiguration(nullptr, nullptr, nullptr), nullptr);
}

}  // namespace
