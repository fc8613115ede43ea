#include <ORLFoundation/platform/net/NSURLSession_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/TemporaryFolder.h>

#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <limits>
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

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

std::shared_ptr<NSURLSessionConfiguration> limitedTo(std::int64_t bytes) {
  auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setMaximumBodyLength(bytes);
  return configuration;
}

/// Downloads go to a folder of its own, in which nothing may stay.
class NSURLSessionFailures : public orlftest::TemporaryFolderTest {
 protected:
  ~NSURLSessionFailures() override { EXPECT_EQ(orlftest::entryCount(folder_), 0U); }

  const orlftest::EnvironmentVariable variable_{"TMPDIR", folder_.string()};
};

TEST_F(NSURLSessionFailures, NameWhatTheServerBroke) {
  const std::pair<const char*, NSURLError> rows[] = {
      {"/short", NSURLErrorNetworkConnectionLost},
      {"/resets", NSURLErrorNetworkConnectionLost},
      {"/drop", NSURLErrorNetworkConnectionLost},
      {"/raw?bytes=", NSURLErrorNetworkConnectionLost},
      {"/raw?bytes=nonsense%0D%0A%0D%0A", NSURLErrorCannotParseResponse},
      {"/raw?bytes=HTTP/1.1+200+OK%0D%0AContent-Length:+x%0D%0A%0D%0A",
       NSURLErrorBadServerResponse},
      {"/raw?bytes=HTTP/1.1+200+OK%0D%0AA:+%00%0D%0A%0D%0A", NSURLErrorBadServerResponse},
      {"/raw?bytes=HTTP/1.1+200+OK%0D%0A+folded:+1%0D%0A%0D%0A", NSURLErrorBadServerResponse},
      {"/raw?bytes=HTTP/1.1+101+OK%0D%0AUpgrade:+x%0D%0A%0D%0Abody", NSURLErrorBadServerResponse},
      {"/raw?bytes=HTTP/1.1+200+OK%0D%0ATransfer-Encoding:+x%0D%0A%0D%0Abody",
       NSURLErrorCannotDecodeContentData},
      {"/raw?bytes=HTTP/1.1+200+OK%0D%0ATransfer-Encoding:+chunked%0D%0A%0D%0A5%0D%0Ahel",
       NSURLErrorNetworkConnectionLost},
      {"/raw?bytes=HTTP/1.1+200+OK%0D%0ATransfer-Encoding:+chunked%0D%0A%0D%0A2%0D%0Aok%0D%0A",
       NSURLErrorNetworkConnectionLost},
      {"/endless/header", NSURLErrorBadServerResponse},
      {"/endless/line", NSURLErrorBadServerResponse},
      {"/endless/interim", NSURLErrorBadServerResponse},
  };
  Loading loading;
  for (const auto& [path, code] : rows) {
    for (const TaskRecord& record : {loading.data(LocalServer::shared().url(path)),
                                     loading.download(LocalServer::shared().url(path))}) {
      EXPECT_EQ(record.code(), code)
          << path << ": " << (record.error ? record.error->description() : "");
      ASSERT_NE(record.error, nullptr) << path;
      EXPECT_EQ(record.error->domain(), NSURLErrorDomain);
      EXPECT_EQ(record.events.back(), "complete");
      EXPECT_EQ(record.completions, 1);
      EXPECT_THAT(record.events, Not(testing::Contains("download"))) << path;
    }
  }
}

TEST_F(NSURLSessionFailures, AreLengthsOfWhichEachReaderMakesAnother) {
  Loading loading;
  const auto told = [&](const std::string& fields) {
    const std::string head = "/raw?bytes=HTTP/1.1+200+OK%0D%0A";
    return loading.data(LocalServer::shared().url(head + fields + "%0D%0A%0D%0Aabcde"));
  };
  for (const char* lengths :
       {"Content-Length:+3%0D%0AContent-Length:+5", "Content-Length:+5%0D%0AContent-Length:+3",
        "Content-Length:+5,+3", "Content-Length:+%2B5", "Content-Length:+0x5", "Content-Length:+-5",
        "Content-Length:+5x", "Content-Length:+5,x", "Content-Length:+5.0",
        "Content-Length:", "Content-Length:+,5", "Content-Length:+9223372036854775808",
        "Content-Length+:+5", "Content-Length:%0D%0A+5", "Content-Length:+5%0D%0A+",
        "Transfer-Encoding+:+chunked", "Transfer-Encoding:%0D%0A+chunked",
        "Content-Length:+5%0D%0AHTTP/1.1+200:+OK%0D%0AContent-Length:+3"}) {
    const TaskRecord record = told(lengths);
    EXPECT_EQ(record.code(), NSURLErrorBadServerResponse) << lengths;
    EXPECT_EQ(record.body, "") << lengths;
    EXPECT_EQ(record.response, nullptr) << lengths;
  }
  for (const char* lengths : {"Content-Length:+5", "Content-Length:+5%0D%0AContent-Length:+5",
                              "Content-Length:+005", "X:+1"})
    EXPECT_EQ(told(lengths).body, "abcde") << lengths;
  EXPECT_EQ(told("Content-Length:+3").body, "abc");
  const char* const chunked =
      "/raw?bytes=HTTP/1.1+200+OK%0D%0AContent-Length:+0x3%0D%0ATransfer-Encoding:+chunked"
      "%0D%0A%0D%0A5%0D%0Aabcde%0D%0A0%0D%0A%0D%0A";
  EXPECT_EQ(loading.data(LocalServer::shared().url(chunked)).body, "abcde");
}

TEST_F(NSURLSessionFailures, AreFieldsThatFoldNothingAlsoAfterAnswersWithFields) {
  Loading loading;
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(loading.data(LocalServer::shared().url("/headed/200?X-Long-Name=value")).code(), 0);
    const auto folded =
        LocalServer::shared().url("/raw?bytes=HTTP/1.1+200+OK%0D%0A+more%0D%0A%0D%0A");
    EXPECT_EQ(loading.data(folded).code(), NSURLErrorBadServerResponse);
  }
}

TEST_F(NSURLSessionFailures, AreExtensionsOfAChunkWithoutEndWhichCountAsSilence) {
  Loading loading;
  const auto start = Clock::now();
  const TaskRecord record = loading.data(orlftest::patientRequest("/endless/extension", 0.2));
  EXPECT_EQ(record.code(), NSURLErrorTimedOut);
  EXPECT_EQ(record.body, "hello");
  EXPECT_GE(secondsSince(start), 0.2);
}

TEST_F(NSURLSessionFailures, AreNotThoseOfServersThatCloseAConnectionUnasked) {
  Loading loading;
  for (int i = 0; i < 20; ++i) {
    const TaskRecord record = loading.data(LocalServer::shared().url("/echo?once"));
    EXPECT_EQ(record.status(), 200) << i;
  }
  EXPECT_EQ(loading.data(LocalServer::shared().url("/redirect/16?once=1")).status(), 200);
}

TEST_F(NSURLSessionFailures, KeepTheResponseThatCameBeforeThem) {
  Loading loading;
  const TaskRecord record = loading.data(LocalServer::shared().url("/short"));
  EXPECT_EQ(record.status(), 200);
  EXPECT_EQ(record.body, "short");
  EXPECT_EQ(record.expected, 100);
  EXPECT_EQ(loading.data(LocalServer::shared().url("/drop")).response, nullptr);
}

TEST_F(NSURLSessionFailures, TellOfAddressesThatCannotBeLoaded) {
  Loading loading;
  const auto codeOf = [&](std::optional<NSURL> url) {
    return loading.data(NSURLRequest::requestWithURL(std::move(url))).code();
  };
  EXPECT_EQ(codeOf(std::nullopt), NSURLErrorBadURL);
  for (const char* text : {"http:///x", "http://127.0.0.1:99999/", "/relative", "http:"}) {
    const auto url = NSURL::URLWithString(text);
    ASSERT_TRUE(url) << text;
    EXPECT_EQ(codeOf(url), NSURLErrorBadURL) << text;
  }
  for (const char* text : {"ftp://127.0.0.1/x", "gopher://127.0.0.1/x", "mailto:a@b.c", "x:y"})
    EXPECT_EQ(codeOf(NSURL::URLWithString(text)), NSURLErrorUnsupportedURL) << text;
  EXPECT_EQ(codeOf(NSURL::URLWithString("http://127.0.0.1:1/")), NSURLErrorCannotConnectToHost);
}

TEST_F(NSURLSessionFailures, TellNoAddress) {
  Loading loading;
  const TaskRecord record = loading.data(LocalServer::shared().url("/drop?token=hidden"));
  ASSERT_NE(record.error, nullptr);
  EXPECT_THAT(record.error->description(), Not(HasSubstr("hidden")));
  EXPECT_THAT(record.error->localizedDescription(), HasSubstr("connection"));
}

TEST_F(NSURLSessionFailures, EndSilenceInFractionsOfASecond) {
  Loading loading;
  const auto start = Clock::now();
  for (const char* path : {"/silent", "/stalls"})
    loading.session->dataTaskWithRequest(orlftest::patientRequest(path, 0.2))->resume();
  loading.session->downloadTaskWithRequest(orlftest::patientRequest("/stalls", 0.2))->resume();
  ASSERT_TRUE(loading.delegate->waitForCompletions(3));
  EXPECT_GE(secondsSince(start), 0.19);
  EXPECT_LT(secondsSince(start), 5.0);
  for (NSUInteger task = 1; task <= 3; ++task)
    EXPECT_EQ(loading.delegate->record(task).code(), NSURLErrorTimedOut) << task;
  EXPECT_EQ(loading.data(orlftest::patientRequest("/trickle/8/0.05", 0.3)).body, "xxxxxxxx");
}

TEST_F(NSURLSessionFailures, GoByTheRequestsTimeoutBeforeTheConfigurations) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setTimeoutIntervalForRequest(0.1);
  Loading loading(configuration);
  const auto silent = NSURLRequest::requestWithURL(LocalServer::shared().url("/late/0.3"));
  EXPECT_EQ(loading.data(silent).code(), NSURLErrorTimedOut);
  for (const double timeout : {5.0, std::numeric_limits<double>::infinity(), 0.0, -1.0,
                               std::numeric_limits<double>::quiet_NaN(), 1e300})
    EXPECT_EQ(loading.data(orlftest::patientRequest("/late/0.02", timeout)).body, "late")
        << timeout;
}

TEST_F(NSURLSessionFailures, EndATaskThatTakesTooLongAsAWhole) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setTimeoutIntervalForResource(0.25);
  Loading loading(configuration);
  EXPECT_EQ(loading.data(orlftest::patientRequest("/trickle/100/0.02", 5)).code(),
            NSURLErrorTimedOut);
}

TEST_F(NSURLSessionFailures, CountNoSilenceOfRequestsThatWaitForAConnection) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setHTTPMaximumConnectionsPerHost(1);
  Loading loading(configuration);
  for (int i = 0; i < 4; ++i)
    loading.session->dataTaskWithRequest(orlftest::patientRequest("/late/0.2", 0.5))->resume();
  ASSERT_TRUE(loading.delegate->waitForCompletions(4));
  for (NSUInteger task = 1; task <= 4; ++task)
    EXPECT_EQ(loading.delegate->record(task).body, "late") << task;
}

TEST_F(NSURLSessionFailures, CountNoSilenceThatADelegateMakes) {
  class Slow : public orlftest::RecordingDelegate {
   public:
    void URLSessionTaskDidCompleteWithError(const Session& session, const Task& task,
                                            const std::shared_ptr<const NSError>& error) override {
      if (task->taskIdentifier() == 1) std::this_thread::sleep_for(std::chrono::milliseconds(500));
      RecordingDelegate::URLSessionTaskDidCompleteWithError(session, task, error);
    }
  };
  const auto delegate = std::make_shared<Slow>();
  const auto session = NSURLSession::sessionWithConfiguration(nullptr, delegate, nullptr);
  session->dataTaskWithRequest(orlftest::patientRequest("/echo", 5))->resume();
  session->dataTaskWithRequest(orlftest::patientRequest("/late/0.1", 0.3))->resume();
  ASSERT_TRUE(delegate->waitForCompletions(2));
  EXPECT_EQ(delegate->record(2).body, "late");
  session->invalidateAndCancel();
}

TEST_F(NSURLSessionFailures, LimitBodiesAfterDecoding) {
  EXPECT_EQ(Loading(limitedTo(1000)).data(LocalServer::shared().url("/bytes/1000")).code(), 0);
  EXPECT_EQ(Loading(limitedTo(0)).data(LocalServer::shared().url("/bytes/0")).code(), 0);
  EXPECT_EQ(Loading(limitedTo(12'000)).data(LocalServer::shared().url("/packed/gzip")).code(), 0);
  const std::pair<std::int64_t, const char*> rows[] = {
      {999, "/bytes/1000"},         {0, "/bytes/1"},  {11'999, "/packed/gzip"},
      {11'999, "/packed/deflate"},  {10, "/chunked"}, {1'000'000, "/bomb"},
      {3'000'000, "/endless/body"},
  };
  for (const auto& [limit, path] : rows) {
    Loading loading(limitedTo(limit));
    const TaskRecord data = loading.data(LocalServer::shared().url(path));
    EXPECT_EQ(data.code(), NSURLErrorDataLengthExceedsMaximum) << path;
    EXPECT_LE(static_cast<std::int64_t>(data.body.size()), limit);
    const TaskRecord file = loading.download(LocalServer::shared().url(path));
    EXPECT_EQ(file.code(), NSURLErrorDataLengthExceedsMaximum) << path;
    EXPECT_LE(file.written, limit);
  }
}

TEST_F(NSURLSessionFailures, OfUploadsThatAreResetRaiseNoSignal) {
  Loading loading;
  const auto request =
      NSMutableURLRequest::requestWithURL(LocalServer::shared().url("/upload/1000/reset"));
  request->setHTTPMethod("POST");
  request->setHTTPBody(NSData(std::string(20'000'000, 'x')));
  for (int i = 0; i < 5; ++i) {
    const TaskRecord record = loading.data(request);
    EXPECT_EQ(record.code(), NSURLErrorNetworkConnectionLost);
    EXPECT_LT(record.sent, 20'000'000);
  }
}

TEST_F(NSURLSessionFailures, ForbidKeptAnswersAndTellCachesToAsk) {
  Loading loading;
  const auto url = LocalServer::shared().url("/echo");
  const auto with = [&](NSURLRequestCachePolicy policy) {
    return loading.data(NSURLRequest::requestWithURL(url, policy, 60));
  };
  const TaskRecord kept = with(NSURLRequestReturnCacheDataDontLoad);
  EXPECT_EQ(kept.code(), NSURLErrorResourceUnavailable);
  EXPECT_THAT(kept.events, ElementsAre("complete"));
  const auto asks = HasSubstr(R"("cache-control": "no-cache")");
  EXPECT_THAT(with(NSURLRequestReloadIgnoringLocalCacheData).body, asks);
  EXPECT_THAT(with(NSURLRequestReloadIgnoringLocalAndRemoteCacheData).body, asks);
  for (const auto policy :
       {NSURLRequestUseProtocolCachePolicy, NSURLRequestReturnCacheDataElseLoad,
        NSURLRequestReloadRevalidatingCacheData, static_cast<NSURLRequestCachePolicy>(77)})
    EXPECT_THAT(with(policy).body, Not(HasSubstr("cache-control"))) << policy;

  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  configuration->setRequestCachePolicy(NSURLRequestReloadIgnoringLocalCacheData);
  configuration->setHTTPAdditionalHeaders({{"X-All", "all"}, {"X-Own", "all"}});
  Loading other(configuration);
  const auto request = NSMutableURLRequest::requestWithURL(url);
  request->setValue("own", "x-own");
  const TaskRecord record = other.data(request);
  EXPECT_THAT(record.body, asks);
  EXPECT_THAT(record.body, HasSubstr(R"("x-all": "all")"));
  EXPECT_THAT(record.body, HasSubstr(R"("x-own": "own")"));
  request->setCachePolicy(NSURLRequestReturnCacheDataElseLoad);
  request->setValue("max-age=3", "Cache-Control");
  EXPECT_THAT(other.data(request).body, HasSubstr(R"("cache-control": "max-age=3")"));
}

TEST_F(NSURLSessionFailures, OfFilesSayWhy) {
  Loading loading;
  const NSURL folder = NSURL::fileURLWithPath(folder_.string());
  EXPECT_EQ(loading.data(folder).code(), NSURLErrorFileIsDirectory);
  EXPECT_EQ(loading.data(NSURL::fileURLWithPath(path("none"))).code(), NSURLErrorFileDoesNotExist);
  EXPECT_EQ(loading.data(NSURL::URLWithString("file://elsewhere/etc/passwd").value()).code(),
            NSURLErrorFileDoesNotExist);
  for (const char* text : {"file:CMakeCache.txt", "file:../etc/passwd", "file:", "file:///%00"})
    EXPECT_EQ(loading.data(NSURL::URLWithString(text).value()).code(), NSURLErrorFileDoesNotExist)
        << text;
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(loading.data(NSURL::fileURLWithPath(path("pipe"))).code(), NSURLErrorCannotOpenFile);
  std::filesystem::remove(path("pipe"));
  for (const char* text : {"data:", "data:text/plain", "data:;base64,a%20b", "data:;base64,!"})
    EXPECT_EQ(loading.data(NSURL::URLWithString(text).value()).code(), NSURLErrorBadURL) << text;
}

TEST_F(NSURLSessionFailures, OfADownloadsFileEndIt) {
  ::setenv("TMPDIR", "/proc/no-such-folder", 1);
  Loading loading;
  for (const char* path : {"/bytes/10", "/bytes/0"})
    EXPECT_EQ(loading.download(LocalServer::shared().url(path)).code(), NSURLErrorCannotCreateFile);
}

TEST_F(NSURLSessionFailures, DoNotKeepFilesAndDataFromBeingLoaded) {
  Loading loading;
  const std::string text(1'000'000, 'f');
  const NSURL file = NSURL::fileURLWithPath(write("a file%", text));
  const TaskRecord data = loading.data(file);
  EXPECT_EQ(data.body, text);
  EXPECT_EQ(data.expected, 1'000'000);
  EXPECT_EQ(data.response->className(), "NSURLResponse");
  EXPECT_THAT(data.events, ElementsAre("data", "complete"));
  const TaskRecord copied = loading.download(file);
  EXPECT_EQ(copied.body, text);
  EXPECT_NE(copied.location, file.path());
  EXPECT_THAT(copied.events, ElementsAre("written", "download", "complete"));
  EXPECT_EQ(Loading(limitedTo(999'999)).data(file).code(), NSURLErrorDataLengthExceedsMaximum);
  const auto head = NSMutableURLRequest::requestWithURL(file);
  head->setHTTPMethod("HEAD");
  EXPECT_THAT(loading.data(head).events, ElementsAre("complete"));

  const TaskRecord inside =
      loading.data(NSURL::URLWithString("data:text/x;charset=utf-8;base64,aGVsbG8=").value());
  EXPECT_EQ(inside.body, "hello");
  EXPECT_EQ(inside.expected, 5);
  EXPECT_EQ(inside.response->MIMEType(), "text/x");
  EXPECT_EQ(inside.response->textEncodingName(), "utf-8");
  EXPECT_EQ(loading.download(NSURL::URLWithString("data:,a%20b").value()).body, "a b");
  std::filesystem::remove(file.path());
}

}  // namespace
