
#include <ORLFoundation/platform/dispatch/NSDelayedPerforming.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/internal/Loop.h>

#include <utility>

namespace ORLFoundation {

using internal::dispatch::currentLoop;
using internal::dispatch::laterBy;
using internal::dispatch::nanosecondsOf;
using internal::dispatch::Request;
using internal::dispatch::TimedCall;
using internal::dispatch::TimedKind;

void performSelector(const std::shared_ptr<NSObject>& receiver, const NSSelector& selector,
                     const id& withObject, NSTimeInterval afterDelay) {
  const auto request = std::make_shared<Request>(
      Request{.selector = selector, .target = receiver, .argument = withObject});
  const auto call = std::make_shared<TimedCall>();
  call->kind = TimedKind::perform;
  call->modes.emplace_back(internal::dispatch::kDefaultMode);
  call->request = request;
  call->run = [request] { request->selector.perform(request->target, request->argument); };
  currentLoop()->schedule(call, laterBy(NSMonotonicClock::now(), nanosecondsOf(afterDelay)));
}

void cancelPreviousPerformRequestsWithTarget(const std::shared_ptr<NSObject>& target,
                                             const NSSelector& selector, const id& object) {
  const auto loop = currentLoop();
  for (const auto& call : loop->delayedPerforms(target))
    if (call->request->selector == selector && call->request->argument == object)
      loop->cancel(call);
}

void cancelPreviousPerformRequestsWithTarget(const std::shared_ptr<NSObject>& target) {
  const auto loop = currentLoop();
  for (const auto& call : loop->delayedPerforms(target)) loop->cancel(call);
}

}  // namespace ORLFoundation
