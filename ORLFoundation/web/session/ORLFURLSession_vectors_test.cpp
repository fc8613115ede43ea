#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/web/session/ORLFURLSession_doubles_testing.h>
#include <ORLFoundation/web/session/ORLFURLSession_exchange_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::Json;

void runScripts(const char* stem) {
  orlftest::runJsonVectors(stem, {{"script", orlftest::SessionScript::play}});
}

TEST(ORLFURLSession, AgreesWithScripts) { runScripts("session_script"); }
TEST(ORLFURLSession, AgreesWithScriptsOfOutcomes) { runScripts("session_outcome"); }
TEST(ORLFURLSession, AgreesWithScriptsOfPlacedDownloads) { runScripts("session_placing"); }
TEST(ORLFURLSession, AgreesWithScriptsOfUpdatedFiles) { runScripts("session_update"); }
TEST(ORLFURLSession, AgreesWithScriptsOfRoutedEvents) { runScripts("session_routing"); }
TEST(ORLFURLSession, AgreesWithRandomScripts) { runScripts("session_random"); }

TEST(ORLFURLSession, AgreesWithExchangesOnAScriptedPlatform) {
  orlftest::ScriptedServer server;
  orlftest::runJsonVectors("session_exchange", {{"exchange", [&](const Json& in, const Json& out) {
                                                   return orlftest::SessionExchange::play(server,
                                                                                          in, out);
                                                 }}});
}

TEST(ORLFURLSession, AgreesWithSynchronousSendsOnAScriptedPlatform) {
  orlftest::ScriptedServer server;
  orlftest::runJsonVectors("session_send", {{"sendRequest", [&](const Json& in, const Json& out) {
                                               return playSendRequest(server, in, out);
                                             }}});
}

std::string playHeaderDate(const Json& in, const Json& out) {
  NSHTTPHeaderFields fields;
  const Json text = in.value("Last-Modified", Json());
  if (!text.is_null()) fields["Last-Modified"] = text.get<std::string>();
  const NSHTTPURLResponse response(std::nullopt, 200, std::nullopt, std::move(fields));
  const auto date = orlfLastModifiedDate(response);
  return orlftest::disagreement(out, date ? Json(orlftest::vectorFromDate(date)) : Json());
}

TEST(ORLFURLSession, AgreesWithLastModifiedDates) {
  orlftest::ScriptedServer server;
  orlftest::runJsonVectors(
      "session_modified",
      {{"fetchLastModifiedDateForContentsOfURL",
        [&](const Json& in, const Json& out) { return playLastModified(server, in, out); }},
       {"orlfLastModifiedDate", playHeaderDate}});
}

/// What the platform got, and what a fresh session and a fresh task hold.
std::string playMaking(const Json& in, const Json& out) {
  const orlftest::ScriptedProvider provider;
  std::shared_ptr<NSURLSessionConfiguration> given;
  if (!in.at("configuration").is_null()) {
    given = NSURLSessionConfiguration::defaultSessionConfiguration();
    const Json& values = in.at("configuration");
    given->setRequestCachePolicy(values.value("requestCachePolicy", given->requestCachePolicy()));
    given->setTimeoutIntervalForRequest(
        values.value("timeoutIntervalForRequest", given->timeoutIntervalForRequest()));
  }
  std::shared_ptr<NSOperationQueue> queue;
  if (!in.at("maxConcurrentOperationCount").is_null()) {
    queue = std::make_shared<NSOperationQueue>();
    queue->setMaxConcurrentOperationCount(in.at("maxConcurrentOperationCount"));
  }
  const auto session = ORLFURLSession::initWithConfiguration(given, nullptr, queue);
  const auto& platform = provider.last();
  const auto fresh = NSURLSessionConfiguration::defaultSessionConfiguration();
  const auto& got = platform->configuration;
  const bool isDefault = !given && got &&
                         got->requestCachePolicy() == fresh->requestCachePolicy() &&
                         got->timeoutIntervalForRequest() == fresh->timeoutIntervalForRequest();
  const auto task = session->taskWithRequest(NSURLRequest::requestWithURL(std::nullopt), nullptr);
  const bool isOfSession = platform->delegate() == session;
  const Json told = {
      {"configuration", isDefault      ? "default"
                        : got == given ? "given"
                                       : "another"},
      {"delegateQueue", session->delegateQueue() == queue ? "given" : "new"},
      {"maxConcurrentOperationCount", session->delegateQueue()->maxConcurrentOperationCount()},
      {"platformDelegate", isOfSession ? "session" : "another"},
      {"platformQueue", platform->delegateQueue ? Json("a queue") : Json()},
      {"sessionInvalidated", session->sessionInvalidated()},
      {"sessionTasks", session->sessionTasks().size()},
      {"task",
       {{"canceled", task->canceled()},
        {"completionQueue",
         task->completionQueue() == session->delegateQueue() ? "delegateQueue" : "another"},
        {"failures", task->failures()},
        {"state", task->state()}}}};
  return orlftest::disagreement(out, told);
}

std::string playReceiverOrNull(const Json& in, const Json& out) {
  const Json& fields = in.contains("response") ? in.at("response") : in;
  std::shared_ptr<NSURLResponse> response;
  if (!fields.is_null())
    response = orlftest::responseOfVector(fields, *NSURL::URLWithString("https://example.com/"));
  const auto http = orlfHTTPURLResponse(response);
  const bool isReceiver = http && http == response;
  return orlftest::disagreement(out, isReceiver ? Json("receiver") : Json());
}

TEST(ORLFURLSession, AgreesWithFreshSessions) {
  orlftest::runJsonVectors("session_making", {{"initWithConfiguration", playMaking},
                                              {"orlfHTTPURLResponse", playReceiverOrNull}});
}

}  // namespace
}  // namespace ORLFoundation
