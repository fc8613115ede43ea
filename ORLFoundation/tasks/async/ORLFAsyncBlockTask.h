/// A task that runs a block.
///
///     const auto scan = [](ORLFAsyncBlockTaskStatus& status) {
///       while (!status.canceled() && readRecord()) continue;
///     };
///     const auto task = std::make_shared<ORLFAsyncBlockTask>(scan);
///     task->resume();
#pragma once

#include <ORLFoundation/tasks/async/ORLFAsyncTaskBase.h>

#include <functional>
#include <string>

namespace ORLFoundation {

class ORLFAsyncBlockTask : public ORLFAsyncTaskBase, public ORLFAsyncBlockTaskStatus {
 public:
  using Block = std::function<void(ORLFAsyncBlockTaskStatus& status)>;

  /// `initWithBlock:`  An empty block makes a task that does nothing.
  explicit ORLFAsyncBlockTask(Block block);

  /// Calls the block with the task and lets go of it, before the task counts as finished.
  void main() override;
  [[nodiscard]] bool canceled() const override { return ORLFAsyncTaskBase::canceled(); }

  [[nodiscard]] std::string className() const override { return "ORLFAsyncBlockTask"; }

 private:
  Block block_;
};

}  // namespace ORLFoundation
