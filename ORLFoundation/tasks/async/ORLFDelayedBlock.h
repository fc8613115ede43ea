/// A block to be called later, under a receipt.
///
///     const auto first = ORLFDelayedBlock::delayedBlock([] { report("later"); });
///     const auto second = ORLFDelayedBlock::delayedBlock([] { report("later still"); });
///     EXPECT_EQ(second->receiptID(), first->receiptID() + 1);
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace ORLFoundation {

class ORLFDelayedBlock final : public NSObject {
 public:
  /// `delayedBlock:`  Receipts count up from 1 in the whole process. An empty block takes one too.
  [[nodiscard]] static std::shared_ptr<ORLFDelayedBlock> delayedBlock(std::function<void()> block);
  ORLFDelayedBlock(std::int64_t receiptID, std::function<void()> block);

  [[nodiscard]] std::int64_t receiptID() const noexcept { return receiptID_; }
  [[nodiscard]] const std::function<void()>& block() const noexcept { return block_; }

  [[nodiscard]] std::string className() const override { return "ORLFDelayedBlock"; }

 private:
  const std::int64_t receiptID_;
  const std::function<void()> block_;
};

}  // namespace ORLFoundation
