/// The source of a file's events.
#pragma once

#include <ORLFoundation/platform/events/NodeWatcher.h>
#include <ORLFoundation/platform/events/dispatch_vnode_source.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace ORLFoundation::internal::events {

class NodeSource final : public DispatchVNodeSource {
 public:
  explicit NodeSource(dispatch_queue_t queue) : queue_(std::move(queue)) {}

  /// Answers whether the descriptor can be watched.
  [[nodiscard]] bool watch(NodeWatcher& watcher, int descriptor, std::uint64_t flags,
                           std::optional<std::string> openedAt);

  void setEventHandler(dispatch_block_t handler) override;
  void setCancelHandler(dispatch_block_t handler) override;
  void resume() override;
  void cancel() override;
  [[nodiscard]] std::uint64_t data() const override;

 private:
  void note(std::uint64_t flags, NodeTurn& turn);
  [[nodiscard]] std::shared_ptr<NodeSource> shared() {
    return std::static_pointer_cast<NodeSource>(shared_from_this());
  }
  /// With lock_ held: gives the queue one run of the source, unless one waits there.
  void schedule();
  void run();
  /// Behind the event handler: another run for what came meanwhile, or the end of what was
  /// cancelled.
  void conclude();
  /// Runs the cancel handler and drops both.
  void finish();

  const dispatch_queue_t queue_;
  mutable std::mutex lock_;
  std::unique_ptr<NodeWatch> watch_;
  std::shared_ptr<const dispatch_block_t> eventHandler_;
  dispatch_block_t cancelHandler_;
  std::uint64_t pending_ = 0;
  std::uint64_t current_ = 0;
  bool isResumed_ = false;
  bool isScheduled_ = false;
  bool isCancelled_ = false;
};

}  // namespace ORLFoundation::internal::events
