#include <ORLFoundation/platform/operation/NSBlockOperation.h>

#include <utility>

namespace ORLFoundation {

NSBlockOperation::NSBlockOperation(std::function<void()> block) : block_(std::move(block)) {}

std::shared_ptr<NSBlockOperation> NSBlockOperation::blockOperationWithBlock(
    std::function<void()> block) {
  return std::make_shared<NSBlockOperation>(std::move(block));
}

void NSBlockOperation::main() {
  if (const auto block = std::exchange(block_, nullptr)) block();
}

}  // namespace ORLFoundation
