/// The threads of loaders. None is ever joined, since the last reference to a session may be
/// dropped on any thread, one of them included; instead, when the process ends, they are asked to
/// leave and waited for, so that none works with libraries that are being torn down.
#pragma once

#include <functional>
#include <memory>

namespace ORLFoundation::internal::net {

/// Begins libcurl, once.
void startCurl();

/// What a thread of a loader does.
class LoaderWork {
 public:
  LoaderWork() = default;
  virtual ~LoaderWork() = default;
  LoaderWork(const LoaderWork&) = delete;
  LoaderWork& operator=(const LoaderWork&) = delete;

  virtual void run() = 0;
  /// Called as the process ends, on another thread: `run` is to return soon, whatever is left.
  virtual void leave() = 0;
};

/// Runs the work on a thread of its own, which no signal reaches: among them SIGPIPE, that a
/// connection cut off by its other end would raise. Throws `std::system_error` where the system
/// has no more threads.
void runOnLoaderThread(const std::shared_ptr<LoaderWork>& work);

}  // namespace ORLFoundation::internal::net
