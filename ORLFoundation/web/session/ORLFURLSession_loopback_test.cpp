#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/web/session/ORLFURLSession_exchange_testing.h>
#include <ORLFoundation/web/session/ORLFURLSession_server_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::Json;

class RealServer final : public orlftest::ExchangeServer {
 public:
  [[nodiscard]] std::string base() const override { return server_.base(); }
  void script(const Json& answers) override { server_.script(answers); }
  [[nodiscard]] Json seen() override { return server_.seen(); }
  void settle() override {}

 private:
  const orlftest::LoopbackServer server_;
};

TEST(ORLFURLSessionOnLoopback, AgreesWithExchanges) {
  RealServer server;
  orlftest::runJsonVectors("session_exchange", {{"exchange", [&](const Json& in, const Json& out) {
                                                   return orlftest::SessionExchange::play(server,
                                                                                          in, out);
                                                 }}});
}

/// Nothing is ever in a cache, so that a request which is to be answered from there alone fails.
std::string playUncachedSend(RealServer& server, const Json& in) {
  server.script(Json::array({in.at("answer")}));
  const auto request = NSMutableURLRequest::requestWithURL(
      NSURL::URLWithString(server.base() + in.at("request").at("url").get<std::string>()));
  request->setCachePolicy(NSURLRequestReturnCacheDataDontLoad);
  std::shared_ptr<const NSError> error;
  const id result = ORLFURLSession::sendRequest(request, nullptr, &error);
  const Json told = {result.isNil(), orlftest::vectorOfError(error), server.seen()};
  return orlftest::disagreement(
      Json{true, {{"domain", "NSURLErrorDomain"}, {"code", -1008}}, Json::array()}, told);
}

TEST(ORLFURLSessionOnLoopback, AgreesWithSynchronousSends) {
  RealServer server;
  orlftest::runJsonVectors(
      "session_send",
      {{"sendRequest", [&](const Json& in, const Json& out) -> std::string {
          if (!in.at("loopback")) return {};
          if (in.at("request").at("cachePolicy") == NSURLRequestReturnCacheDataDontLoad)
            return playUncachedSend(server, in);
          return playSendRequest(server, in, out);
        }}});
}

TEST(ORLFURLSessionOnLoopback, AgreesWithLastModifiedDates) {
  RealServer server;
  orlftest::runJsonVectors(
      "session_modified",
      {{"fetchLastModifiedDateForContentsOfURL",
        [&](const Json& in, const Json& out) -> std::string {
          if (!in.value("loopback", false)) return {};
          return playLastModified(server, in, out);
        }},
       {"orlfLastModifiedDate", [](const Json&, const Json&) { return std::string(); }}});
}

TEST(ORLFURLSessionOnLoopback, EndsACancelledTaskAndAnInvalidatedSession) {
  RealServer server;
  server.script(Json::array({{{"status", 200}, {"body", "late"}, {"delay", 0.3}}}));
  const auto session = ORLFURLSession::initWithConfiguration(nullptr);
  const auto ended = std::make_shared<std::shared_ptr<const NSError>>();
  const auto task = session->taskWithRequest(
      NSURLRequest::requestWithURL(NSURL::URLWithString(server.base() + "/late")),
      [ended](const auto&, const auto& error) { *ended = error; });
  task->resume();
  task->cancel();
  task->waitUntilFinished();
  ASSERT_NE(*ended, nullptr);
  EXPECT_EQ((*ended)->code(), -999);
  EXPECT_EQ(task->state(), ORLURLSessionTaskStateCompleted);
  session->invalidateSessionCancelingTasks(true);
}

/// Between the making of the platform's task and its resuming.
TEST(ORLFURLSessionOnLoopback, EndsATaskWhoseSessionIsInvalidatedWhileItStarts) {
  for (const bool cancels : {false, true}) {
    const auto session = ORLFURLSession::initWithConfiguration(nullptr);
    const auto logger = std::make_shared<orlftest::TellingLogger>();
    logger->request = [&](const auto&) {
      session->invalidateSessionCancelingTasks(cancels);
      // Time for the platform to tell of it.
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
    };
    session->setLogger(logger);
    const auto code = std::make_shared<std::atomic<NSInteger>>(0);
    const auto task = session->taskWithRequest(
        NSURLRequest::requestWithURL(NSURL::URLWithString("data:,inside")),
        [code](const auto&, const auto& error) { *code = error ? error->code() : 1; });
    task->resume();
    EXPECT_TRUE(orlftest::becomes([&] { return task->state() == ORLURLSessionTaskStateCompleted; }))
        << cancels;
    EXPECT_EQ(*code, NSURLErrorCancelled);
    EXPECT_TRUE(session->sessionTasks().empty());
  }
}

/// Sessions that are dropped while they are at work, on any thread, uninvalidated.
TEST(ORLFURLSessionOnLoopback, GoesOnToTheEndWhenItIsDropped) {
  RealServer server;
  constexpr int kSessions = 8;
  server.script(Json(kSessions, {{"status", 200}, {"body", "body"}}));
  std::vector<std::weak_ptr<ORLFURLSession>> sessions;
  const auto ends = std::make_shared<std::atomic<int>>(0);
  for (int i = 0; i < kSessions; ++i) {
    const auto session = ORLFURLSession::initWithConfiguration(nullptr);
    sessions.push_back(session);
    session
        ->taskWithRequest(NSURLRequest::requestWithURL(NSURL::URLWithString(server.base() + "/a")),
                          [ends](const auto& task, const auto& error) {
                            if (!error && task->result()) ++*ends;
                          })
        ->resume();
  }
  const auto areGone = [&] {
    return std::all_of(sessions.begin(), sessions.end(),
                       [](const auto& session) { return session.expired(); });
  };
  for (int i = 0; i < 5000 && !areGone(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_TRUE(areGone());
  EXPECT_EQ(*ends, kSessions);
}

}  // namespace
}  // namespace ORLFoundation
