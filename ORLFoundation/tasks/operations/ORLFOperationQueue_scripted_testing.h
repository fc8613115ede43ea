/// Operations and a target queue that do what a script says.
#pragma once

#include <ORLFoundation/tasks/operations/ORLFOperationQueue.h>
#include <tests/support/VectorFile.h>

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orlftest {

/// Keeps the blocks that it is given until they are delivered.
class KeepingQueue final : public ORLFoundation::NSOperationQueue {
 public:
  void addOperationWithBlock(std::function<void()> block) override {
    const std::lock_guard guard(lock_);
    blocks_.push_back(std::move(block));
  }
  void deliver() {
    std::vector<std::function<void()>> due;
    {
      const std::lock_guard guard(lock_);
      due.swap(blocks_);
    }
    for (const auto& block : due) block();
  }

 private:
  std::mutex lock_;
  std::vector<std::function<void()>> blocks_;
};

/// An operation whose work is told by its script.
class ScriptedOperation : public ORLFoundation::NSOperation {
 public:
  explicit ScriptedOperation(std::function<void()> work) : work_(std::move(work)) {}
  void main() override { work_(); }

 private:
  const std::function<void()> work_;
};

/// The same, of which the newest alone is wanted.
class ScriptedInstance final : public ScriptedOperation,
                               public ORLFoundation::ORLFSingleInstanceOperation {
 public:
  using ScriptedOperation::ScriptedOperation;
  void setAnswer(std::optional<std::string> answer) {
    const std::lock_guard guard(lock_);
    answer_ = std::move(answer);
  }
  std::optional<std::string> enqueuedSingleInstanceID() const override {
    const std::lock_guard guard(lock_);
    return answer_;
  }

 private:
  mutable std::mutex lock_;
  std::optional<std::string> answer_;
};

}  // namespace orlftest
