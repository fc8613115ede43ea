/// Plays whole exchanges of session vectors: against a scripted platform, or a server.
#pragma once

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/web/session/ORLFURLSession_world_testing.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace orlftest {

/// Who answers the requests of exchanges, in order.
class ExchangeServer {
 public:
  ExchangeServer() = default;
  virtual ~ExchangeServer() = default;
  ExchangeServer(const ExchangeServer&) = delete;
  ExchangeServer& operator=(const ExchangeServer&) = delete;

  /// What addresses that begin with a slash stand under.
  [[nodiscard]] virtual std::string base() const = 0;
  /// The answers from now on.
  virtual void script(const Json& answers) = 0;
  /// Method, path and body of each request since then.
  [[nodiscard]] virtual Json seen() = 0;
  /// Waits until what was asked is answered.
  virtual void settle() = 0;
};

/// A platform that answers by itself, on a serial queue of its own.
class ScriptedServer final : public ExchangeServer {
 public:
  ScriptedServer() { queue_->setMaxConcurrentOperationCount(1); }

  [[nodiscard]] std::string base() const override { return "http://server.test"; }
  void script(const Json& answers) override {
    answers_ = answers;
    next_ = 0;
    const std::lock_guard guard(lock_);
    seen_ = Json::array();
    calls_ = Json::array();
  }
  [[nodiscard]] Json seen() override {
    const std::lock_guard guard(lock_);
    return seen_;
  }
  void settle() override { queue_->waitUntilAllOperationsAreFinished(); }

  /// Calls to the platform in order, and what the last session was made with.
  [[nodiscard]] Json calls() {
    const std::lock_guard guard(lock_);
    return calls_;
  }
  [[nodiscard]] std::shared_ptr<ORLFoundation::NSURLSessionConfiguration> configuration() const {
    return provider_.last() ? provider_.last()->configuration : nullptr;
  }
  [[nodiscard]] std::shared_ptr<NSURLRequest> lastRequest() {
    const std::lock_guard guard(lock_);
    return lastRequest_;
  }

 private:
  void hear(const std::shared_ptr<ScriptedPlatform>& platform, const std::string& call,
            std::size_t number) {
    {
      const std::lock_guard guard(lock_);
      calls_.push_back(call);
    }
    if (call == "resume")
      queue_->addOperationWithBlock([this, platform, number] { answer(*platform, number); });
  }
  void see(const std::string& method, const std::string& address, const Json& body) {
    const std::string path = address.starts_with(base()) ? address.substr(base().size()) : address;
    const std::lock_guard guard(lock_);
    seen_.push_back({method, path, body});
  }
  /// What a server sees of the request and, where it leads on to others, of those: some statuses
  /// have a form fetched instead of sent again.
  std::string seeAll(const NSURLRequest& request, const Json& redirects) {
    std::string address = request.URL()->absoluteString();
    std::string method = request.HTTPMethod();
    Json body = request.HTTPBody() ? vectorOfBytes(request.HTTPBody()->text()) : Json();
    see(method, address, body);
    for (const Json& redirect : redirects) {
      const bool fetchesForms = redirect[0] == 301 || redirect[0] == 302;
      if ((fetchesForms && method == "POST") || (redirect[0] == 303 && method != "HEAD")) {
        method = "GET";
        body = nullptr;
      }
      address = base() + redirect[1].get<std::string>();
      see(method, address, body);
    }
    return address;
  }
  void answer(ScriptedPlatform& platform, std::size_t number) {
    const ScriptedExchange exchange = platform.exchange(number);
    const Json answer = answers_.at(next_++);
    const std::string address = seeAll(*exchange.request, answer.value("redirects", Json::array()));
    {
      const std::lock_guard guard(lock_);
      lastRequest_ = exchange.request;
    }
    if (answer.value("drop", false))
      return platform.tellCompleted(number, NSError::errorWithDomain("NSURLErrorDomain", -1005));
    if (answer.contains("status"))
      exchange.state->setResponse(responseOfVector(answer, *NSURL::URLWithString(address)));
    const bool hasBody = exchange.request->HTTPMethod() != "HEAD" && answer.contains("body");
    const auto body =
        hasBody ? dataOfVector(answer.at("body")) : ORLFoundation::NSData(std::string_view());
    if (answer.contains("status")) tellBody(platform, exchange, body);
    platform.tellCompleted(number, errorOfVector(answer.value("error", Json())));
  }
  void tellBody(ScriptedPlatform& platform, const ScriptedExchange& exchange,
                const ORLFoundation::NSData& body) {
    if (exchange.isDownload) {
      const std::string path = folder_.write("location", body.text());
      platform.tellDownloaded(exchange.number, NSURL::fileURLWithPath(path));
      std::filesystem::remove(path);
    } else if (body.length() > 0) {
      exchange.state->received = exchange.state->expected =
          static_cast<std::int64_t>(body.length());
      platform.tellData(exchange.number, body);
    }
  }

  const std::shared_ptr<ORLFoundation::NSOperationQueue> queue_ =
      std::make_shared<ORLFoundation::NSOperationQueue>();
  const TemporaryFolder folder_;
  Json answers_;
  std::atomic<std::size_t> next_{0};
  std::mutex lock_;
  Json seen_ = Json::array(), calls_ = Json::array();
  std::shared_ptr<NSURLRequest> lastRequest_;
  const ScriptedProvider provider_{[this](const auto& platform, const auto& call, auto number) {
    hear(platform, call, number);
  }};
};

/// `exchange` rows.
class SessionExchange final : private SessionWorld {
 public:
  static std::string play(ExchangeServer& server, const Json& in, const Json& out) {
    server.script(in.at("server"));
    SessionExchange exchange(in, server);
    for (const Json& step : in.at("tasks")) exchange.send(step);
    const Json told = withoutWhatIsOpen(out, exchange.told());
    exchange.session_->invalidateSessionCancelingTasks(true);
    return disagreement(out, told);
  }

 private:
  SessionExchange(const Json& in, ExchangeServer& server)
      : SessionWorld(in, server.base()), server_(server) {
    makeSession();
  }
  void send(const Json& step) {
    if (!make(step[1], step[2])) throw std::runtime_error("no task came");
    const TaskPtr task = tasks_.at(step[1]);
    task->resume();
    task->waitUntilFinished();
    for (const char* name : {"D", "C"}) queues_.at(name)->waitUntilAllOperationsAreFinished();
    server_.settle();
  }
  Json told() {
    Json tasks = Json::object();
    for (const auto& [name, task] : tasks_) {
      tasks[name] = readByHandler(task);
      tasks[name]["destinationURL"] = nameOf(task->destinationURL());
      tasks[name]["failures"] = task->failures();
    }
    return {{"events", takeEvents()},
            {"files", filesNow()},
            {"notifications", notifications_},
            {"server", server_.seen()},
            {"tasks", tasks}};
  }
  void hearNotification(const TaskPtr& task) override { notifications_.push_back(nameOf(task)); }
  Json vectorOfResponse(const std::shared_ptr<NSURLResponse>& response) override {
    if (!response) return nullptr;
    const auto http = ORLFoundation::orlfHTTPURLResponse(response);
    return {{"status", http ? Json(http->statusCode()) : Json()},
            {"url", shownAddress(response->URL())}};
  }

  ExchangeServer& server_;
  Json notifications_ = Json::array();
};

/// `sendRequest` rows. What only the platform sees is told where there is one.
inline std::string playSendRequest(ExchangeServer& server, const Json& in, Json out) {
  using namespace ORLFoundation;
  server.script(Json::array({in.at("answer")}));
  const Json& fields = in.at("request");
  const auto request = NSMutableURLRequest::requestWithURL(
      NSURL::URLWithString(server.base() + fields.at("url").get<std::string>()));
  request->setHTTPMethod(fields.at("method").get<std::string>());
  const Json body = fields.value("body", Json());
  if (!body.is_null()) request->setHTTPBody(dataOfVector(body));
  request->setCachePolicy(fields.at("cachePolicy").get<NSURLRequestCachePolicy>());
  request->setTimeoutInterval(fields.at("timeoutInterval").get<double>());
  const auto asks = [&](const char* what) {
    return std::find(in.at("ask").begin(), in.at("ask").end(), what) != in.at("ask").end();
  };
  std::shared_ptr<NSURLResponse> response;
  std::shared_ptr<const NSError> error;
  const id result = ORLFURLSession::sendRequest(request, asks("response") ? &response : nullptr,
                                                asks("error") ? &error : nullptr);
  server.settle();
  Json told = {{"result", nullptr}};
  if (const auto data = result.as<NSMutableData>())
    told["result"] = {{"data", vectorOfBytes(data->text())}};
  const auto http = orlfHTTPURLResponse(response);
  if (asks("response")) told["response"] = nullptr;
  if (response) told["response"] = {{"status", http ? Json(http->statusCode()) : Json()}};
  if (asks("error")) told["error"] = vectorOfError(error);
  if (auto* const scripted = dynamic_cast<ScriptedServer*>(&server)) {
    told["calls"] = scripted->calls();
    told["configuration"] = {
        {"requestCachePolicy", scripted->configuration()->requestCachePolicy()},
        {"timeoutIntervalForRequest", scripted->configuration()->timeoutIntervalForRequest()}};
  } else {
    out.erase("calls");
    out.erase("configuration");
  }
  return disagreement(out, withoutWhatIsOpen(out, told));
}

/// `fetchLastModifiedDateForContentsOfURL` rows.
inline std::string playLastModified(ExchangeServer& server, const Json& in, Json out) {
  using namespace ORLFoundation;
  const TemporaryFolder folder;
  server.script(in.contains("answer") ? Json::array({in.at("answer")}) : Json::array());
  NSURL url = NSURL::fileURLWithPath((folder.path() / "file").string());
  if (in.contains("url")) {
    url = *NSURL::URLWithString(server.base() + in.at("url").get<std::string>());
  } else if (!in.at("file").is_null()) {
    setFileDate(folder.write("file", "content"), in.at("file"));
  }
  std::shared_ptr<const NSError> error;
  const auto date = ORLFURLSession::fetchLastModifiedDateForContentsOfURL(url, &error);
  server.settle();
  Json told = {{"date", date ? Json(vectorFromDate(date)) : Json()}, {"request", nullptr}};
  if (out.contains("error")) told["error"] = vectorOfError(error);
  if (auto* const scripted = dynamic_cast<ScriptedServer*>(&server)) {
    const auto request = scripted->seen().empty() ? nullptr : scripted->lastRequest();
    if (request)
      told["request"] = {{"cachePolicy", request->cachePolicy()},
                         {"method", request->HTTPMethod()},
                         {"timeoutInterval", request->timeoutInterval()}};
  } else if (out.at("request").is_object()) {
    out["request"] = out["request"]["method"];
    told["request"] = server.seen().at(0).at(0);
  }
  return disagreement(out, withoutWhatIsOpen(out, told));
}

}  // namespace orlftest
