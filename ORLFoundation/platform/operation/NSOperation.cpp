#include <ORLFoundation/platform/operation/NSOperation.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/operation/internal/OperationLinks.h>
#include <ORLFoundation/platform/operation/internal/QueueCore.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <iterator>
#include <mutex>
#include <thread>
#include <unordered_set>
#include <utility>

namespace ORLFoundation {

using internal::operation::Ending;
using internal::operation::OperationLinks;
using internal::operation::QueueCore;
using internal::operation::SpinLock;

void SpinLock::lockSlowly() noexcept {
  do {
    std::this_thread::yield();
  } while (isHeld_.exchange(true, std::memory_order_acquire));
}

void internal::operation::dropOperations(std::vector<std::shared_ptr<NSOperation>> operations) {
  thread_local std::vector<std::shared_ptr<NSOperation>>* falling = nullptr;
  if (falling != nullptr) {
    falling->insert(falling->end(), std::make_move_iterator(operations.begin()),
                    std::make_move_iterator(operations.end()));
    return;
  }
  falling = &operations;
  while (!operations.empty()) {
    const std::shared_ptr<NSOperation> next = std::move(operations.back());
    operations.pop_back();
  }
  falling = nullptr;
}

NSOperation::NSOperation() = default;

NSOperation::~NSOperation() {
  if (links_) internal::operation::dropOperations(std::move(links_->dependencies));
}

void NSOperation::main() {}

void NSOperation::start() {
  const auto held = weak_from_this().lock();  // The work may let go of the last that holds it.
  {
    const std::lock_guard guard(lock_);
    if (phase() == Phase::executing || phase() == Phase::finished) return;
    if (queue_) throw NSException(NSInvalidArgumentException, "start: the operation is on a queue");
    if (!isFreeToBegin())
      throw NSException(NSInvalidArgumentException, "start: the operation is not ready");
    phase_ = Phase::executing;
  }
  perform();
  Ending ending;
  end(ending);
  ending.tellWaiters();
  ending.complete();
}

void NSOperation::cancel() {
  std::shared_ptr<QueueCore> queue;
  {
    const std::lock_guard guard(lock_);
    if (phase() == Phase::finished) return;
    isCancelled_ = true;
    if (phase() != Phase::waiting) return;
    phase_ = Phase::ready;
    queue = queue_;
  }
  queue->push(*this);
}

bool NSOperation::isReady() const {
  const std::lock_guard guard(lock_);
  return phase() != Phase::finished && isFreeToBegin();
}

void NSOperation::addDependency(const std::shared_ptr<NSOperation>& operation) {
  if (!operation) return;
  {
    const std::lock_guard guard(lock_);
    if (phase() == Phase::finished) return;
    links().dependencies.push_back(operation);
    if (phase() == Phase::executing) return;
    ++blockers_;
  }
  auto self = std::static_pointer_cast<NSOperation>(receiverOrReference());
  if (!operation->addDependent(self)) dependencyFinished();
}

std::vector<std::shared_ptr<NSOperation>> NSOperation::dependencies() const {
  std::vector<std::shared_ptr<NSOperation>> all;
  {
    const std::lock_guard guard(lock_);
    if (links_) all = links_->dependencies;
  }
  std::unordered_set<const NSOperation*> seen;
  std::erase_if(all, [&](const auto& each) { return !seen.insert(each.get()).second; });
  return all;
}

std::function<void()> NSOperation::completionBlock() const {
  const std::lock_guard guard(lock_);
  return completion_;
}

void NSOperation::setCompletionBlock(std::function<void()> block) {
  const std::lock_guard guard(lock_);
  if (phase() != Phase::finished) completion_.swap(block);
}

void NSOperation::waitUntilFinished() {
  if (isFinished()) return;
  const dispatch_semaphore_t done = dispatch_semaphore_create(0);
  {
    const std::lock_guard guard(lock_);
    if (phase() == Phase::finished) return;
    links().waiters.push_back(done);
  }
  dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
}

bool NSOperation::wasEnqueued() const {
  const std::lock_guard guard(lock_);
  return queue_ != nullptr;
}

OperationLinks& NSOperation::links() {
  if (!links_) links_ = std::make_unique<OperationLinks>();
  return *links_;
}

bool NSOperation::addDependent(std::weak_ptr<NSOperation> operation) {
  const std::lock_guard guard(lock_);
  if (phase() == Phase::finished) return false;
  links().dependents.push_back(std::move(operation));
  return true;
}

void NSOperation::dependencyFinished() {
  std::shared_ptr<QueueCore> queue;
  {
    const std::lock_guard guard(lock_);
    --blockers_;
    if (blockers_ > 0 || phase() != Phase::waiting) return;
    phase_ = Phase::ready;
    queue = queue_;
  }
  queue->push(*this);
}

const char* NSOperation::claim(std::shared_ptr<QueueCore> queue) {
  const std::lock_guard guard(lock_);
  if (phase() == Phase::finished) return "operation is finished and cannot be enqueued";
  if (phase() == Phase::executing) return "operation is executing and cannot be enqueued";
  if (queue_) return "operation is already enqueued on a queue";
  queue_ = std::move(queue);
  return nullptr;
}

void NSOperation::unclaim() {
  const std::lock_guard guard(lock_);
  queue_ = nullptr;
}

bool NSOperation::settle() {
  const std::lock_guard guard(lock_);
  phase_ = isFreeToBegin() ? Phase::ready : Phase::waiting;
  return phase() == Phase::ready;
}

bool NSOperation::begin() {
  const std::lock_guard guard(lock_);
  phase_ = isFreeToBegin() ? Phase::executing : Phase::waiting;
  return phase() == Phase::executing;
}

void NSOperation::perform() noexcept {
  if (!isCancelled()) main();
}

void NSOperation::end(Ending& ending) {
  const std::lock_guard guard(lock_);
  phase_ = Phase::finished;
  ending.completion.swap(completion_);
  ending.links = std::move(links_);
}

const NSKeyTable& NSOperation::keyTable() const {
  static const NSKeyTable table(NSObject::keyTable(),
                                {
                                    NSKey::readOnly<&NSOperation::isCancelled>("isCancelled"),
                                    NSKey::readOnly<&NSOperation::isExecuting>("isExecuting"),
                                    NSKey::readOnly<&NSOperation::isFinished>("isFinished"),
                                    NSKey::readOnly<&NSOperation::isReady>("isReady"),
                                });
  return table;
}

}  // namespace ORLFoundation
