/// Tells from a file's events in their order at which closes a writer has finished.
#pragma once

#include <cstdint>

namespace ORLFoundation::internal::events {

/// The kernel says neither who wrote nor who closes. A close counts when the file was written since
/// the time when nobody had it open, and when it is of someone who had opened the file before it
/// was watched, since he may have written before. So no writer's close is missed; beside others,
/// that of one who opened for writing and wrote nothing may count.
class SettledTracker {
 public:
  /// Takes an event's mask and answers whether it is such a close.
  [[nodiscard]] bool take(std::uint32_t mask) noexcept;

 private:
  std::uint64_t open_ = 0;
  bool isWritten_ = false;
};

}  // namespace ORLFoundation::internal::events
