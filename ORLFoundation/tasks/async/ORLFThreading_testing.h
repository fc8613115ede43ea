/// Plays scripts of deferred blocks on a main loop whose clock stands still, as the page of the
/// queue vectors tells.
#pragma once

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/tasks/async/ORLFThreading.h>
#include <tests/support/VectorFile.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orlftest {

/// Tells when it is destroyed.
class Mortal final : public ORLFoundation::NSObject {
 public:
  explicit Mortal(std::function<void()> gone) : gone_(std::move(gone)) {}
  Mortal(const Mortal&) = delete;
  Mortal& operator=(const Mortal&) = delete;
  ~Mortal() override { gone_(); }

 private:
  const std::function<void()> gone_;
};

class DeferredPlayer {
 public:
  explicit DeferredPlayer(const Json& in)
      : blocks_(in.value("blocks", Json::object())), steps_(in.at("steps")) {
    for (const Json& name : in.at("objects"))
      objects_[name] = std::make_shared<Mortal>([this, name = name.get<std::string>()] {
        gone_.insert(ORLFoundation::NSThread::isMainThread() ? name
                                                             : name + " off the main thread");
      });
  }
  /// What is left would call into the player.
  ~DeferredPlayer() {
    for (auto& [name, object] : objects_) orlfCancelPreviousPerformBlockRequestsWithTarget(object);
    ORLFoundation::orlfReleaseObjects();
    loop_.advance(kLongNanoseconds);
    objects_.clear();
  }
  DeferredPlayer(const DeferredPlayer&) = delete;
  DeferredPlayer& operator=(const DeferredPlayer&) = delete;

  std::string play(const Json& states) {
    for (std::size_t i = 0; i < steps_.size(); ++i) {
      log_.clear();
      const auto result = doStep(steps_[i]);
      const auto difference = disagreement(states.at(i), state(result));
      if (!difference.empty()) return "step " + std::to_string(i) + ": " + difference;
    }
    return {};
  }

 private:
  using Object = std::shared_ptr<ORLFoundation::NSObject>;
  using Result = std::optional<std::int64_t>;
  static constexpr std::int64_t kLongNanoseconds = 1'000'000'000'000;

  /// A block that was made, with what it needs to find its own entry.
  struct Made {
    std::int64_t receipt = 0;
    std::weak_ptr<ORLFoundation::NSObject> receiver;
  };

  Result doStep(const Json& step) {
    const std::string what = step[0];
    if (what == "off") return doOff(step[1]);
    if (what == "advance") {
      loop_.advance(ORLFoundation::internal::dispatch::nanosecondsOf(step[1].get<double>()));
    } else if (what == "orlfPerformBlockOnMainThread:afterDelay:") {
      return perform(step);
    } else if (what == "delayedBlock:") {
      return keep(step[1]);
    } else if (what == "orlfReleaseObjects") {
      ORLFoundation::orlfReleaseObjects();
    } else {
      doObjectStep(what, step);
    }
    return std::nullopt;
  }
  void doObjectStep(const std::string& what, const Json& step) {
    if (what == "drop") {
      objects_.at(step[1]) = nullptr;
      return;
    }
    const Object object = objectNamed(step[1]);
    if (what == "orlfCancelPreviousPerformBlockRequestsWithTarget:") {
      orlfCancelPreviousPerformBlockRequestsWithTarget(object);
    } else if (what == "orlfCancelPreviousPerformBlockRequestsWithTarget:receiptID:") {
      orlfCancelPreviousPerformBlockRequestsWithTarget(object, receiptOf(step[2]));
    } else if (what == "orlfPerformDelayedBlock_:") {
      receiver_ = object;
      orlfPerformDelayedBlock_(object, step[2].is_null() ? nullptr : delayed_.at(step[2]));
      receiver_.reset();
    } else if (what == "orlfReleaseOnMainThread") {
      orlfReleaseOnMainThread(object);
    } else if (what == "orlfAddObjectToRelease:") {
      orlfAddObjectToRelease(object);
    } else {
      throw std::runtime_error("unknown step " + what);
    }
  }
  [[nodiscard]] Object objectNamed(const Json& name) const {
    return name.is_null() ? nullptr : objects_.at(name);
  }
  /// The step on another thread, whose calls the main thread takes, and nothing else.
  Result doOff(const Json& step) {
    Result result;
    std::atomic<bool> isDone{false};
    std::thread thread([&] {
      result = doStep(step);
      isDone = true;
    });
    while (!isDone) {
      loop_.runItems();
      std::this_thread::yield();
    }
    thread.join();
    return result;
  }
  Result perform(const Json& step) {
    const Object object = objectNamed(step[1]);
    const auto made = std::make_shared<Made>();
    made->receiver = object;
    made->receipt =
        orlfPerformBlockOnMainThread(object, blockNamed(step[2], made), step[3].get<double>());
    if (made->receipt == 0) return 0;
    receipts_[step[2]] = made->receipt;
    delayed_[step[2]] =
        requestsOf(*object)->objectForKey(made->receipt).as<ORLFoundation::ORLFDelayedBlock>();
    return made->receipt - firstReceipt_;
  }
  Result keep(const Json& name) {
    const auto made = std::make_shared<Made>();
    const auto kept = ORLFoundation::ORLFDelayedBlock::delayedBlock(blockNamed(name, made));
    made->receipt = kept->receiptID();
    if (!name.is_null()) {
      delayed_[name] = kept;
      receipts_[name] = made->receipt;
    }
    return made->receipt - firstReceipt_;
  }
  std::function<void()> blockNamed(const Json& name, const std::shared_ptr<Made>& made) {
    if (name.is_null()) return nullptr;
    return [this, name = name.get<std::string>(), made] {
      const Object receiver = receiver_.expired() ? made->receiver.lock() : receiver_.lock();
      const auto requests = receiver ? requestsOf(*receiver) : nullptr;
      const bool hasEntry = requests && !requests->objectForKey(made->receipt).isNil();
      ran_.push_back(
          {ORLFoundation::NSThread::isMainThread() ? name : name + " off main", hasEntry});
      receiver_.reset();
      for (const Json& deed : blocks_.value(name, Json::array()))
        if (const Result receipt = doStep(deed)) inside_.push_back(*receipt);
    };
  }
  [[nodiscard]] std::int64_t receiptOf(const Json& told) const {
    if (told.is_number())  // wild ones go round
      return static_cast<std::int64_t>(told.get<std::uint64_t>() +
                                       static_cast<std::uint64_t>(firstReceipt_));
    const auto found = receipts_.find(told);
    return found == receipts_.end() ? 0 : found->second;
  }
  [[nodiscard]] static std::shared_ptr<ORLFoundation::NSMutableDictionary> requestsOf(
      const ORLFoundation::NSObject& object) {
    return object.attachedValue("delayedBlockRequests").as<ORLFoundation::NSMutableDictionary>();
  }

  [[nodiscard]] Json state(const Result& result) {
    Json entry = {{"entries", Json::object()}};
    for (const auto& [name, object] : objects_) {
      const auto requests = object ? requestsOf(*object) : nullptr;
      if (!requests) continue;
      std::set<std::int64_t> receipts;
      for (const ORLFoundation::id& key : requests->allKeys())
        receipts.insert(*key.as<std::int64_t>() - firstReceipt_);
      entry["entries"][name] = receipts;
    }
    if (result) entry["result"] = *result;
    if (const auto lines = log_.lines(); !lines.empty()) entry["log"] = lines;
    put(entry, "gone", std::exchange(gone_, {}));
    put(entry, "ran", std::exchange(ran_, Json::array()));
    put(entry, "inside", std::exchange(inside_, Json::array()));
    return entry;
  }
  static void put(Json& entry, const char* key, const Json& list) {
    if (!list.empty()) entry[key] = list;
  }

  VirtualMainLoop loop_;
  ORLFoundation::LogCapture log_;
  const Json blocks_, steps_;
  const std::int64_t firstReceipt_ =
      ORLFoundation::ORLFDelayedBlock::delayedBlock(nullptr)->receiptID();
  std::map<std::string, Object> objects_;
  std::map<std::string, std::int64_t> receipts_;
  std::map<std::string, std::shared_ptr<ORLFoundation::ORLFDelayedBlock>> delayed_;
  std::weak_ptr<ORLFoundation::NSObject> receiver_;  // Of a block that is performed by a step.
  std::set<std::string> gone_;
  Json ran_ = Json::array(), inside_ = Json::array();
};

}  // namespace orlftest
