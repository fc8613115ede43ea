/// The lock of all trees of progress. The order of locks: the binding lock of an item, this one,
/// then the queue of indicators.
#pragma once

#include <ORLFoundation/platform/base/BriefLock.h>

#include <mutex>

namespace ORLFoundation::internal::progress {

/// Held for a fraction of a microsecond at a time.
using ProgressTreeLock = base::BriefLock<std::recursive_mutex>;

[[nodiscard]] ProgressTreeLock& progressTreeLock() noexcept;

/// Holds it.
class ProgressTreeGuard {
 public:
  ProgressTreeGuard() : guard_(progressTreeLock()) {}

 private:
  const std::lock_guard<ProgressTreeLock> guard_;
};

}  // namespace ORLFoundation::internal::progress
