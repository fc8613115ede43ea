#include <ORLFoundation/platform/operation/internal/QueueCore.h>

#include <ORLFoundation/platform/operation/internal/OperationLinks.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

namespace ORLFoundation::internal::operation {
namespace {

constexpr std::array<std::int64_t, kLevels> kClasses = {QOS_CLASS_USER_INTERACTIVE,
                                                        QOS_CLASS_USER_INITIATED, QOS_CLASS_DEFAULT,
                                                        QOS_CLASS_UTILITY, QOS_CLASS_BACKGROUND};
constexpr std::size_t kDefaultLevel = 2;

std::size_t levelOf(std::int64_t qualityOfService) {
  const auto* const found = std::ranges::find(kClasses, qualityOfService);
  return found == kClasses.end() ? kDefaultLevel
                                 : static_cast<std::size_t>(found - kClasses.begin());
}

/// How many operations an item serves before it lets the dispatch queue's other items begin.
constexpr int kMostInARow = 64;

/// Items of all queues that were submitted and have not begun, by level.
constinit std::array<std::atomic<int>, kLevels> itemsUnderWay{};

bool moreUrgentThan(std::size_t level) {
  return std::any_of(itemsUnderWay.begin(),
                     itemsUnderWay.begin() + static_cast<std::ptrdiff_t>(level),
                     [](const auto& count) { return count.load(std::memory_order_relaxed) > 0; });
}

thread_local QueueCore* currentCore = nullptr;

}  // namespace

void Ending::tellWaiters() {
  if (links) {
    for (const auto& dependent : links->dependents)
      if (const auto held = dependent.lock()) held->dependencyFinished();
    for (const auto& waiter : links->waiters) dispatch_semaphore_signal(waiter);
    dropOperations(std::move(links->dependencies));
    links = nullptr;
  }
  for (const auto& waiter : std::exchange(queueWaiters, {})) dispatch_semaphore_signal(waiter);
}

void Ending::complete() noexcept {
  if (completion) std::exchange(completion, nullptr)();
}

void QueueCore::add(std::span<const std::shared_ptr<NSOperation>> operations) {
  std::size_t claimed = 0;
  const char* fault = nullptr;
  while (claimed < operations.size() && !fault) {
    fault = operations[claimed]->claim(shared_from_this());
    if (!fault) ++claimed;
  }
  if (fault) {
    for (const auto& each : operations.first(claimed)) each->unclaim();
    throw NSException(NSInvalidArgumentException,
                      std::string("*** -[NSOperationQueue addOperation:]: ") + fault);
  }
  constexpr std::size_t kMostUnderLock = 512;
  while (!operations.empty()) {
    const auto some = operations.first(std::min(operations.size(), kMostUnderLock));
    operations = operations.subspan(some.size());
    Items items;
    {
      const std::lock_guard guard(lock_);
      for (const auto& each : some) {
        link(each);
        if (each->settle()) appendReady(*each);
      }
      items = claimItems();
    }
    submit(items);
  }
}

void QueueCore::push(NSOperation& operation) {
  Items items;
  {
    const std::lock_guard guard(lock_);
    appendReady(operation);
    items = claimItems();
  }
  submit(items);
}

std::vector<std::shared_ptr<NSOperation>> QueueCore::operations() const {
  const std::lock_guard guard(lock_);
  std::vector<std::shared_ptr<NSOperation>> unfinished;
  unfinished.reserve(count_);
  for (const NSOperation* each = first_; each; each = each->next_)
    unfinished.push_back(each->self_);
  return unfinished;
}

std::size_t QueueCore::count() const {
  const std::lock_guard guard(lock_);
  return count_;
}

void QueueCore::waitUntilEmpty() {
  const dispatch_semaphore_t done = dispatch_semaphore_create(0);
  {
    const std::lock_guard guard(lock_);
    if (count_ == 0) return;
    waiters_.push_back(done);
  }
  dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
}

std::int64_t QueueCore::most() const {
  const std::lock_guard guard(lock_);
  return most_;
}

void QueueCore::setMost(std::int64_t value) {
  if (isMain_) return;
  Items items;
  {
    const std::lock_guard guard(lock_);
    most_ = value;
    items = claimItems();
  }
  submit(items);
}

bool QueueCore::isSuspended() const {
  const std::lock_guard guard(lock_);
  return isSuspended_;
}

void QueueCore::setSuspended(bool value) {
  Items items;
  {
    const std::lock_guard guard(lock_);
    isSuspended_ = value;
    items = claimItems();
  }
  submit(items);
}

NSQualityOfService QueueCore::qualityOfService() const {
  const std::lock_guard guard(lock_);
  return qualityOfService_;
}

void QueueCore::setQualityOfService(NSQualityOfService value) {
  const std::lock_guard guard(lock_);
  qualityOfService_ = value;
}

void QueueCore::setOwner(const std::weak_ptr<NSObject>& owner) {
  const std::lock_guard guard(lock_);
  owner_ = owner;
}

std::shared_ptr<NSObject> QueueCore::owner() const {
  const std::lock_guard guard(lock_);
  return owner_.lock();
}

QueueCore* QueueCore::current() noexcept { return currentCore; }

// From here on to claimItems, lock_ is held.

void QueueCore::link(const std::shared_ptr<NSOperation>& operation) {
  operation->self_ = operation;
  operation->previous_ = last_;
  (last_ ? last_->next_ : first_) = operation.get();
  last_ = operation.get();
  ++count_;
}

void QueueCore::unlink(NSOperation& operation, Ending& ending) {
  (operation.previous_ ? operation.previous_->next_ : first_) = operation.next_;
  (operation.next_ ? operation.next_->previous_ : last_) = operation.previous_;
  --count_;
  ending.operation = std::move(operation.self_);
  if (count_ == 0) ending.queueWaiters.swap(waiters_);
}

void QueueCore::appendReady(NSOperation& operation) {
  const NSQualityOfService own = operation.qualityOfService_;
  List& list = ready_.at(levelOf(own == NSQualityOfServiceDefault ? qualityOfService_ : own));
  operation.nextReady_ = nullptr;
  (list.last ? list.last->nextReady_ : list.first) = &operation;
  list.last = &operation;
}

NSOperation* QueueCore::takeReady() {
  if (!hasRoom()) return nullptr;
  for (List& list : ready_) {
    while (NSOperation* const operation = list.first) {
      list.first = operation->nextReady_;
      if (!list.first) list.last = nullptr;
      if (!operation->begin()) continue;
      ++running_;
      return operation;
    }
  }
  return nullptr;
}

QueueCore::Items QueueCore::claimItems() {
  Items items{};
  if (!hasRoom()) return items;
  for (std::size_t level = 0; level < kLevels; ++level) {
    if (!ready_[level].first || isUnderWay_[level]) continue;
    isUnderWay_[level] = true;
    items[level] = true;
  }
  return items;
}

void QueueCore::submit(const Items& items) {
  for (std::size_t level = 0; level < kLevels; ++level) {
    if (!items[level]) continue;
    if (!isMain_) itemsUnderWay[level].fetch_add(1, std::memory_order_relaxed);
    const dispatch_queue_t& queue =
        isMain_ ? dispatch_get_main_queue() : dispatch_get_global_queue(kClasses[level], 0);
    dispatch_async(queue, [self = shared_from_this(), level] { self->serve(level); });
  }
}

void QueueCore::serve(std::size_t level) {
  if (!isMain_) itemsUnderWay[level].fetch_sub(1, std::memory_order_relaxed);
  QueueCore* const outer = std::exchange(currentCore, this);
  {
    const std::lock_guard guard(lock_);
    isUnderWay_[level] = false;
  }
  NSOperation* operation = nullptr;
  int left = isMain_ ? 1 : kMostInARow;
  // The main thread is nobody else's: what waits for the others need not go first.
  const auto mayTake = [&] { return left > 0 && (isMain_ || !moreUrgentThan(level)); };
  while (true) {
    {
      Ending ending;
      operation = goOn(operation, mayTake(), ending);
      ending.tellWaiters();
      if (ending.completion) {
        ending.complete();
        continue;
      }
    }
    if (!operation) break;
    --left;
    operation->perform();
  }
  currentCore = outer;
}

/// Ends the operation that was done, if any, and takes the next one; that one not while a
/// completion block is to run first.
NSOperation* QueueCore::goOn(NSOperation* done, bool mayTake, Ending& ending) {
  NSOperation* next = nullptr;
  Items items;
  {
    const std::lock_guard guard(lock_);
    if (done) {
      done->end(ending);
      --running_;
      unlink(*done, ending);
    }
    if (mayTake && !ending.completion) next = takeReady();
    items = claimItems();
  }
  submit(items);
  return next;
}

}  // namespace ORLFoundation::internal::operation
