/// An operation that runs a block.
///
///     queue->addOperation(NSBlockOperation::blockOperationWithBlock([] { report("done"); }));
#pragma once

#include <ORLFoundation/platform/operation/NSOperation.h>

#include <functional>
#include <memory>
#include <string>

namespace ORLFoundation {

class NSBlockOperation : public NSOperation {
 public:
  explicit NSBlockOperation(std::function<void()> block);
  /// `blockOperationWithBlock:`  An empty block makes an operation that does nothing.
  [[nodiscard]] static std::shared_ptr<NSBlockOperation> blockOperationWithBlock(
      std::function<void()> block);

  /// Runs the block and lets go of it, so that a block may hold its own operation. One that is
  /// cancelled before it begins keeps its block.
  void main() override;

  [[nodiscard]] std::string className() const override { return "NSBlockOperation"; }

 private:
  std::function<void()> block_;
};

}  // namespace ORLFoundation
