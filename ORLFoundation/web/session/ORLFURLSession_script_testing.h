/// Plays the scripts of session vectors: steps on a session over a scripted platform, each followed
/// by what was called and what has changed.
#pragma once

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/tasks/async/ORLFAsyncTaskBase_testing.h>
#include <ORLFoundation/web/session/ORLFURLSession_world_testing.h>
#include <ORLFoundation/web/session/internal/DownloadFiles.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace orlftest {

class SessionScript final : private SessionWorld {
 public:
  static std::string play(const Json& in, const Json& out) {
    SessionScript script(in);
    return script.playSteps(in.at("steps"), out);
  }

 private:
  class Files;
  class Receiver;

  explicit SessionScript(const Json& in)
      : SessionWorld(in),
        provider_([this](const auto& platform, const std::string& call, auto number) {
          hearPlatform(*platform, call, number);
        }) {
    if (in.contains("fileAnswers"))
      filesBefore_ = ORLFoundation::internal::session::exchangeDownloadFiles(makeFiles());
    makeSession();
  }
  ~SessionScript() override {
    for (auto& [name, queue] : queues_) queue->setSuspended(false);
    for (auto& [name, waiter] : waiters_) {
      while (!waiter->hasReturned()) {
        tasks_.at(name)->endWithResult(nullptr, nullptr, nullptr);
        settle();
      }
    }
    settle();
    if (in_.contains("fileAnswers"))
      ORLFoundation::internal::session::exchangeDownloadFiles(filesBefore_);
  }

  std::string playSteps(const Json& steps, const Json& out) {
    for (std::size_t i = 0; i < steps.size(); ++i) {
      if (i >= out.size()) return "as many records as steps are expected";
      const Json result = doStep(steps[i]);
      settle();
      if (out[i].contains("waiting")) expectedWaiting_ = out[i].at("waiting");
      const Json told = withoutWhatIsOpen(out[i], record(result));
      const std::string difference = disagreement(withoutUpdates(out[i]), told);
      if (!difference.empty())
        return "step " + std::to_string(i) + " " + steps[i].dump() + ": " + difference;
    }
    return {};
  }
  /// Updates of progress items are seen by their values alone.
  static Json withoutUpdates(Json expected) {
    Json events = Json::array();
    for (const Json& event : expected.at("events"))
      if (event[0] != "updateValue:max:") events.push_back(event);
    expected["events"] = events;
    return expected;
  }

  // Steps

  Json doStep(const Json& step) {
    const std::string what = step[0];
    if (what == "make") return make(step[1], step[2]);
    if (what == "register") return registerReceiver(step);
    if (tasks_.contains(textAt(step, 1)) && act(step, 2, tasks_.at(step[1]))) return {};
    if (!doTaskStep(what, step) && !doPlatformStep(what, step))
      throw std::runtime_error("unknown step " + step.dump());
    return {};
  }
  static std::string textAt(const Json& step, std::size_t at) {
    return step.size() > at && step[at].is_string() ? step[at].get<std::string>() : "";
  }
  bool doTaskStep(const std::string& what, const Json& step) {
    if (what == "wait") {
      beginWait(step[1]);
    } else if (what == "hold" || what == "release") {
      queues_.at(step[1])->setSuspended(what == "hold");
    } else if (what == "setCompletionQueue") {
      const TaskPtr task = tasks_.at(step[1]);
      task->setCompletionQueue(step[2].is_null() ? nullptr : queues_.at(step[2]));
      if (step[2].is_null()) queues_["of " + step[1].get<std::string>()] = task->completionQueue();
    } else if (what == "touch") {
      touch(step[1], step[2]);
    } else if (what == "invalidate") {
      session_->invalidateSessionCancelingTasks(step[1]);
    } else if (what == "answer") {
      answers_.at(step[1].get<std::size_t>() - 1)(request(step[2]), errorOfVector(step[3]));
    } else if (what == "didFailAuthentication") {
      session_->taskDidFailAuthentication(
          tasks_.at(step[1]), [this](const auto& request, const auto& error) {
            note({"callback", nameOf(request), vectorOfError(error)});
          });
    } else if (what == "receiver") {
      makeReceiver(step);
    } else if (what == "receiveResponse") {
      receiveResponse(step);
    } else {
      return false;
    }
    return true;
  }
  bool doPlatformStep(const std::string& what, const Json& step) {
    const auto& platform = provider_.last();
    if (what == "invalidated") {
      platform->tellInvalid();
      return true;
    }
    const std::size_t number = step[1];
    if (what == "response") {
      setResponse(number, step[2]);
    } else if (what == "data") {
      platform->exchange(number).state->received = step[3].get<std::int64_t>();
      platform->exchange(number).state->expected = step[4].get<std::int64_t>();
      platform->tellData(number, dataOfVector(step[2]));
    } else if (what == "sent") {
      platform->tellSent(number, step[2], step[3]);
    } else if (what == "written") {
      platform->tellWritten(number, step[2], step[3]);
    } else if (what == "resumedAt") {
      platform->tellResumedAt(number, step[2], step[3]);
    } else if (what == "download") {
      tellDownloaded(number, step[2]);
    } else if (what == "complete") {
      platform->tellCompleted(number, errorOfVector(step[2]));
    } else {
      return false;
    }
    return true;
  }
  void setResponse(std::size_t number, const Json& response) {
    if (response.is_null()) return provider_.last()->exchange(number).state->setResponse(nullptr);
    const auto made = responseOfVector(response, addressOf(response.at("url")));
    responses_.emplace_back(made, number);
    provider_.last()->exchange(number).state->setResponse(made);
  }
  void tellDownloaded(std::size_t number, const Json& content) {
    const std::string name = "files/location" + std::to_string(number);
    const std::string path = folder_.write(name, dataOfVector(content).text());
    provider_.last()->tellDownloaded(number, NSURL::fileURLWithPath(path));
    std::filesystem::remove(path);
  }
  void receiveResponse(const Json& step) {
    const auto exchange = provider_.last()->exchange(step[2]);
    exchange.state->expected = step[3].get<std::int64_t>();
    tasks_.at(step[1])->URLSessionDataTaskDidReceiveResponse(
        provider_.last(), exchange.dataTask, exchange.state->response(), [this](auto disposition) {
          note({"disposition", disposition});
        });
  }
  void beginWait(const std::string& name) {
    const auto task = tasks_.at(name);
    const auto waiter = waiters_.emplace(
        name, std::make_unique<WaitingThread>([task] { task->waitUntilFinished(); }));
    waiter->second->comeToRest();
  }
  /// Until nothing is left to run on the queues that run.
  void settle() {
    for (bool hasRun = true; hasRun;) {
      hasRun = false;
      for (auto& [name, queue] : queues_) {
        if (queue->isSuspended() || queue->operationCount() == 0) continue;
        queue->waitUntilAllOperationsAreFinished();
        hasRun = true;
      }
    }
  }

  // What comes out

  void hearPlatform(const ScriptedPlatform& platform, const std::string& call, std::size_t number) {
    if (number == 0) return note({call});
    if (call.ends_with(":")) return note({call, number, nameOf(platform.exchange(number).request)});
    note({call, number});
  }
  void hearNotification(const TaskPtr& task) override {
    note({std::string(ORLFoundation::ORLFURLSessionDidResumeTaskNotification), nameOf(task),
          task->state()});
  }
  Json vectorOfResponse(const std::shared_ptr<NSURLResponse>& response) override {
    for (const auto& [each, number] : responses_)
      if (each == response) return number;
    return response ? Json("a response without a number") : Json();
  }
  Json record(const Json& result) {
    Json told = {{"events", takeEvents()}};
    if (!result.is_null() || isRegistering_) told["result"] = result;
    isRegistering_ = false;
    add(told, "session", sessionNow());
    add(told, "files", filesNow());
    add(told, "items", itemsNow());
    add(told, "waiting", waitingNow());
    Json tasks = Json::object();
    for (const auto& [name, task] : tasks_) {
      Json now = taskNow(task);
      if (now != before_["tasks"][name]) tasks[name] = now;
      before_["tasks"][name] = now;
    }
    if (!tasks.empty()) told["tasks"] = tasks;
    return told;
  }
  void add(Json& told, const char* part, const Json& now) {
    if (now == before_[part]) return;
    told[part] = now;
    before_[part] = now;
  }
  Json sessionNow() {
    Json tasks = Json::object();
    for (const auto& [number, receiver] : session_->sessionTasks())
      tasks[std::to_string(number)] = nameOfReceiver(receiver);
    return {{"delegate", session_->delegate() != nullptr},
            {"invalidated", session_->sessionInvalidated()},
            {"tasks", tasks}};
  }
  Json itemsNow() const {
    Json items = Json::object();
    for (const auto& [name, item] : items_) items[name] = {item->value(), item->maxValue()};
    return items;
  }
  /// Gives those who are expected to go on the time to do so.
  Json waitingNow() {
    constexpr auto kPatience = std::chrono::seconds(10);
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    Json waiting = Json::array();
    for (const auto& [name, waiter] : waiters_) {
      const bool goesOn = std::find(expectedWaiting_.begin(), expectedWaiting_.end(), name) ==
                          expectedWaiting_.end();
      while (goesOn && !waiter->hasReturned() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
      // A task that several threads wait for is told once.
      const bool isTold = !waiting.empty() && waiting.back() == name;
      if (!waiter->hasReturned() && !isTold) waiting.push_back(name);
    }
    return waiting;
  }
  Json taskNow(const TaskPtr& task) {
    const auto connection = task->connection();
    return {{"canceled", task->canceled()},
            {"connection", connection ? Json(connection->taskIdentifier()) : Json()},
            {"destinationURL", nameOf(task->destinationURL())},
            {"failures", task->failures()},
            {"request", nameOf(task->request())},
            {"response", vectorOfResponse(task->response())},
            {"result", vectorOfResult(task->result())},
            {"state", task->state()}};
  }

  // Receivers and files that are scripted too

  void makeReceiver(const Json& step);
  Json registerReceiver(const Json& step);
  [[nodiscard]] std::string nameOfReceiver(const ORLFURLSession::Receiver& receiver) const;
  [[nodiscard]] std::shared_ptr<ORLFoundation::internal::session::DownloadFiles> makeFiles();

  const ScriptedProvider provider_;
  std::shared_ptr<ORLFoundation::internal::session::DownloadFiles> filesBefore_;
  std::vector<std::pair<std::shared_ptr<NSURLResponse>, std::size_t>> responses_;
  std::map<std::string, ORLFURLSession::Receiver> receivers_;
  std::multimap<std::string, std::unique_ptr<WaitingThread>> waiters_;
  Json expectedWaiting_ = Json::array();
  Json before_ = {{"files", Json::object()},
                  {"items", Json::object()},
                  {"waiting", Json::array()},
                  {"session", nullptr},
                  {"tasks", Json::object()}};
  bool isRegistering_ = false;
};

}  // namespace orlftest
