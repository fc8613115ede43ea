/// What every object can have done on the main thread: a block called later, with a receipt that
/// takes it back, and its own release. `NSObject(ORLFThreading)`.
///
///     const auto receipt = orlfPerformBlockOnMainThread(ledger, [] { report("idle"); }, 2.0);
///     orlfCancelPreviousPerformBlockRequestsWithTarget(ledger, receipt);
///     orlfReleaseOnMainThread(std::move(ledger));   // it dies on the main thread
///
/// The requests of an object are attached to it; it is held until they have run or were taken back.
/// Trap: off the main thread a call about requests waits until the main thread has taken it, for
/// ever when that thread waits for the caller.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/tasks/async/ORLFDelayedBlock.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace ORLFoundation {

/// `orlfPerformBlockOnMainThread:afterDelay:`  Calls the block in the default mode of the main run
/// loop so many seconds from now, with 0 or less at its next turn. The receipt; 0, and nothing is
/// to come, for an empty block and for a null receiver.
std::int64_t orlfPerformBlockOnMainThread(const std::shared_ptr<NSObject>& receiver,
                                          std::function<void()> block, NSTimeInterval afterDelay);
/// `orlfPerformDelayedBlock_:`  What is called then: calls the block, then forgets the request, so
/// that the block still finds it. Logs a failed condition where the receiver never had a request,
/// and goes on. For the main thread.
void orlfPerformDelayedBlock_(const std::shared_ptr<NSObject>& receiver,
                              const std::shared_ptr<ORLFDelayedBlock>& delayedBlock);
/// `orlfCancelPreviousPerformBlockRequestsWithTarget:`  Takes back all requests of the object.
void orlfCancelPreviousPerformBlockRequestsWithTarget(const std::shared_ptr<NSObject>& target);
/// `orlfCancelPreviousPerformBlockRequestsWithTarget:receiptID:`  Takes back one; nothing for a
/// receipt that is none of the object's, or none any more.
void orlfCancelPreviousPerformBlockRequestsWithTarget(const std::shared_ptr<NSObject>& target,
                                                      std::int64_t receiptID);

/// `orlfReleaseOnMainThread`, `orlfAddObjectToRelease:`  Keeps the object until the main run loop's
/// next turn, which lets go of all that were given meanwhile. Any thread; does not wait.
void orlfReleaseOnMainThread(std::shared_ptr<NSObject> receiver);
void orlfAddObjectToRelease(std::shared_ptr<NSObject> object);
/// `orlfReleaseObjects`  Lets go of them now, on the calling thread.
void orlfReleaseObjects();

}  // namespace ORLFoundation
