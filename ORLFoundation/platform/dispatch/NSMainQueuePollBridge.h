/// The main queue within a loop that is another's and waits for descriptors: with poll(2), epoll or
/// any library over them.
///
///     NSMainQueuePollBridge bridge;
///     pollfd descriptors[] = {{bridge.descriptor(), POLLIN, 0}, {window, POLLIN, 0}};
///     while (poll(descriptors, 2, -1) > 0) {
///       if (descriptors[0].revents != 0) bridge.dispatch();
///       if (descriptors[1].revents != 0) handleEvents();
///     }
#pragma once

#include <memory>

namespace ORLFoundation {

/// While it lives, the main thread counts as served. Its thread is the main one: a bridge that is
/// made on another thread than the process's first takes the part of the main thread, and dies on
/// the same thread.
class NSMainQueuePollBridge {
 public:
  /// Raises `NSGenericException` while there is another bridge, or when another thread has taken
  /// the part of the main one.
  NSMainQueuePollBridge();
  /// Drops nothing: what is left, timers too, waits for the next to serve the main queue.
  ~NSMainQueuePollBridge();
  NSMainQueuePollBridge(const NSMainQueuePollBridge&) = delete;
  NSMainQueuePollBridge& operator=(const NSMainQueuePollBridge&) = delete;

  /// Readable, and stays so, while there is something to do: items of the main queue, timers and
  /// delayed items that are due, performs, descriptors of the main run loop. The bridge's own, for
  /// waits alone.
  [[nodiscard]] int descriptor() const noexcept;
  /// Does it, for one turn, and does not wait: items that items add have theirs with the next call,
  /// so that the host's own events are not held up. May be called within itself, as from a loop
  /// within an item, and an item may destroy the bridge. What an item throws is logged and goes no
  /// further. For the main thread.
  void dispatch() noexcept;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace ORLFoundation
