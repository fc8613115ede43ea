/// Semaphores and tasks stepped by hand, and the player of scripts of semaphores.
#pragma once

#include <ORLFoundation/tasks/async/AsyncSemaphore.h>
#include <ORLFoundation/tasks/async/CooperativeTask.h>
#include <sys/wait.h>
#include <tests/support/VectorFile.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace orlftest {

/// Keeps steps until it is told to run them, on one thread.
class SteppedExecutor final : public ORLFoundation::CooperativeExecutor {
 public:
  void execute(std::function<void()> step) override { steps_.push_back(std::move(step)); }
  /// Runs steps until there is none; answers how many there were.
  std::size_t runAll() {
    std::size_t count = 0;
    for (; !steps_.empty(); ++count) {
      const auto step = std::move(steps_.front());
      steps_.pop_front();
      step();
    }
    return count;
  }
  [[nodiscard]] std::size_t waiting() const { return steps_.size(); }

 private:
  std::deque<std::function<void()>> steps_;
};

/// Whether the work ends the process with SIGABRT. It is done in a copy of the process.
inline bool traps(const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (std::freopen("/dev/null", "w", stderr) == nullptr) ::_exit(1);
    work();
    ::_exit(0);
  }
  int status = 0;
  return ::waitpid(child, &status, 0) == child && WIFSIGNALED(status) &&
         WTERMSIG(status) == SIGABRT;
}

inline ORLFoundation::CooperativeTask<> waitOnce(ORLFoundation::AsyncSemaphore& semaphore) {
  co_await semaphore.wait();
}
inline ORLFoundation::CooperativeTask<> waitOnceUnlessCancelled(
    ORLFoundation::AsyncSemaphore& semaphore) {
  co_await semaphore.waitUnlessCancelled();
}

/// Plays the steps of a semaphore's script, as the page of the queue vectors tells.
class SemaphorePlayer {
 public:
  static std::string playScript(const Json& in, const Json& out) {
    const std::int64_t value = in.at("value");
    if (out.contains("trap"))
      return disagreement(true, traps([&] { const ORLFoundation::AsyncSemaphore made(value); }));
    return SemaphorePlayer(value).play(in.at("steps"), out.at("steps"));
  }

 private:
  using Job = std::shared_ptr<ORLFoundation::CooperativeJob<>>;

  explicit SemaphorePlayer(std::int64_t value)
      : semaphore_(std::make_unique<ORLFoundation::AsyncSemaphore>(value)) {}

  std::string play(const Json& steps, const Json& states) {
    std::string difference;
    for (std::size_t i = 0; i < steps.size() && difference.empty(); ++i) {
      if (i >= states.size()) return "as many states as steps are expected";
      if (states[i].value("trap", false)) {
        difference = disagreement(true, traps([&] { doStep(steps[i]); }));
        break;
      }
      difference = disagreement(states[i], doStep(steps[i]));
      if (!difference.empty()) difference = "step " + std::to_string(i) + ": " + difference;
    }
    letGo();
    return difference;
  }
  Json doStep(const Json& step) {
    const std::string what = step[0];
    Json state = Json::object();
    if (what == "destroy") {
      semaphore_ = nullptr;
      return state;
    }
    if (what == "signal") {
      state["result"] = semaphore_->signal();
    } else if (what == "cancel") {
      context(step[1])->cancel();
    } else if (what == "wait") {
      start(step[1], waitOnce(*semaphore_));
    } else if (what == "waitUnlessCancelled") {
      start(step[1], waitOnceUnlessCancelled(*semaphore_));
    } else {
      throw std::runtime_error("unknown step " + what);
    }
    executor_->runAll();
    tell(state);
    return state;
  }
  void start(const std::string& name, ORLFoundation::CooperativeTask<> task) {
    calls_[name] = ORLFoundation::CooperativeJob<>::start(std::move(task), context(name));
  }
  const std::shared_ptr<ORLFoundation::CooperativeContext>& context(const std::string& name) {
    auto& found = contexts_[name];
    if (!found) found = std::make_shared<ORLFoundation::CooperativeContext>(executor_);
    return found;
  }
  void tell(Json& state) {
    state["value"] = semaphore_->value();
    state["suspensions"] = Json::array();
    for (const auto& parked : semaphore_->suspensions())
      state["suspensions"].push_back({nameOf(*parked.context), nameOf(parked.state)});
    for (auto call = calls_.begin(); call != calls_.end();) {
      if (!call->second->isFinished()) {
        ++call;
        continue;
      }
      state["ended"][call->first] = outcomeOf(*call->second);
      call = calls_.erase(call);
    }
  }
  static std::string outcomeOf(ORLFoundation::CooperativeJob<>& job) {
    try {
      job.result();
      return "returned";
    } catch (const ORLFoundation::CancellationError&) {
      return "cancelled";
    }
  }
  [[nodiscard]] std::string nameOf(const ORLFoundation::CooperativeContext& context) const {
    for (const auto& [name, each] : contexts_)
      if (each.get() == &context) return name;
    return "a context without a name";
  }
  [[nodiscard]] static std::string nameOf(ORLFoundation::AsyncSemaphore::State state) {
    using State = ORLFoundation::AsyncSemaphore::State;
    switch (state) {
      case State::suspendedUnlessCancelled:
        return "suspendedUnlessCancelled";
      case State::suspended:
        return "suspended";
      case State::pending:
        return "pending";
      case State::cancelled:
        return "cancelled";
    }
    return "no state";
  }
  /// Nothing may be parked on a semaphore that is destroyed.
  void letGo() {
    while (semaphore_ && !semaphore_->suspensions().empty()) semaphore_->signal();
    executor_->runAll();
  }

  const std::shared_ptr<SteppedExecutor> executor_ = std::make_shared<SteppedExecutor>();
  std::unique_ptr<ORLFoundation::AsyncSemaphore> semaphore_;
  std::map<std::string, std::shared_ptr<ORLFoundation::CooperativeContext>> contexts_;
  std::map<std::string, Job> calls_;
};

}  // namespace orlftest
