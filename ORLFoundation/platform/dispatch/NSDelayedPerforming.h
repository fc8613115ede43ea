/// Operations of objects that are called later, by the run loop of the thread that asks.
///
///     performSelector(ledger, NSSelectorOf<&Ledger::reload>("reload:"), "drafts", 0.5);
///     cancelPreviousPerformRequestsWithTarget(ledger);
#pragma once

#include <ORLFoundation/platform/dispatch/NSSelector.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>

namespace ORLFoundation {

/// `performSelector:withObject:afterDelay:`  Calls the operation once, in the default mode of the
/// calling thread's run loop, so many seconds from now; with 0 or less at the next turn. Receiver
/// and argument are held until then.
void performSelector(const std::shared_ptr<NSObject>& receiver, const NSSelector& selector,
                     const id& withObject, NSTimeInterval afterDelay);
/// `cancelPreviousPerformRequestsWithTarget:selector:object:`  Takes back the calls of this
/// operation with an equal argument that this thread's run loop has not begun, and lets go of what
/// they hold.
void cancelPreviousPerformRequestsWithTarget(const std::shared_ptr<NSObject>& target,
                                             const NSSelector& selector, const id& object);
/// `cancelPreviousPerformRequestsWithTarget:`  All of the target's.
void cancelPreviousPerformRequestsWithTarget(const std::shared_ptr<NSObject>& target);

}  // namespace ORLFoundation
