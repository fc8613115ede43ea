/// The main thread and how work gets there. There is one way: the main queue, which the program's
/// main thread serves. A program without a loop of its own runs it, one that has turns of its own
/// pumps it, one whose loop is another's bridges the two, and one that needs its first thread for
/// something else gives it a thread.
///
///     dispatch_async(dispatch_get_main_queue(), [view] { view->update(); });   // any thread
///     while (!job->isFinished()) pumpMainQueue(0.1);                           // main thread
///
/// Its items run there alone, never in place. Serving the queue is one with running the main run
/// loop: timers, performs and descriptors are served too.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <functional>
#include <memory>

namespace ORLFoundation {

/// Runs what is ready: items of the main queue, timers that are due, ordered performs and
/// descriptors of the main run loop. When nothing is, waits until something has run, or for so many
/// seconds of real time; 0 does not wait. Answers whether anything ran. For the main thread; raises
/// `NSGenericException` on another one. What an item throws comes out here; what is
/// left runs with the next call.
bool pumpMainQueue(NSTimeInterval timeout);
/// Does so until `stopMainQueue`. May be called within an item, for a loop within the loop.
void runMainQueue();
/// Ends the innermost `runMainQueue`, or the next one when none runs. Any thread.
void stopMainQueue();

/// A main thread for a program that does not serve its first thread: runs the main queue until it
/// is destroyed. While it lives, its thread is the main one and the first thread is not.
/// Destroying it drops nothing: what is left waits for the next to serve the queue. What
/// an item throws ends the process. Raises `NSGenericException` while another thread
/// has taken the part of the main one.
class NSMainQueueThread {
 public:
  NSMainQueueThread();
  ~NSMainQueueThread();
  NSMainQueueThread(const NSMainQueueThread&) = delete;
  NSMainQueueThread& operator=(const NSMainQueueThread&) = delete;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// `performSelectorOnMainThread:withObject:waitUntilDone:`  On the main thread itself, a block that
/// is waited for runs in place; every other one becomes an item of the main queue. What a block
/// throws that is waited for is thrown to the waiting caller. A line is logged when nobody serves
/// the main thread for 5 seconds of a wait, which goes on.
void NSPerformOnMainThread(std::function<void()> block, bool waitUntilDone);

/// The same as a wait, for what must be said even where nobody serves the main thread: answers
/// false, and the block never runs, when the main thread does not begin with it. It is not tried
/// when nobody has served that thread for 5 seconds, and else given up after 5.
[[nodiscard]] bool NSTryOnMainThread(const std::function<void()>& block);

}  // namespace ORLFoundation
