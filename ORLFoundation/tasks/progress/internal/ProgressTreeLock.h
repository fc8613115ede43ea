/// The lock of all trees of progress. The order of locks: the binding lock of an item, this one,
/// then the queue of indicators.
#pragma once

#include <mutex>

namespace ORLFoundation::internal::progress {

[[nodiscard]] std::recursive_mutex& progressTreeLock() noexcept;

/// Holds it.
class ProgressTreeGuard {
 public:
  ProgressTreeGuard() : guard_(progressTreeLock()) {}

 private:
  const std::lock_guard<std::recursive_mutex> guard_;
};

}  // namespace ORLFoundation::internal::progress
