/// Plays scripts of steps on real operation queues, as the page of the queue vectors tells: each
/// step on a thread of its own, and the state read when it has come to rest.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>
#include <ORLFoundation/tasks/operations/ORLFOperationQueue_scripted_testing.h>
#include <tests/support/VectorFile.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orlftest {

/// A script under way.
class OperationPlayer {
 public:
  /// `in` of a row: the queues, targets and operations, and the steps.
  explicit OperationPlayer(const Json& script) : script_(script) {
    for (const Json& name : script.value("targets", Json::array()))
      targets_[name] = std::make_shared<KeepingQueue>();
    for (const auto& [name, told] : script.at("queues").items()) {
      queues_[name] = std::make_shared<ORLFoundation::ORLFOperationQueue>(
          told.contains("target") ? targets_.at(told["target"]) : nullptr);
      queues_[name]->setLogsActivity(told.value("logsActivity", false));
    }
    for (const auto& [name, told] : script.at("operations").items())
      if (!told.contains("kind")) makeOperation(name, told);
  }
  ~OperationPlayer() {
    for (auto& each : calls_) each.thread.join();
    while (busy_ > 0) std::this_thread::yield();
  }
  OperationPlayer(const OperationPlayer&) = delete;
  OperationPlayer& operator=(const OperationPlayer&) = delete;

  /// Plays all steps; "" when the state comes to be as expected after each. A player whose script
  /// went wrong is left as it stands: its operations may never end.
  static std::string playScript(const Json& script, const Json& expected) {
    auto player = std::make_unique<OperationPlayer>(script);
    const std::string difference = player->play(expected);
    if (!difference.empty()) static_cast<void>(player.release());
    return difference;
  }

 private:
  std::string play(const Json& expected) {
    const Json& steps = script_.at("steps");
    const Json& states = expected.at("steps");
    if (steps.size() != states.size()) return "as many states as steps are expected";
    for (std::size_t i = 0; i < steps.size(); ++i) {
      auto hasReturned = std::make_shared<std::atomic<bool>>(false);
      calls_.push_back({std::thread([this, step = steps[i], hasReturned] {
                          tryStep(step);
                          *hasReturned = true;
                        }),
                        hasReturned, false});
      // A callback reaches its target queue when its operation has finished already.
      const auto delivered = steps[i][0] == "deliver" ? targets_.at(steps[i][1]) : nullptr;
      const auto difference = comeTo(withoutEmpty(states[i]), [&] {
        if (delivered) delivered->deliver();
        return state();
      });
      const std::string why = difference + fault();
      if (!why.empty()) return "step " + std::to_string(i) + ": " + why;
      closeStep();
    }
    const Json never = expected.value("neverRan", Json::object());
    return comeTo(never, [this] { return neverRanState(); });
  }

  using Operation = std::shared_ptr<ORLFoundation::NSOperation>;

  struct Actor {
    Operation operation;
    Json does = Json::object();
    ORLFoundation::dispatch_semaphore_t gate = ORLFoundation::dispatch_semaphore_create(0);
    bool hasBegun = false;
    bool wasCancelled = false;  // When the last step closed.
    bool wasOnQueue = false;
    bool isTouched = false;  // Given a dependency in this step.
    bool begins = false;     // In this step.
    Json calls = Json::array();
    std::size_t callsBefore = 0;
  };
  /// Counts those who are inside a callback.
  struct Busy {
    explicit Busy(std::atomic<int>& all) : count(all) { ++count; }
    ~Busy() { --count; }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    std::atomic<int>& count;
  };
  struct Call {
    std::thread thread;
    std::shared_ptr<std::atomic<bool>> hasReturned;
    bool isTold = false;
  };

  void makeOperation(const std::string& name, const Json& told) {
    Actor& made = actors_[name];
    made.does = told.value("does", Json::object());
    auto work = [this, name] { begin(name); };
    if (told.contains("instance")) {
      const auto instance = std::make_shared<ScriptedInstance>(work);
      instance->setAnswer(textOrNil(told["instance"]));
      made.operation = instance;
    } else {
      made.operation = std::make_shared<ScriptedOperation>(work);
    }
    if (told.value("callback", false))
      made.operation->setCompletionBlock([this, name] {
        call(name, {"callback", groupOf(name)}, "callback");
      });
    if (told.contains("group")) orlfSetGroupID(*made.operation, textOrNil(told["group"]));
    if (told.contains("barrier")) orlfSetIsBarrierOperation(*made.operation, told["barrier"]);
  }

  [[nodiscard]] Json groupOf(const std::string& name) {
    return jsonOrNull(orlfGroupID(*operationNamed(name)));
  }
  [[nodiscard]] Operation operationNamed(const Json& name) {
    const std::lock_guard guard(lock_);
    return name.is_null() ? nullptr : actors_.at(name).operation;
  }
  void begin(const std::string& name) {
    const Busy busy(busy_);
    ORLFoundation::dispatch_semaphore_t gate;
    {
      const std::lock_guard guard(lock_);
      actors_.at(name).hasBegun = actors_.at(name).begins = true;
      gate = actors_.at(name).gate;
    }
    doDeeds(name, "main");
    dispatch_semaphore_wait(gate, ORLFoundation::DISPATCH_TIME_FOREVER);
  }
  void call(const std::string& name, const Json& call, const char* deed) {
    const Busy busy(busy_);
    {
      const std::lock_guard guard(lock_);
      actors_.at(name).calls.push_back(call);
    }
    doDeeds(name, deed);
  }
  void doDeeds(const std::string& name, const char* when) {
    Json deeds;
    {
      const std::lock_guard guard(lock_);
      deeds = actors_.at(name).does.value(when, Json::array());
    }
    for (const Json& deed : deeds) doStep(deed);
  }

  void tryStep(const Json& step) {
    try {
      doStep(step);
    } catch (const std::exception& error) {
      const std::lock_guard guard(lock_);
      fault_ += std::string(" exception: ") + error.what();
    }
  }
  [[nodiscard]] std::string fault() {
    const std::lock_guard guard(lock_);
    return fault_;
  }
  void doStep(const Json& step) {
    const std::string what = step[0];
    if (what == "deliver") return targets_.at(step[1])->deliver();
    if (what == "finish") return open(step[1]);
    if (const auto queue = queues_.find(step[1].get<std::string>()); queue != queues_.end())
      return doQueueStep(*queue->second, what, step);
    const Operation operation = operationNamed(step[1]);
    if (what == "cancel") return operation->cancel();
    const Json argument = step.at(2);
    if (what == "addDependency:") {
      touch(step[1]);
      operation->addDependency(operationNamed(argument));
    } else if (what == "orlfSetGroupID:") {
      orlfSetGroupID(*operation, textOrNil(argument));
    } else if (what == "orlfSetIsBarrierOperation:") {
      orlfSetIsBarrierOperation(*operation, argument);
    } else if (what == "answer") {
      dynamic_cast<ScriptedInstance&>(*operation).setAnswer(textOrNil(argument));
    } else {
      throw std::runtime_error("unknown step " + what);
    }
  }
  void open(const std::string& name) {
    const std::lock_guard guard(lock_);
    dispatch_semaphore_signal(actors_.at(name).gate);
  }
  void touch(const Json& name) {
    const std::lock_guard guard(lock_);
    if (!name.is_null()) actors_.at(name).isTouched = true;
  }

  void doQueueStep(ORLFoundation::ORLFOperationQueue& queue, const std::string& what,
                   const Json& step) {
    const Json argument = step.size() > 2 ? step[2] : Json();
    if (what == "addOperation:") {
      queue.addOperation(operationNamed(argument));
    } else if (what == "addOperations:waitUntilFinished:") {
      ORLFoundation::NSOperationQueue::Operations batch;
      for (const Json& name : argument) batch.push_back(operationNamed(name));
      queue.addOperations(std::move(batch), step.at(3));
    } else if (what == "addOperationWithBlock:") {
      queue.addOperationWithBlock(blockNamed(argument));
      findMade(queue, argument);
    } else if (what == "pauseQueueWithBlock:") {
      queue.pauseQueueWithBlock(blockNamed(argument));
      findMade(queue, argument);
    } else if (what == "addOperation:group:completion:") {
      queue.addOperation(operationNamed(argument), textOrNil(step.at(3)),
                         completionOf(argument, step.at(4)));
    } else if (what == "addOperation:completion:") {
      queue.addOperation(operationNamed(argument), completionOf(argument, step.at(3)));
    } else if (what == "cancelAllOperationsForGroup:") {
      queue.cancelAllOperationsForGroup(textOrNil(argument));
    } else if (what == "cancelOperationForSingleInstanceID:") {
      queue.cancelOperationForSingleInstanceID(textOrNil(argument));
    } else if (what == "makeOperationDependOnAllBarrierOperations:") {
      touch(argument);
      queue.makeOperationDependOnAllBarrierOperations(operationNamed(argument));
    } else if (what == "setTargetQueue:") {
      queue.setTargetQueue(argument.is_null() ? nullptr : targets_.at(argument));
    } else if (what == "clearTargetQueue") {
      queue.clearTargetQueue();
    } else if (what == "setLogsActivity:") {
      queue.setLogsActivity(argument);
    } else {
      throw std::runtime_error("unknown step " + what);
    }
  }
  ORLFoundation::ORLFOperationQueue::Completion completionOf(const Json& name, bool isThere) {
    if (!isThere || name.is_null()) return nullptr;
    return [this, name](const Operation& operation, bool wasFinished) {
      call(name, {"completion", wasFinished, jsonOrNull(orlfGroupID(*operation))}, "completion");
    };
  }
  /// The block of an operation that the queue makes.
  std::function<void()> blockNamed(const Json& name) {
    if (name.is_null()) return nullptr;
    const std::lock_guard guard(lock_);
    const Json operations = script_.at("operations");
    actors_[name].does =
        operations.value(name.get<std::string>(), Json::object()).value("does", Json::object());
    return [this, name = name.get<std::string>()] { begin(name); };
  }
  /// The operation that the queue made is the one that has no name yet.
  void findMade(const ORLFoundation::ORLFOperationQueue& queue, const Json& name) {
    if (name.is_null()) return;
    const std::lock_guard guard(lock_);
    for (const auto& each : queue.operations())
      if (!nameOf(*each)) actors_.at(name).operation = each;
  }
  [[nodiscard]] std::optional<std::string> nameOf(const ORLFoundation::NSOperation& operation) {
    for (const auto& [name, actor] : actors_)
      if (actor.operation.get() == &operation) return name;
    return std::nullopt;
  }

  /// Cancelled before it began: when it leaves is free, so it is left out of all states.
  [[nodiscard]] static bool neverRan(const Actor& actor) {
    return actor.operation && actor.operation->isCancelled() && !actor.hasBegun;
  }
  [[nodiscard]] std::set<std::string> namesOnQueue(const ORLFoundation::ORLFOperationQueue& queue) {
    std::set<std::string> names;
    for (const auto& each : queue.operations())
      names.insert(nameOf(*each).value_or("an operation without a name"));
    std::erase_if(names, [&](const std::string& name) {
      return actors_.count(name) > 0 && neverRan(actors_.at(name));
    });
    return names;
  }

  /// What has happened since the last step closed, without what is empty.
  [[nodiscard]] Json state() {
    const std::lock_guard guard(lock_);
    Json entry = {{"operations", Json::object()}};
    std::set<std::string> onQueues;
    for (const auto& [name, queue] : queues_) {
      const auto names = namesOnQueue(*queue);
      entry["operations"][name] = names;
      onQueues.insert(names.begin(), names.end());
    }
    for (const auto& [name, actor] : actors_) {
      if (!actor.operation) continue;
      if (actor.operation->isCancelled() && !actor.wasCancelled) entry["cancelled"].push_back(name);
      if (neverRan(actor)) continue;
      tellOfActor(entry, name, actor, onQueues.count(name) > 0);
    }
    for (std::size_t i = 0; i < calls_.size(); ++i) {
      if (!*calls_[i].hasReturned) entry["waiting"].push_back(i);
      const bool isEarlier = i + 1 < calls_.size();
      if (*calls_[i].hasReturned && isEarlier && !calls_[i].isTold) entry["returned"].push_back(i);
    }
    return entry;
  }
  void tellOfActor(Json& entry, const std::string& name, const Actor& actor, bool isOnQueue) {
    const bool isAdded = isOnQueue && !actor.wasOnQueue;
    if (actor.begins) entry["began"].push_back(name);
    if (isAdded && actor.operation->completionBlock()) entry["completionBlock"].push_back(name);
    if (const auto group = orlfGroupID(*actor.operation)) entry["groups"][name] = *group;
    for (std::size_t i = actor.callsBefore; i < actor.calls.size(); ++i)
      entry["calls"][name].push_back(actor.calls[i]);
    if (!isAdded && !actor.isTouched) return;
    std::set<std::string> unfinished;
    for (const auto& each : actor.operation->dependencies()) {
      const auto held = nameOf(*each);
      if (!each->isFinished() && held && !neverRan(actors_.at(*held))) unfinished.insert(*held);
    }
    if (!unfinished.empty()) entry["dependencies"][name] = unfinished;
  }
  void closeStep() {
    const std::lock_guard guard(lock_);
    for (const auto& [name, queue] : queues_)
      for (const std::string& each : namesOnQueue(*queue)) actors_.at(each).wasOnQueue = true;
    for (auto& [name, actor] : actors_) {
      actor.isTouched = actor.begins = false;
      actor.callsBefore = actor.calls.size();
      actor.wasCancelled = actor.operation && actor.operation->isCancelled();
    }
    for (std::size_t i = 0; i < calls_.size(); ++i) calls_[i].isTold = *calls_[i].hasReturned;
  }
  [[nodiscard]] Json neverRanState() {
    const std::lock_guard guard(lock_);
    Json all = Json::object();
    for (const auto& [name, queue] : queues_)
      if (queue->operationCount() > 0) return "operations are left on " + name;
    for (const auto& [name, actor] : actors_)
      if (neverRan(actor) && actor.operation->wasEnqueued())
        all[name] = {{"calls", actor.calls}, {"group", jsonOrNull(orlfGroupID(*actor.operation))}};
    return all;
  }

  [[nodiscard]] static Json withoutEmpty(Json entry) {
    for (auto each = entry.begin(); each != entry.end();)
      each = each->empty() ? entry.erase(each) : std::next(each);
    return entry;
  }
  static std::string comeTo(const Json& expected, const std::function<Json()>& actual) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::string difference;
    do {
      difference = disagreement(expected, actual());
      if (difference.empty()) return difference;
      std::this_thread::sleep_for(std::chrono::microseconds(20));
    } while (std::chrono::steady_clock::now() < deadline);
    return difference;
  }
  const Json script_;
  std::map<std::string, std::shared_ptr<ORLFoundation::ORLFOperationQueue>> queues_;
  std::map<std::string, std::shared_ptr<KeepingQueue>> targets_;
  std::vector<Call> calls_;
  std::atomic<int> busy_{0};

  std::recursive_mutex lock_;
  std::map<std::string, Actor> actors_;
  std::string fault_;
};

}  // namespace orlftest
