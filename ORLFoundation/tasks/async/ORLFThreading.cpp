#include <ORLFoundation/tasks/async/ORLFThreading.h>

#include <ORLFoundation/platform/dispatch/NSDelayedPerforming.h>
#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <mutex>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr const char* kRequestsKey = "delayedBlockRequests";

std::shared_ptr<NSMutableDictionary> requestsOf(const NSObject& object) {
  return object.attachedValue(kRequestsKey).as<NSMutableDictionary>();
}

std::shared_ptr<NSMutableDictionary> requestsMade(const NSObject& object) {
  auto requests = requestsOf(object);
  if (!requests) {
    requests = std::make_shared<NSMutableDictionary>();
    object.setAttachedValue(kRequestsKey, requests);
  }
  return requests;
}

const NSSelector& performDelayedBlock() {
  static const NSSelector selector(
      "orlfPerformDelayedBlock_:", [](const std::shared_ptr<NSObject>& target, const id& argument) {
        orlfPerformDelayedBlock_(target, argument.as<ORLFDelayedBlock>());
      });
  return selector;
}

void cancelRequest(const std::shared_ptr<NSObject>& target, const id& request) {
  cancelPreviousPerformRequestsWithTarget(target, performDelayedBlock(), request);
}

/// Objects that wait for their release, and the lock "LockObject" that guards them. Never
/// destroyed: other threads may add while the process ends.
struct ReleaseList {
  std::recursive_mutex lock;
  std::unique_ptr<std::vector<std::shared_ptr<NSObject>>> objects;
};

ReleaseList& releaseList() {
  static auto& list = *new ReleaseList;
  return list;
}

void scheduleRelease() {
  static const auto& target = *new std::shared_ptr<NSObject>(std::make_shared<NSObject>());
  NSRunLoop::mainRunLoop()->performSelector(
      {.selector = NSSelector("orlfReleaseObjects", [](const std::shared_ptr<NSObject>&,
                                                       const id&) { orlfReleaseObjects(); }),
       .target = target,
       .argument = nullptr,
       .order = 0,
       .modes = {NSRunLoopCommonModes}});
}

}  // namespace

std::int64_t orlfPerformBlockOnMainThread(const std::shared_ptr<NSObject>& receiver,
                                          std::function<void()> block, NSTimeInterval afterDelay) {
  if (!receiver) return 0;
  if (!NSThread::isMainThread())
    return dispatch_sync(dispatch_get_main_queue(), [&] {
      return orlfPerformBlockOnMainThread(receiver, std::move(block), afterDelay);
    });
  if (!block) return 0;
  const auto requests = requestsMade(*receiver);
  const auto request = ORLFDelayedBlock::delayedBlock(std::move(block));
  requests->setObject(request, request->receiptID());
  performSelector(receiver, performDelayedBlock(), request, afterDelay);
  return request->receiptID();
}

void orlfPerformDelayedBlock_(const std::shared_ptr<NSObject>& receiver,
                              const std::shared_ptr<ORLFDelayedBlock>& delayedBlock) {
  if (!receiver || !delayedBlock) return;
  const auto requests = requestsOf(*receiver);
  ORLFConditionAssert(requests != nullptr, "delayedBlockRequests != nil",
                      "No delayed block requests dictionary!");
  if (delayedBlock->block()) delayedBlock->block()();
  if (requests) requests->removeObjectForKey(delayedBlock->receiptID());
}

void orlfCancelPreviousPerformBlockRequestsWithTarget(const std::shared_ptr<NSObject>& target) {
  if (!target) return;
  if (!NSThread::isMainThread())
    return dispatch_sync(dispatch_get_main_queue(),
                         [&] { orlfCancelPreviousPerformBlockRequestsWithTarget(target); });
  const auto requests = requestsOf(*target);
  if (!requests) return;
  for (const id& request : requests->allValues()) cancelRequest(target, request);
  requests->removeAllObjects();
}

void orlfCancelPreviousPerformBlockRequestsWithTarget(const std::shared_ptr<NSObject>& target,
                                                      std::int64_t receiptID) {
  if (!target) return;
  if (!NSThread::isMainThread())
    return dispatch_sync(dispatch_get_main_queue(), [&] {
      orlfCancelPreviousPerformBlockRequestsWithTarget(target, receiptID);
    });
  const auto requests = requestsOf(*target);
  const id request = requests ? requests->objectForKey(receiptID) : id();
  if (request.isNil()) return;
  cancelRequest(target, request);
  requests->removeObjectForKey(receiptID);
}

void orlfReleaseOnMainThread(std::shared_ptr<NSObject> receiver) {
  orlfAddObjectToRelease(std::move(receiver));
}

void orlfAddObjectToRelease(std::shared_ptr<NSObject> object) {
  if (!object) return;
  ReleaseList& list = releaseList();
  const std::lock_guard guard(list.lock);
  if (!list.objects) {
    list.objects = std::make_unique<std::vector<std::shared_ptr<NSObject>>>();
    scheduleRelease();
  }
  list.objects->push_back(std::move(object));
}

void orlfReleaseObjects() {
  ReleaseList& list = releaseList();
  std::unique_ptr<std::vector<std::shared_ptr<NSObject>>> released;
  const std::lock_guard guard(list.lock);
  released.swap(list.objects);
}

}  // namespace ORLFoundation
