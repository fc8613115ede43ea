#include <ORLFoundation/tasks/async/ORLFDelayedBlock.h>

#include <atomic>
#include <utility>

namespace ORLFoundation {

ORLFDelayedBlock::ORLFDelayedBlock(std::int64_t receiptID, std::function<void()> block)
    : receiptID_(receiptID), block_(std::move(block)) {}

std::shared_ptr<ORLFDelayedBlock> ORLFDelayedBlock::delayedBlock(std::function<void()> block) {
  static constinit std::atomic<std::int64_t> lastReceipt{0};
  return std::make_shared<ORLFDelayedBlock>(lastReceipt.fetch_add(1) + 1, std::move(block));
}

}  // namespace ORLFoundation
