#include <ORLFoundation/tasks/async/ORLFDispatch.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::Json;

using Queues = std::map<std::string, dispatch_queue_t>;

Queues newQueues() {
  const dispatch_queue_t& main = dispatch_get_main_queue();
  return {{"q1", dispatch_queue_create("q1", DISPATCH_QUEUE_SERIAL)},
          {"q2", dispatch_queue_create("q2", DISPATCH_QUEUE_SERIAL)},
          {"same", dispatch_queue_create(dispatch_queue_get_label(main), DISPATCH_QUEUE_SERIAL)},
          {"global", dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0)},
          {"main", main}};
}

/// A script of continue functions. Its callbacks hold it: some may be left when it has been played.
class ContinuePlayer : public std::enable_shared_from_this<ContinuePlayer> {
 public:
  static std::string playScript(const Json& in, const Json& out) {
    const orlftest::VirtualMainLoop loop;
    const auto player = std::make_shared<ContinuePlayer>();
    const std::string difference = player->play(in.at("steps"), out.at("steps"), loop);
    for (const auto& [name, gate] : player->gates_) dispatch_semaphore_signal(gate);
    return difference;
  }

 private:
  std::string play(const Json& steps, const Json& states, const orlftest::VirtualMainLoop& loop) {
    for (std::size_t i = 0; i < steps.size(); ++i) {
      const std::size_t before = loop.waiting();
      doStep(steps[i]);
      // Work that ends has handed its continuation to the main queue before the next step.
      const bool isAwaited =
          steps[i][0] == "end" && continueOnMain_.count(steps[i][1]) > 0 && hasBegun(steps[i][1]);
      while (isAwaited && loop.waiting() == before) std::this_thread::yield();
      waitForHandOvers();
      const auto difference = comeTo(states.at(i), steps[i][0] == "main");
      if (!difference.empty()) return "step " + std::to_string(i) + ": " + difference;
      waitForHandOvers();
    }
    return {};
  }
  void doStep(const Json& step) {
    const std::string what = step[0];
    if (what == "main") return;  // Runs while its state is waited for.
    if (what == "end") {
      dispatch_semaphore_signal(gate(step[1]));
      ended_.insert(step[1]);
    } else if (what == "orlfDispatch_async_continue") {
      // A handle of its own, which goes when the work has handed its continuation over.
      const auto handle = std::make_shared<dispatch_queue_t>(queue(step[3]));
      if (!step[2].is_null()) handles_[step[2]] = handle;
      orlfDispatch_async_continue(queue(step[1]), callback(step[2]),
                                  *handle ? dispatch_queue_t(handle, handle->get()) : nullptr,
                                  callback(step[4]));
      if (step[3] == "main") awaitOnMain(step[2], step[4]);
    } else if (what == "orlfDispatch_async_continue_main") {
      orlfDispatch_async_continue_main(queue(step[1]), callback(step[2]), callback(step[3]));
      awaitOnMain(step[2], step[3]);
    } else {
      throw std::runtime_error("unknown step " + what);
    }
  }
  void awaitOnMain(const Json& work, const Json& continuation) {
    if (!work.is_null() && !continuation.is_null()) continueOnMain_.insert(work);
  }
  /// Returns when all work that has begun and was let end has handed its continuation over: to a
  /// busy queue too, where nothing shows it.
  void waitForHandOvers() {
    for (const auto& [name, handle] : handles_) {
      if (ended_.count(name) == 0 || !hasBegun(name)) continue;
      while (!handle.expired()) std::this_thread::yield();
    }
  }
  [[nodiscard]] bool hasBegun(const std::string& name) {
    const std::lock_guard guard(lock_);
    return hasEverBegun_.count(name) > 0;
  }
  [[nodiscard]] dispatch_queue_t queue(const Json& name) const {
    return name.is_null() ? nullptr : queues_.at(name);
  }
  dispatch_semaphore_t gate(const std::string& name) {
    const std::lock_guard guard(lock_);
    auto& found = gates_[name];
    if (!found) found = dispatch_semaphore_create(0);
    return found;
  }
  dispatch_block_t callback(const Json& name) {
    if (name.is_null()) return nullptr;
    return [self = shared_from_this(), name = name.get<std::string>()] { self->begin(name); };
  }
  void begin(const std::string& name) {
    const char* const label = dispatch_queue_get_label(DISPATCH_CURRENT_QUEUE_LABEL);
    std::string runsOn = "no queue";
    for (const auto& [each, queue] : queues_)
      if (dispatch_queue_get_label(queue) == label) runsOn = each;
    {
      const std::lock_guard guard(lock_);
      if (runsOn == "main") return onMain_.push_back(name);
      began_.insert({name, runsOn});
      hasEverBegun_.insert(name);
    }
    dispatch_semaphore_wait(gate(name), DISPATCH_TIME_FOREVER);
  }
  [[nodiscard]] Json state() {
    const std::lock_guard guard(lock_);
    Json entry = Json::object();
    for (const auto& [name, queue] : began_) entry["began"].push_back({name, queue});
    if (!onMain_.empty()) entry["main"] = onMain_;
    return entry;
  }
  std::string comeTo(const Json& expected, bool runsMainQueue) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::string difference;
    do {
      if (runsMainQueue) pumpMainQueue(0);
      difference = orlftest::disagreement(expected, state());
      if (difference.empty()) break;
      std::this_thread::sleep_for(std::chrono::microseconds(20));
    } while (std::chrono::steady_clock::now() < deadline);
    const std::lock_guard guard(lock_);
    began_.clear();
    onMain_.clear();
    return difference;
  }

  const Queues queues_ = newQueues();
  std::set<std::string> continueOnMain_;
  std::set<std::string> ended_;
  std::map<std::string, std::weak_ptr<dispatch_queue_t>> handles_;
  std::mutex lock_;
  std::set<std::string> hasEverBegun_;
  std::map<std::string, dispatch_semaphore_t> gates_;
  std::set<std::pair<std::string, std::string>> began_;
  std::vector<std::string> onMain_;
};

/// Whether this thread is inside the call.
thread_local bool isCalling = false;

/// Calls at the end of the path, each part of which is entered from the one before.
void enterPath(const Queues& queues, std::vector<std::string> path,
               const std::function<void()>& call) {
  if (path.empty()) return call();
  const dispatch_queue_t queue = queues.at(path.front());
  path.erase(path.begin());
  dispatch_sync(queue, [&] { enterPath(queues, path, call); });
}

std::string playCheck(const Json& in, const Json& out) {
  const Queues queues = newQueues();
  std::vector<std::string> path = in.at("path");
  const std::string start = path.front();
  path.erase(path.begin());
  std::atomic<int> calls{0};
  std::atomic<bool> wasAtOnce{false};
  std::atomic<bool> hasReturned{false};
  const auto walk = [&] {
    enterPath(queues, path, [&] {
      isCalling = true;
      orlfDispatch_main_queue_check_and_dispatch_if_needed([&] {
        wasAtOnce = isCalling;
        ++calls;
      });
      isCalling = false;
    });
    hasReturned = true;
  };
  std::thread thread;
  if (start == "thread") {
    thread = std::thread(walk);
  } else {
    dispatch_async(queues.at(start), walk);
  }
  while (!hasReturned || calls == 0) pumpMainQueue(0.001);
  while (pumpMainQueue(0)) continue;
  if (thread.joinable()) thread.join();
  if (calls != 1) return "called " + std::to_string(calls) + " times";
  return orlftest::disagreement(out.at("atOnce").get<bool>(), wasAtOnce.load());
}

TEST(ORLFDispatch, AgreesWithVectors) {
  orlftest::runJsonVectors("queue_dispatch",
                           {{"dispatch", ContinuePlayer::playScript}, {"check", playCheck}});
}

}  // namespace
}  // namespace ORLFoundation
