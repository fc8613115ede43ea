/// What tests of operations share.
#pragma once

#include <ORLFoundation/platform/operation/NSBlockOperation.h>

#include <functional>
#include <memory>
#include <utility>

namespace orlftest {

inline std::shared_ptr<ORLFoundation::NSBlockOperation> blockOperation(std::function<void()> block =
                                                                           [] {}) {
  return ORLFoundation::NSBlockOperation::blockOperationWithBlock(std::move(block));
}

}  // namespace orlftest
