#include <ORLFoundation/platform/net/internal/Loader.h>

#include <ORLFoundation/platform/net/internal/Exchange.h>
#include <ORLFoundation/platform/net/internal/LoadErrors.h>
#include <ORLFoundation/platform/net/internal/LoadingSession.h>
#include <ORLFoundation/platform/net/internal/LocalLoad.h>
#include <ORLFoundation/platform/net/internal/Recipient.h>
#include <ORLFoundation/platform/net/internal/TransferPlan.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation::internal::net {
namespace {

using std::chrono::steady_clock;

/// A server that speaks HTTP/2 answers so many at once over one connection.
constexpr std::size_t kMostStreams = 100;
constexpr std::chrono::milliseconds kLongestSleep{60'000};
/// Where the process had no descriptors left for waking the thread.
constexpr std::chrono::milliseconds kUnwakedSleep{5};

}  // namespace

Loader::Loader(std::shared_ptr<NSURLSessionConfiguration> configuration,
               std::shared_ptr<NSOperationQueue> delegateQueue)
    : configuration_(std::move(configuration)),
      delivery_(std::make_shared<Delivery>(std::move(delegateQueue))) {}

Loader::~Loader() = default;

void Loader::give(LoaderOrder order) {
  const bool needsThread =
      order.kind == LoaderOrder::Start || order.kind == LoaderOrder::Invalidate;
  const std::lock_guard guard(lock_);
  if (isLeaving_) return;
  if (!hasThread_) {
    if (!needsThread) return;
    runOnLoaderThread(shared_from_this());
    hasThread_ = true;
  }
  orders_.push_back(std::move(order));
  wake();
}

/// Under the lock. A thread that is awake looks for orders before it sleeps.
void Loader::wake() noexcept {
  if (std::exchange(isAsleep_, false)) multi_->wake();
}

void Loader::leave() {
  const std::lock_guard guard(lock_);
  isLeaving_ = true;
  wake();
}

void Loader::run() {
  do {
    openMulti();
    while (!mayEnd()) {
      doOrders();
      multi_->runDue();
      endTransfers();
      stepLocalLoads();
      endSilentOnes();
      tellInvalidation();
      sleep();
    }
    closeMulti();
  } while (hasMore());
}

/// Orders that were given while the thread was about to end keep it. Those that come too late for
/// the process are dropped: they may hold the session, which holds this.
bool Loader::hasMore() {
  std::vector<LoaderOrder> dropped;  // Outlives the lock: a session that dies gives an order.
  const std::lock_guard guard(lock_);
  if (isLeaving_) dropped.swap(orders_);
  hasThread_ = !orders_.empty();
  return hasThread_;
}

bool Loader::hasOrders() {
  const std::lock_guard guard(lock_);
  return !orders_.empty() || isLeaving_;
}

/// Whether nothing is left to do without further orders, and none is to be expected.
bool Loader::isDone() const noexcept {
  return transfers_.empty() && invalidations_.empty() && (isClosed_ || isInvalidated_);
}

bool Loader::mayEnd() {
  const std::lock_guard guard(lock_);
  return isLeaving_ || (orders_.empty() && isDone());
}

void Loader::openMulti() {
  const NSInteger connections =
      std::max<NSInteger>(configuration_->HTTPMaximumConnectionsPerHost(), 1);
  multi_.emplace(static_cast<long>(std::min<NSInteger>(connections, 100'000)));
  pattern_.emplace(*configuration_);
  Exchange::setUpPattern(*pattern_);
}

void Loader::closeMulti() {
  localLoads_.clear();
  unsent_.clear();
  servers_.clear();
  transfers_.clear();
  invalidations_.clear();
  pattern_.reset();
  multi_.reset();
}

void Loader::doOrders() {
  {
    const std::lock_guard guard(lock_);
    orders_.swap(taken_);
  }
  for (const LoaderOrder& order : taken_) doOrder(order);
  taken_.clear();
}

void Loader::doOrder(const LoaderOrder& order) {
  const auto found = transfers_.find(order.task.get());
  switch (order.kind) {
    case LoaderOrder::Start:
      return start(order.task);
    case LoaderOrder::Stop:
      return finish(order.task, failure(NSURLErrorCancelled));
    case LoaderOrder::Proceed:
      if (found != transfers_.end()) found->second->proceed();
      return;
    case LoaderOrder::Invalidate:
      isInvalidated_ = true;
      invalidations_.push_back(order);
      return;
    case LoaderOrder::Close:
      isClosed_ = true;
      return;
  }
}

void Loader::start(const std::shared_ptr<LoadingTask>& task) {
  auto recipient = std::make_shared<Recipient>(task, shared_from_this());
  if (task->isCancelled() || isInvalidated_) return recipient->ended(failure(NSURLErrorCancelled));
  TransferPlan plan = planOf(*task->request(), *configuration_);
  if (plan.failure) return recipient->ended(failure(*plan.failure));
  const auto lastTime = timeAfter(steady_clock::now(), plan.resourceTimeout);
  std::unique_ptr<Transfer> transfer;
  if (plan.isLocal) {
    auto local = std::make_unique<LocalLoad>(*this, task, std::move(recipient));
    localLoads_.push_back(local.get());
    transfer = std::move(local);
  } else {
    // There was no memory for it before, and so nothing runs in it.
    if (multi() == nullptr || pattern_->get() == nullptr) openMulti();
    std::string origin = std::move(plan.origin);
    transfer = std::make_unique<Exchange>(*this, task, std::move(recipient), std::move(plan));
    transfer->origin = std::move(origin);
  }
  transfer->lastTime = lastTime;
  askAt(lastTime);
  Transfer& held = *transfer;
  transfers_.emplace(task.get(), std::move(transfer));
  admit(held);
}

std::size_t Loader::mostAtOnce(const std::string& origin) const noexcept {
  const NSInteger connections = configuration_->HTTPMaximumConnectionsPerHost();
  const auto most = static_cast<std::size_t>(std::max<NSInteger>(connections, 1));
  return origin.rfind("https:", 0) == 0 ? std::max(most, kMostStreams) : most;
}

void Loader::admit(Transfer& transfer) {
  if (transfer.origin.empty()) return transfer.begin();
  Server& server = servers_[transfer.origin];
  if (server.running >= mostAtOnce(transfer.origin)) {
    server.waiting.push_back(transfer.task());
    return;
  }
  ++server.running;
  transfer.hasConnection = true;
  transfer.begin();
}

/// Makes place for the next at the transfer's server.
void Loader::leaveServer(const Transfer& transfer) {
  if (!transfer.hasConnection) return;
  const auto found = servers_.find(transfer.origin);
  if (found == servers_.end()) return;
  Server& server = found->second;
  --server.running;
  while (!server.waiting.empty()) {
    const auto next = transfers_.find(server.waiting.front().get());
    server.waiting.pop_front();
    // It was cancelled while it waited, or is about to be: its server never hears of it.
    if (next == transfers_.end() || next->second->task()->isCancelled()) continue;
    return admit(*next->second);
  }
  if (server.running == 0) servers_.erase(found);
}

void Loader::finish(const std::shared_ptr<LoadingTask>& task,
                    std::shared_ptr<const NSError> error) {
  const auto found = transfers_.find(task.get());
  if (found == transfers_.end()) return;
  const std::unique_ptr<Transfer> transfer = std::move(found->second);
  transfers_.erase(found);
  localLoads_.erase(std::remove(localLoads_.begin(), localLoads_.end(), transfer.get()),
                    localLoads_.end());
  leaveServer(*transfer);
  transfer->recipient().ended(std::move(error));
}

void Loader::endTransfers() {
  while (const auto ended = multi_->nextEnded())
    Exchange::ofHandle(ended->handle).ended(ended->result);
  // Each makes place for another one, which may be of this kind too.
  while (!unsent_.empty())
    for (const auto& task : std::exchange(unsent_, {}))
      finish(task, failure(NSURLErrorUnknown, "There is no memory for it."));
}

void Loader::cannotSend(std::shared_ptr<LoadingTask> task) { unsent_.push_back(std::move(task)); }

void Loader::stepLocalLoads() {
  const std::vector<LocalLoad*> loads = localLoads_;
  for (LocalLoad* const load : loads) load->step();
}

void Loader::askAt(steady_clock::time_point time) noexcept {
  nextQuestion_ = std::min(nextQuestion_, time);
}

// What came while a delegate held up the thread is read before it counts as silence.
void Loader::endSilentOnes() {
  const auto now = lookedAt_;
  if (now < nextQuestion_) return;
  nextQuestion_ = kNeverDue;
  std::vector<std::shared_ptr<LoadingTask>> due;
  for (const auto& [task, transfer] : transfers_) {
    const LoadTime time = std::min(transfer->due(), transfer->lastTime);
    if (time <= now) {
      due.push_back(transfer->task());
    } else {
      askAt(time);
    }
  }
  for (const auto& task : due) finish(task, failure(NSURLErrorTimedOut));
}

void Loader::tellInvalidation() {
  if (!transfers_.empty() || invalidations_.empty() || hasOrders()) return;
  for (LoaderOrder& order : std::exchange(invalidations_, {}))
    delivery_->deliver([session = std::move(order.session), delegate = std::move(order.delegate)] {
      if (delegate) delegate->URLSessionDidBecomeInvalidWithError(session, nullptr);
    });
}

/// Whether the thread may sleep until it is woken.
bool Loader::fallAsleep() {
  if (!unsent_.empty()) return false;
  if (std::any_of(localLoads_.begin(), localLoads_.end(),
                  [](const LocalLoad* load) { return load->isReady(); }))
    return false;
  const std::lock_guard guard(lock_);
  isAsleep_ = orders_.empty() && !isLeaving_ && !isDone();
  return isAsleep_;
}

void Loader::sleep() {
  lookedAt_ = steady_clock::now();
  std::chrono::milliseconds span{0};
  if (fallAsleep()) span = multi_->canBeWoken() ? kLongestSleep : kUnwakedSleep;
  // Up to the next millisecond, so that the time is past when the sleep ends.
  if (nextQuestion_ < lookedAt_ + span)
    span = std::chrono::ceil<std::chrono::milliseconds>(std::max(nextQuestion_, lookedAt_) -
                                                        lookedAt_);
  multi_->wait(span);
  {
    const std::lock_guard guard(lock_);
    isAsleep_ = false;
  }
  endTransfers();
}

}  // namespace ORLFoundation::internal::net
