#include <ORLFoundation/tasks/async/ORLFAsyncTaskBase.h>

#include <ORLFoundation/tasks/async/ORLFAsyncTaskBase_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <random>

#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using orlftest::WaitingThread;
using BlockTask = orlftest::Releasable<ORLFAsyncBlockTask>;
using BaseTask = orlftest::Releasable<ORLFAsyncTaskBase>;

/// A script of async tasks, as the page of the queue vectors tells.
class TaskPlayer {
 public:
  explicit TaskPlayer(const Json& in) : steps_(in.at("steps")) {
    for (const auto& [name, told] : in.at("tasks").items()) make(name, told);
  }
  ~TaskPlayer() {
    for (auto& [name, actor] : actors_) {
      dispatch_semaphore_signal(actor.gate);
      actor.release();  // Those that stay, and one that was never resumed.
      for (std::size_t i = 0; i < waiters_.size(); ++i) actor.release();
    }
    waiters_.clear();
    for (auto& [name, actor] : actors_)
      while (actor.task.use_count() > 1) std::this_thread::yield();
  }
  TaskPlayer(const TaskPlayer&) = delete;
  TaskPlayer& operator=(const TaskPlayer&) = delete;

  std::string play(const Json& out) {
    for (std::size_t i = 0; i < steps_.size(); ++i) {
      doStep(steps_[i]);
      const auto difference = comeTo(out.at("steps").at(i));
      if (!difference.empty()) return "step " + std::to_string(i) + ": " + difference;
    }
    return orlftest::disagreement(out.at("stay"), staying());
  }

 private:
  struct Actor {
    std::shared_ptr<ORLFAsyncTaskBase> task;
    std::function<void()> release;
    dispatch_semaphore_t gate = dispatch_semaphore_create(0);
    std::weak_ptr<int> captured;
    bool isBlock = false;
    Json does = Json::array();
    int runs = 0;
  };
  struct Waiter {
    std::string task;
    std::unique_ptr<WaitingThread> thread;
    bool isTold = false;
  };

  void make(const std::string& name, const Json& told) {
    Actor& actor = actors_[name];
    const std::string kind = told.at("kind");
    actor.does = told.value("does", Json::array());
    const auto take = [&](const auto& task) {
      actor.task = task;
      actor.release = [plain = task.get()] { plain->releaseWaiter(); };
    };
    if (kind == "base") {
      take(std::make_shared<BaseTask>());
    } else if (kind == "nil") {
      take(std::make_shared<BlockTask>(nullptr));
    } else if (kind == "subclass") {
      take(std::make_shared<orlftest::WorkingTask>([this, &actor] { work(actor); }));
    } else if (kind == "block") {
      const auto captured = std::make_shared<int>(0);
      actor.captured = captured;
      actor.isBlock = true;
      take(std::make_shared<BlockTask>(
          [this, name, &actor, captured](ORLFAsyncBlockTaskStatus& status) {
            see(name, status);
            work(actor);
            see(name, status);
          }));
    } else {
      throw std::runtime_error("unknown kind " + kind);
    }
  }
  void see(const std::string& name, const ORLFAsyncBlockTaskStatus& status) {
    const bool canceled = status.canceled();
    const std::lock_guard guard(lock_);
    seen_.push_back({name, canceled});
  }
  void work(Actor& actor) {
    {
      const std::lock_guard guard(lock_);
      ++actor.runs;
    }
    for (const Json& deed : actor.does) doStep(deed);
    dispatch_semaphore_wait(actor.gate, DISPATCH_TIME_FOREVER);
  }
  void doStep(const Json& step) {
    const std::string what = step[0];
    Actor& actor = actors_.at(step[1]);
    if (what == "resume") {
      actor.task->resume();
    } else if (what == "cancel") {
      actor.task->cancel();
    } else if (what == "end") {
      dispatch_semaphore_signal(actor.gate);
    } else if (what == "waitUntilFinished") {
      auto thread =
          std::make_unique<WaitingThread>([task = actor.task.get()] { task->waitUntilFinished(); });
      thread->comeToRest();
      const std::lock_guard guard(lock_);  // The work of a task may begin a wait too.
      waiters_[step.at(2)] = {.task = step[1], .thread = std::move(thread)};
    } else {
      throw std::runtime_error("unknown step " + what);
    }
  }

  /// The state since the last one that was taken; the waiters that have returned and were not told.
  [[nodiscard]] Json state() {
    const std::lock_guard guard(lock_);
    Json entry = {{"tasks", Json::object()}};
    for (const auto& [name, actor] : actors_) {
      Json& task = entry["tasks"][name];
      task = {{"state", actor.task->state()},
              {"canceled", actor.task->canceled()},
              {"runs", actor.runs}};
      if (actor.isBlock) task["held"] = !actor.captured.expired();
    }
    if (!seen_.empty()) entry["seen"] = seen_;
    for (const auto& [name, waiter] : waiters_)
      if (waiter.thread->hasReturned() && !waiter.isTold) entry["returned"].push_back(name);
    return entry;
  }
  /// Which one of several returns is free.
  [[nodiscard]] static Json withAnyOf(Json expected, const Json& actual) {
    if (!expected.contains("returnedOneOf")) return expected;
    const Json choices = expected["returnedOneOf"];
    expected.erase("returnedOneOf");
    Json returned = expected.value("returned", Json::array());
    for (const Json& choice : choices) {
      const Json& came = actual.value("returned", Json::array());
      if (std::ranges::count(came, choice) == 0) continue;
      returned.push_back(choice);
      break;
    }
    expected["returned"] = returned;
    return expected;
  }
  std::string comeTo(const Json& told) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::string difference;
    do {
      const Json actual = state();
      difference = orlftest::disagreement(withAnyOf(told, actual), actual);
      if (difference.empty()) break;
      std::this_thread::sleep_for(std::chrono::microseconds(20));
    } while (std::chrono::steady_clock::now() < deadline);
    const std::lock_guard guard(lock_);
    seen_.clear();
    for (auto& [name, waiter] : waiters_) waiter.isTold = waiter.thread->hasReturned();
    return difference;
  }
  [[nodiscard]] Json staying() const {
    Json stay = Json::object();
    for (const auto& [name, waiter] : waiters_) {
      waiter.thread->comeToRest();
      if (!waiter.thread->hasReturned()) stay[waiter.task] = stay.value(waiter.task, 0) + 1;
    }
    return stay;
  }

  const Json steps_;
  std::map<std::string, Actor> actors_;
  std::map<std::string, Waiter> waiters_;
  std::mutex lock_;
  Json seen_ = Json::array();
};

std::string playTasks(const Json& in, const Json& out) { return TaskPlayer(in).play(out); }

TEST(ORLFAsyncTaskBase, AgreesWithVectors) {
  orlftest::runJsonVectors("queue_tasks", {{"tasks", playTasks}});
}

/// The task's algorithms written out word for word, and a random script with what is expected.
std::pair<Json, Json> randomTaskScript(std::mt19937& random) {
  std::int64_t state = -1;
  bool canceled = false;
  int runs = 0;
  int waiting = 0;
  int waiters = 0;
  Json steps = Json::array();
  Json states = Json::array();
  for (int left = 10; left > 0; --left) {
    Json entry = Json::object();
    switch (random() % 5) {
      case 0:
        steps.push_back({"resume", "t"});
        if (state == -1) {
          state = 0;
          ++runs;
        }
        break;
      case 1:
        steps.push_back({"cancel", "t"});
        if (state == 0) {
          state = 1;
          canceled = true;
        }
        break;
      case 2:
        if (state != 0 && state != 1) continue;
        steps.push_back({"end", "t"});
        state = 2;
        if (waiting > 0) {
          for (int i = 1; i <= waiting; ++i)
            entry["returnedOneOf"].push_back("w" + std::to_string(i));
          --waiting;
        }
        break;
      default: {
        const std::string name = "w" + std::to_string(++waiters);
        steps.push_back({"waitUntilFinished", "t", name});
        if (state == 2) {
          entry["returned"] = {name};
        } else {
          ++waiting;
        }
      }
    }
    entry["tasks"]["t"] = {{"state", state}, {"canceled", canceled}, {"runs", runs}};
    states.push_back(entry);
  }
  Json stay = Json::object();
  if (waiting > 0) stay["t"] = waiting;
  return {{{"tasks", {{"t", {{"kind", "subclass"}}}}}, {"steps", steps}},
          {{"steps", states}, {"stay", stay}}};
}

TEST(ORLFAsyncTaskBase, DoesWhatItsAlgorithmsSayWordForWord) {
  std::mt19937 random(3);
  for (int i = 0; i < 100; ++i) {
    const auto [in, out] = randomTaskScript(random);
    ASSERT_EQ(playTasks(in, out), "") << in.dump() << '\n' << out.dump();
  }
}

}  // namespace
}  // namespace ORLFoundation
