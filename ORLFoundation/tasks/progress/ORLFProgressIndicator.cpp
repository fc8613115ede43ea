#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>

#include <ORLFoundation/platform/dispatch/NSRunLoop.h>
#include <ORLFoundation/platform/dispatch/NSTimer.h>
#include <ORLFoundation/platform/dispatch/dispatch_time.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/tasks/progress/internal/ProgressTreeLock.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

using internal::progress::ProgressTreeGuard;

constexpr NSTimeInterval kDisplayInterval = 0.01;
constexpr std::int64_t kHoldNanoseconds = 250'000'000;

/// What is taken out of an indicator's fields inside is given to locals of the caller's, which die
/// outside.
template <class Work>
void onSharedQueue(Work&& work) {
  dispatch_sync(ORLFProgressIndicator::sharedProgressIndicatorQueue(), work);
}

/// Has a hold end a quarter of a second after its display, also when the delegate throws.
class HoldEnd {
 public:
  explicit HoldEnd(std::weak_ptr<ORLFProgressIndicator> indicator)
      : indicator_(std::move(indicator)) {}
  ~HoldEnd() {
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, kHoldNanoseconds), dispatch_get_main_queue(),
                   [weak = std::move(indicator_)] {
                     if (const auto held = weak.lock()) held->startDisplayTimer();
                   });
  }
  HoldEnd(const HoldEnd&) = delete;
  HoldEnd& operator=(const HoldEnd&) = delete;

 private:
  std::weak_ptr<ORLFProgressIndicator> indicator_;
};

}  // namespace

const dispatch_queue_t& ORLFProgressIndicator::sharedProgressIndicatorQueue() {
  static const dispatch_queue_t& queue = *new dispatch_queue_t(dispatch_queue_create(
      "com.orlsoftware.foundation.ORLFProgressIndicator", DISPATCH_QUEUE_SERIAL));
  return queue;
}

ORLFProgressIndicator::~ORLFProgressIndicator() {
  if (!progressItems_) return;
  for (const Item& item : *progressItems_) item->setCurrentIndicator(nullptr);
}

std::shared_ptr<ORLFProgressIndicator> ORLFProgressIndicator::self() const {
  return std::static_pointer_cast<ORLFProgressIndicator>(receiverOrReference());
}

void ORLFProgressIndicator::setVisible(bool value) {
  changeValue("visible", [&] { visible_ = value; });
}

void ORLFProgressIndicator::setIndeterminate(bool value) {
  changeValue("indeterminate", [&] { indeterminate_ = value; });
}

void ORLFProgressIndicator::setCurrentValue(double value) {
  changeValue("currentValue", [&] { currentValue_ = value; });
}

void ORLFProgressIndicator::setMinValue(double value) {
  changeValue("minValue", [&] { minValue_ = value; });
}

void ORLFProgressIndicator::setMaxValue(double value) {
  changeValue("maxValue", [&] { maxValue_ = value; });
}

std::optional<std::string> ORLFProgressIndicator::message() const {
  const std::lock_guard guard(fieldLock_);
  return message_;
}

void ORLFProgressIndicator::setMessage(std::optional<std::string> value) {
  changeValue("message", [&] {
    const std::lock_guard guard(fieldLock_);
    message_.swap(value);
  });
}

double ORLFProgressIndicator::normalizedValue() const noexcept {
  const double range = maxValue() - minValue();
  return range == 0 ? 0 : currentValue() / range;
}

std::shared_ptr<ORLFProgressIndicatorDelegate> ORLFProgressIndicator::delegate() const {
  const std::lock_guard guard(fieldLock_);
  return delegate_.lock();
}

void ORLFProgressIndicator::setDelegate(
    const std::shared_ptr<ORLFProgressIndicatorDelegate>& value) {
  const std::lock_guard guard(fieldLock_);
  delegate_ = value;
}

std::optional<ORLFProgressIndicator::Items> ORLFProgressIndicator::progressItems() const {
  std::optional<Items> items;
  onSharedQueue([&] { items = progressItems_; });
  return items;
}

std::shared_ptr<NSTimer> ORLFProgressIndicator::displayTimer() const {
  std::shared_ptr<NSTimer> timer;
  onSharedQueue([&] { timer = displayTimer_; });
  return timer;
}

std::int64_t ORLFProgressIndicator::displayTimerCounter() const {
  std::int64_t counter = 0;
  onSharedQueue([&] { counter = displayTimerCounter_; });
  return counter;
}

void ORLFProgressIndicator::displayProgressItem(const Item& item) {
  const ProgressTreeGuard guard;
  if (!item || item->currentIndicator().get() == this) return;
  item->removeFromIndicator();
  onSharedQueue([&] {
    if (!progressItems_) progressItems_.emplace();
    progressItems_->push_back(item);
  });
  item->setCurrentIndicator(self());
  updateDisplayTimer();
}

void ORLFProgressIndicator::removeProgressItem(const Item& item) {
  const auto indicator = self();  // the item may be the last to hold it
  const ProgressTreeGuard guard;
  if (!item || item->currentIndicator().get() != this) return;
  item->setCurrentIndicator(nullptr);
  currentProgressWillChangeForItem(item);
  Items removed;
  onSharedQueue([&] {
    if (!progressItems_) return;
    const auto kept = std::stable_partition(progressItems_->begin(), progressItems_->end(),
                                            [&](const Item& each) { return each != item; });
    removed.assign(std::make_move_iterator(kept), std::make_move_iterator(progressItems_->end()));
    progressItems_->erase(kept, progressItems_->end());
  });
  currentProgressDidChangeForItem(item);
}

bool ORLFProgressIndicator::isDisplayingProgressItem(const Item& item) const {
  const ProgressTreeGuard guard;
  bool isListed = false;
  onSharedQueue([&] {
    isListed =
        item && progressItems_ &&
        std::find(progressItems_->begin(), progressItems_->end(), item) != progressItems_->end();
  });
  return isListed;
}

bool ORLFProgressIndicator::isProgressItemVisible(const Item& item) const {
  const ProgressTreeGuard guard;
  bool isVisible = false;
  onSharedQueue([&] { isVisible = isLast(item); });
  return isVisible;
}

/// On the shared queue.
bool ORLFProgressIndicator::isLast(const Item& item) const {
  return item && progressItems_ && !progressItems_->empty() && progressItems_->back() == item;
}

void ORLFProgressIndicator::updateDisplayTimer() {
  onSharedQueue([&] { armDisplayTimer(); });
}

/// On the shared queue.
void ORLFProgressIndicator::armDisplayTimer() {
  if (displayTimer_ || displayTimerCounter_ != 0) return;
  displayTimer_ = NSTimer::timerWithTimeInterval(
      {.timeInterval = kDisplayInterval,
       .target = self(),
       .selector = NSSelectorOf<&ORLFProgressIndicator::updateDisplayValues>("updateDisplayValues"),
       .userInfo = nullptr,
       .repeats = false});
  NSRunLoop::mainRunLoop()->addTimer(displayTimer_, NSRunLoopCommonModes);
}

void ORLFProgressIndicator::stopDisplayTimer() {
  const auto indicator = self();  // the timer may be the last to hold it
  std::shared_ptr<NSTimer> stopped;
  onSharedQueue([&] {
    --displayTimerCounter_;
    if (displayTimer_) displayTimer_->invalidate();
    stopped.swap(displayTimer_);
  });
}

void ORLFProgressIndicator::startDisplayTimer() {
  bool isLastHold = false;
  onSharedQueue([&] {
    if (displayTimerCounter_ < 0) isLastHold = ++displayTimerCounter_ == 0;
  });
  if (isLastHold) updateDisplayTimer();
}

void ORLFProgressIndicator::updateDisplayValues() {
  const auto indicator = self();  // the timer may be the last to hold it
  Item last;
  std::shared_ptr<NSTimer> fired;
  onSharedQueue([&] {
    if (progressItems_ && !progressItems_->empty()) last = progressItems_->back();
    fired.swap(displayTimer_);
  });
  updateDisplayValuesWithItem(last);
}

void ORLFProgressIndicator::updateDisplayValuesWithItem(const Item& item) {
  const auto indicator = self();  // who is told may let go of the last that holds it
  if (item) {
    {
      const ProgressTreeGuard guard;
      setIndeterminate(item->currentIndeterminate());
      setMinValue(item->currentMinValue());
      setMaxValue(item->currentMaxValue());
      setCurrentValue(item->currentValue());
      setMessage(item->currentMessage());
    }
    setVisible(true);
  } else {
    setVisible(false);
    setMessage(std::nullopt);
    setMinValue(0);
    setMaxValue(0);
    setCurrentValue(0);
    setIndeterminate(true);
  }
  if (const auto told = delegate()) told->progressIndicatorDidChange(indicator);
}

void ORLFProgressIndicator::progressValuesDidChangeForItem(const Item& item) {
  const ProgressTreeGuard guard;
  // In one turn of the queue: this is what an update costs.
  onSharedQueue([&] {
    if (isLast(item)) armDisplayTimer();
  });
}

void ORLFProgressIndicator::currentProgressWillChangeForItem(const Item& item) {
  const ProgressTreeGuard guard;
  if (!isProgressItemVisible(item)) return;
  stopDisplayTimer();
  const std::weak_ptr<ORLFProgressIndicator> weak = self();
  dispatch_async(dispatch_get_main_queue(), [weak, item] {
    const auto indicator = weak.lock();
    if (!indicator) return;
    const HoldEnd end(weak);
    indicator->updateDisplayValuesWithItem(item);
  });
}

void ORLFProgressIndicator::progressValuesWillChangeForItem(const Item& /*item*/) {}

void ORLFProgressIndicator::currentProgressDidChangeForItem(const Item& /*item*/) {}

const NSKeyTable& ORLFProgressIndicator::keyTable() const {
  using Indicator = ORLFProgressIndicator;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {
          NSKey::readWrite<&Indicator::visible, &Indicator::setVisible>("visible"),
          NSKey::readWrite<&Indicator::indeterminate, &Indicator::setIndeterminate>(
              "indeterminate"),
          NSKey::readWrite<&Indicator::currentValue, &Indicator::setCurrentValue>("currentValue"),
          NSKey::readWrite<&Indicator::minValue, &Indicator::setMinValue>("minValue"),
          NSKey::readWrite<&Indicator::maxValue, &Indicator::setMaxValue>("maxValue"),
          NSKey::readWrite<&Indicator::message, &Indicator::setMessage>("message"),
          NSKey::readOnly<&Indicator::normalizedValue>("normalizedValue",
                                                       {"currentValue", "minValue", "maxValue"}),
          NSKey::readOnly<&Indicator::displayTimerCounter>("displayTimerCounter"),
      });
  return table;
}

}  // namespace ORLFoundation
