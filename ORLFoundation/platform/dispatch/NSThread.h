/// The threads of the process as far as the library asks about them: which one is the main thread,
/// what each keeps under its keys, and how the present call came about.
///
///     NSThread::currentThread()->threadDictionary()->setObject(handler, NSAssertionHandlerKey);
///     if (!NSThread::isMainThread()) return;
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <vector>

namespace ORLFoundation {

class NSRunLoop;

class NSThread final : public NSObject {
 public:
  NSThread();
  /// `currentThread`  One for each thread, made at first use and dropped when the thread ends. A
  /// thread that is already ending gets a new one with each call.
  [[nodiscard]] static std::shared_ptr<NSThread> currentThread();
  /// `isMainThread`  The process's first thread is the main one, unless an `NSMainQueueThread` has
  /// taken its part.
  [[nodiscard]] static bool isMainThread();
  /// `callStackSymbols`  A line for each call that has not returned yet, the caller's own first:
  /// its place in the list, the file that holds the code, the address, and the function with the
  /// distance from its start; "0x0 + 0" for a function whose name is not known. At most 128 lines.
  [[nodiscard]] static std::vector<std::string> callStackSymbols();

  /// `threadDictionary`  Values of this thread, for the thread itself to use; never null.
  [[nodiscard]] const std::shared_ptr<NSMutableDictionary>& threadDictionary() const noexcept {
    return dictionary_;
  }

  [[nodiscard]] std::string className() const override { return "NSThread"; }

 private:
  friend class NSRunLoop;

  std::shared_ptr<NSRunLoop> runLoop_;
  const std::shared_ptr<NSMutableDictionary> dictionary_;
};

}  // namespace ORLFoundation
