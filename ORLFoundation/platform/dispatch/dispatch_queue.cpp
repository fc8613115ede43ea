
#include <ORLFoundation/platform/dispatch/dispatch_queue.h>

#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>
#include <ORLFoundation/platform/dispatch/internal/Keeper.h>
#include <ORLFoundation/platform/dispatch/internal/MainThread.h>
#include <ORLFoundation/platform/dispatch/internal/Queue.h>
#include <ORLFoundation/platform/dispatch/internal/QueueFrame.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace ORLFoundation {

using internal::dispatch::ConcurrentQueue;
using internal::dispatch::InQueue;
using internal::dispatch::kLevelCount;
using internal::dispatch::Level;
using internal::dispatch::MainQueue;
using internal::dispatch::Queue;
using internal::dispatch::SerialQueue;
using internal::dispatch::WorkerPool;

namespace {

thread_local const internal::dispatch::QueueFrame* innermost = nullptr;

struct GlobalQueue {
  const char* label;
  Level level;
  std::int64_t qualityOfService;
  std::int64_t priority;  // The older name; where there is none, the same.
};

constexpr std::array<GlobalQueue, kLevelCount> kGlobalQueues{{
    {"global.user-interactive", Level::interactive, QOS_CLASS_USER_INTERACTIVE,
     QOS_CLASS_USER_INTERACTIVE},
    {"global.user-initiated", Level::initiated, QOS_CLASS_USER_INITIATED,
     DISPATCH_QUEUE_PRIORITY_HIGH},
    {"global.default", Level::standard, QOS_CLASS_DEFAULT, DISPATCH_QUEUE_PRIORITY_DEFAULT},
    {"global.utility", Level::utility, QOS_CLASS_UTILITY, DISPATCH_QUEUE_PRIORITY_LOW},
    {"global.background", Level::background, QOS_CLASS_BACKGROUND,
     DISPATCH_QUEUE_PRIORITY_BACKGROUND},
}};

constexpr std::size_t indexOfGlobalQueue(std::int64_t identifier) {
  std::size_t index = 0;
  while (index < kLevelCount && kGlobalQueues[index].qualityOfService != identifier &&
         kGlobalQueues[index].priority != identifier)
    ++index;
  return index;
}

/// Queues that live as long as the process: their handles count no references.
dispatch_queue_t handleOf(Queue* queue) { return {std::shared_ptr<void>(), queue}; }

std::array<dispatch_queue_t, kLevelCount> makeGlobalQueues() {
  std::array<dispatch_queue_t, kLevelCount> queues;
  std::transform(kGlobalQueues.begin(), kGlobalQueues.end(), queues.begin(), [](const auto& row) {
    return handleOf(new ConcurrentQueue(row.label, WorkerPool::shared(), row.level));
  });
  return queues;
}

Level levelOf(std::int64_t qualityOfService) {
  const auto row = std::find_if(
      kGlobalQueues.begin(), kGlobalQueues.end(),
      [&](const GlobalQueue& queue) { return queue.qualityOfService == qualityOfService; });
  return row == kGlobalQueues.end() ? Level::standard : row->level;
}

bool isWithin(const internal::dispatch::QueueFrame* frame, const Queue* queue) noexcept {
  for (; frame != nullptr; frame = frame->outer)
    if (frame->queue == queue || isWithin(frame->own, queue)) return true;
  return false;
}

void check(const dispatch_queue_t& queue, bool hasBlock) {
  if (!queue || !hasBlock) ORLFFatalError("work for a queue that is nil", __FILE__, __LINE__);
}

/// A block on its way to a thread of the pool.
struct BlockWork : internal::dispatch::Work {
  dispatch_block_t block;
  dispatch_queue_t queue;
};

void runBlockWork(internal::dispatch::Work* work) noexcept {
  const std::unique_ptr<BlockWork> owned(static_cast<BlockWork*>(work));
  const InQueue inside(owned->queue.get());
  owned->block();
  owned->block = nullptr;
}

}  // namespace

namespace internal::dispatch {

const QueueFrame* innermostFrame() noexcept { return innermost; }

bool isWithinQueue(const Queue* queue) noexcept { return isWithin(innermost, queue); }

InQueue::InQueue(const Queue* queue, const QueueFrame* outer) noexcept
    : frame_{queue, outer, outer != innermost ? innermost : nullptr}, before_(innermost) {
  innermost = &frame_;
}

InQueue::~InQueue() { innermost = before_; }

void Queue::after(std::int64_t due, dispatch_block_t block) {
  dispatch_queue_t self = weak_from_this().lock();
  if (!self) self = handleOf(this);
  const auto call = std::make_shared<TimedCall>();
  call->kind = TimedKind::item;
  call->modes.emplace_back(kDefaultMode);
  call->run = [self = std::move(self), block = std::move(block)]() mutable {
    self->async(std::move(block));
  };
  Keeper::shared().schedule(call, due);
}

void ConcurrentQueue::async(dispatch_block_t block) {
  auto work = std::make_unique<BlockWork>();
  work->run = runBlockWork;
  work->block = std::move(block);
  work->queue = weak_from_this().lock();
  if (!work->queue) work->queue = handleOf(this);
  pool_.submit(level_, work.release());
}

void ConcurrentQueue::run(void (*call)(void*), void* argument) {
  const std::shared_ptr<Queue> held = weak_from_this().lock();  // The call may drop the handles.
  const InQueue inside(this);
  call(argument);
}

void runOnQueue(const dispatch_queue_t& queue, void (*call)(void*), void* argument) {
  if (!queue) ORLFFatalError("work for a queue that is nil", __FILE__, __LINE__);
  queue->run(call, argument);
}

}  // namespace internal::dispatch

dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(
    dispatch_queue_attr_t attributes, std::int64_t qualityOfService) noexcept {
  attributes.qualityOfService = qualityOfService;
  return attributes;
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
  const Level level = levelOf(attributes.qualityOfService);
  if (attributes.isConcurrent)
    return std::make_shared<ConcurrentQueue>(label, WorkerPool::shared(), level);
  return SerialQueue::make(label, WorkerPool::shared(), level);
}

const dispatch_queue_t& dispatch_get_global_queue(std::int64_t identifier, std::uint64_t flags) {
  static const auto& queues = *new auto(makeGlobalQueues());
  static const auto& none = *new dispatch_queue_t;
  const std::size_t index = indexOfGlobalQueue(identifier);
  return flags == 0 && index < kLevelCount ? queues[index] : none;
}

const dispatch_queue_t& dispatch_get_main_queue() {
  static const auto& queue = *new auto(handleOf(new MainQueue));
  return queue;
}

const char* dispatch_queue_get_label(const dispatch_queue_t& queue) noexcept {
  if (queue) return queue->label();
  if (innermost != nullptr) return innermost->queue->label();
  return internal::dispatch::isMainThread() ? dispatch_get_main_queue()->label() : nullptr;
}

void dispatch_async(const dispatch_queue_t& queue, dispatch_block_t block) {
  check(queue, block != nullptr);
  queue->async(std::move(block));
}

void dispatch_after(dispatch_time_t when, const dispatch_queue_t& queue, dispatch_block_t block) {
  check(queue, block != nullptr);
  if (when == DISPATCH_TIME_NOW) return queue->async(std::move(block));
  queue->after(internal::dispatch::instantOf(when), std::move(block));
}

}  // namespace ORLFoundation
