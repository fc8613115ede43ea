/// What tests of operations share.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/operation/NSBlockOperation.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace orlftest {

inline std::shared_ptr<ORLFoundation::NSBlockOperation> blockOperation(std::function<void()> block =
                                                                           [] {}) {
  return ORLFoundation::NSBlockOperation::blockOperationWithBlock(std::move(block));
}

/// An operation that runs until it is opened.
struct Gated {
  ORLFoundation::dispatch_semaphore_t gate = ORLFoundation::dispatch_semaphore_create(0);
  ORLFoundation::dispatch_semaphore_t begun = ORLFoundation::dispatch_semaphore_create(0);
  std::shared_ptr<ORLFoundation::NSBlockOperation> operation =
      blockOperation([gate = gate, begun = begun] {
        ORLFoundation::dispatch_semaphore_signal(begun);
        ORLFoundation::dispatch_semaphore_wait(gate, ORLFoundation::DISPATCH_TIME_FOREVER);
      });

  void waitUntilBegun() const {
    ORLFoundation::dispatch_semaphore_wait(begun, ORLFoundation::DISPATCH_TIME_FOREVER);
  }
  void open() const { ORLFoundation::dispatch_semaphore_signal(gate); }
};

/// What operations of one test wrote, in order.
class Notes {
 public:
  std::shared_ptr<ORLFoundation::NSBlockOperation> operation(const std::string& name) {
    return blockOperation([this, name] { write(name); });
  }
  void write(const std::string& text) {
    const std::lock_guard guard(lock_);
    text_ += text;
  }
  [[nodiscard]] std::string text() const {
    const std::lock_guard guard(lock_);
    return text_;
  }

 private:
  mutable std::mutex lock_;
  std::string text_;
};

}  // namespace orlftest
