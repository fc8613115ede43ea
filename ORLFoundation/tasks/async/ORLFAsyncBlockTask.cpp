#include <ORLFoundation/tasks/async/ORLFAsyncBlockTask.h>

#include <utility>

namespace ORLFoundation {

ORLFAsyncBlockTask::ORLFAsyncBlockTask(Block block) : block_(std::move(block)) {}

void ORLFAsyncBlockTask::main() {
  if (!block_) return;
  block_(*this);
  block_ = nullptr;
}

}  // namespace ORLFoundation
