#include <ORLFoundation/tasks/async/ORLFDispatch.h>

#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
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
    const auto player = std::make_shared<ContinuePlayer>();
    const std::string difference = player->play(in.at("steps"), out.at("steps"));
    for (const auto& [name, gate] : player->gates_) dispatch_semaphore_signal(gate);
    return difference;
  }

 private:
  std::string play(const Json& steps, const Json& states) {
    for (std::size_t i = 0; i < steps.size(); ++i) {
      doStep(steps[i]);
      const auto difference = comeTo(states.at(i));
      if (!difference.empty()) return "step " + std::to_string(i) + ": " + difference;
    }
    return {};
  }
  void doStep(const Json& step) {
    const std::string what = step[0];
    if (what == "main") {
      while (pumpMainQueue(0)) continue;
    } else if (what == "end") {
      dispatch_semaphore_signal(gate(step[1]));
    } else if (what == "orlfDispatch_async_continue") {
      orlfDispatch_async_continue(queue(step[1]), callback(step[2]), queue(step[3]),
                                  callback(step[4]));
    } else if (what == "orlfDispatch_async_continue_main") {
      orlfDispatch_async_continue_main(queue(step[1]), callback(step[2]), callback(step[3]));
    } else {
      throw std::runtime_error("unknown step " + what);
    }
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
  std::string comeTo(const Json& expected) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::string difference = orlftest::disagreement(expected, state());
    while (!difference.empty() && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::microseconds(20));
      difference = orlftest::disagreement(expected, state());
    }
    const std::lock_guard guard(lock_);
    began_.clear();
    onMain_.clear();
    return difference;
  }

  const Queues queues_ = newQueues();
  std::mutex lock_;
  std::map<std::string, dispatch_semaphore_t> gates_;
  std::set<std::pair<std::string, std::string>> began_;
  std::vector<std::string> onMain_;
};

/// Calls at the end of the path, each part of which is entered from the one before.
void enter(const Queues& queues, std::vector<std::string> path, const std::function<void()>& call) {
  if (path.empty()) return call();
  const dispatch_queue_t queue = queues.at(path.front());
  path.erase(path.begin());
  dispatch_sync(queue, [&] { enter(queues, path, call); });
}

std::string check(const Json& in, const Json& out) {
  const Queues queues = newQueues();
  std::vector<std::string> path = in.at("path");
  const std::string start = path.front();
  path.erase(path.begin());
  std::atomic<int> calls{0};
  std::atomic<bool> wasAtOnce{false};
  std::atomic<bool> hasReturned{false};
  const auto walk = [&] {
    enter(queues, path, [&] {
      orlfDispatch_main_queue_check_and_dispatch_if_needed([&calls] { ++calls; });
      wasAtOnce = calls > 0;
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
                           {{"dispatch", ContinuePlayer::playScript}, {"check", check}});
}

}  // namespace
}  // namespace ORLFoundation
