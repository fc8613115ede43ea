/// Operations that wait to be opened, and answers that come on another thread.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace orlftest {

/// An operation that runs until it is opened, single-instance under its ID.
class GatedInstance : public ORLFoundation::NSOperation,
                      public ORLFoundation::ORLFSingleInstanceOperation {
 public:
  explicit GatedInstance(std::optional<std::string> instance = std::nullopt)
      : instance_(std::move(instance)) {}
  void main() override {
    ORLFoundation::dispatch_semaphore_signal(begun_);
    ORLFoundation::dispatch_semaphore_wait(gate_, ORLFoundation::DISPATCH_TIME_FOREVER);
  }
  std::optional<std::string> enqueuedSingleInstanceID() const override { return instance_; }
  void open() const { ORLFoundation::dispatch_semaphore_signal(gate_); }
  void waitUntilBegun() const {
    ORLFoundation::dispatch_semaphore_wait(begun_, ORLFoundation::DISPATCH_TIME_FOREVER);
  }
  [[nodiscard]] bool hasBegun() const {
    return ORLFoundation::dispatch_semaphore_wait(begun_, ORLFoundation::DISPATCH_TIME_NOW) == 0;
  }

 private:
  const std::optional<std::string> instance_;
  const ORLFoundation::dispatch_semaphore_t gate_ = ORLFoundation::dispatch_semaphore_create(0);
  const ORLFoundation::dispatch_semaphore_t begun_ = ORLFoundation::dispatch_semaphore_create(0);
};

inline std::shared_ptr<GatedInstance> gated(std::optional<std::string> instance = std::nullopt) {
  return std::make_shared<GatedInstance>(std::move(instance));
}

/// An answer that comes on another thread.
template <class Value>
class Promise {
 public:
  void give(Value value) {
    value_ = std::move(value);
    ORLFoundation::dispatch_semaphore_signal(isGiven_);
  }
  Value take() {
    ORLFoundation::dispatch_semaphore_wait(isGiven_, ORLFoundation::DISPATCH_TIME_FOREVER);
    return value_;
  }

 private:
  Value value_{};
  const ORLFoundation::dispatch_semaphore_t isGiven_ = ORLFoundation::dispatch_semaphore_create(0);
};

}  // namespace orlftest
