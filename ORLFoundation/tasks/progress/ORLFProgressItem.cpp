#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/tasks/progress/ORLFProgressIndicator.h>
#include <ORLFoundation/tasks/progress/internal/ProgressTreeLock.h>
#include <ORLFoundation/tasks/progress/internal/ProgressUnits.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace ORLFoundation {
namespace {

using internal::progress::kProgressScale;
using internal::progress::ProgressTreeGuard;
using internal::progress::wholeUnits;

/// Tells our observations from others by its address.
constexpr char kBoundProgressContext[] = "NSBoundProgressContext";
constexpr std::array<std::string_view, 3> kBoundKeys{"fractionCompleted", "localizedDescription",
                                                     "indeterminate"};
constexpr NSUInteger kBoundOptions =
    NSKeyValueObservingOptionNew | NSKeyValueObservingOptionInitial;

constexpr auto kValuesWill = &ORLFProgressObservation::progressValuesWillChangeForItem;
constexpr auto kValuesDid = &ORLFProgressObservation::progressValuesDidChangeForItem;
constexpr auto kCurrentWill = &ORLFProgressObservation::currentProgressWillChangeForItem;
constexpr auto kCurrentDid = &ORLFProgressObservation::currentProgressDidChangeForItem;

}  // namespace

namespace internal::progress {

ProgressTreeLock& progressTreeLock() noexcept {
  static ProgressTreeLock lock;
  return lock;
}

}  // namespace internal::progress

/// Holds the tree's lock, and the item until that is open again: who is told of a change may let go
/// of the last that holds it.
class ORLFProgressItem::Changing {
 public:
  explicit Changing(const ORLFProgressItem& item) { item_ = item.self(); }
  [[nodiscard]] const Item& item() const noexcept { return item_; }

 private:
  Item item_;
  const ProgressTreeGuard guard_;
};

ORLFProgressItem::ORLFProgressItem()
    : observerProgress_(NSProgress::discreteProgressWithTotalUnitCount(kProgressScale)) {}

ORLFProgressItem::Item ORLFProgressItem::self() const {
  return std::static_pointer_cast<ORLFProgressItem>(receiverOrReference());
}

double ORLFProgressItem::currentValue() const {
  const ProgressTreeGuard guard;
  const Item child = currentChild_.lock();
  return child ? child->currentValue() : value();
}

double ORLFProgressItem::currentMinValue() const {
  const ProgressTreeGuard guard;
  const Item child = currentChild_.lock();
  return child ? child->currentMinValue() : minValue();
}

double ORLFProgressItem::currentMaxValue() const {
  const ProgressTreeGuard guard;
  const Item child = currentChild_.lock();
  return child ? child->currentMaxValue() : maxValue();
}

std::optional<std::string> ORLFProgressItem::currentMessage() const {
  const ProgressTreeGuard guard;
  const Item child = currentChild_.lock();
  return child ? child->currentMessage() : message_;
}

bool ORLFProgressItem::currentIndeterminate() const {
  const ProgressTreeGuard guard;
  const Item child = currentChild_.lock();
  return child ? child->currentIndeterminate() : isIndeterminate_;
}

void ORLFProgressItem::setValue(double value) {
  changeValue("value", [&] { value_.store(value, std::memory_order_relaxed); });
}

void ORLFProgressItem::setMinValue(double value) {
  changeValue("minValue", [&] { minValue_.store(value, std::memory_order_relaxed); });
}

void ORLFProgressItem::setMaxValue(double value) {
  changeValue("maxValue", [&] { maxValue_.store(value, std::memory_order_relaxed); });
}

std::optional<std::string> ORLFProgressItem::message() const {
  const ProgressTreeGuard guard;
  return message_;
}

void ORLFProgressItem::setMessage(std::optional<std::string> value) {
  const Changing self(*this);
  if (value == message_) return;
  report(kValuesWill, self.item());
  changeValue("message", [&] { message_ = value; });
  observerProgress_->setLocalizedDescription(std::move(value));
  report(kValuesDid, self.item());
}

bool ORLFProgressItem::isIndeterminate() const {
  const ProgressTreeGuard guard;
  return isIndeterminate_;
}

void ORLFProgressItem::setIndeterminate(bool value) {
  const Changing self(*this);
  if (value == isIndeterminate_) return;
  report(kValuesWill, self.item());
  changeValue("indeterminate", [&] { isIndeterminate_ = value; });
  observerProgress_->setTotalUnitCount(value ? -1 : kProgressScale);
  report(kValuesDid, self.item());
}

std::shared_ptr<ORLFProgressIndicator> ORLFProgressItem::currentIndicator() const {
  const ProgressTreeGuard guard;
  return currentIndicator_;
}

void ORLFProgressItem::setCurrentIndicator(std::shared_ptr<ORLFProgressIndicator> value) {
  // Declared before the lock, `value` takes the old indicator out of it.
  const Changing self(*this);
  if (value == currentIndicator_) return;
  report(kValuesWill, self.item());
  changeValue("currentIndicator", [&] { currentIndicator_.swap(value); });
  report(kValuesDid, self.item());
}

void ORLFProgressItem::store(double value) {
  changeValue("value", [&] {
    const double minimum = minValue();
    const double maximum = maxValue();
    const double raised = value < minimum ? minimum : value;
    value_.store(maximum < raised ? maximum : raised, std::memory_order_relaxed);
  });
}

void ORLFProgressItem::commit(const Item& item) {
  const double maximum = maxValue();
  // Divided first: 33.3 of 100 is 332 thousandths.
  const double share = value() / maximum;
  observerProgress_->setCompletedUnitCount(
      maximum > 0 ? wholeUnits(share * static_cast<double>(kProgressScale)) : 0);
  observerProgress_->setTotalUnitCount(kProgressScale);
  report(kValuesDid, item);
}

void ORLFProgressItem::updateValue(double value, double max) {
  const Changing self(*this);
  if (value == this->value() && max == maxValue()) return;
  report(kValuesWill, self.item());
  setMaxValue(max > 0 ? max : 0);
  store(value);
  commit(self.item());
}

void ORLFProgressItem::updateValue(double value) {
  const Changing self(*this);
  if (value == this->value()) return;
  report(kValuesWill, self.item());
  store(value);
  commit(self.item());
}

void ORLFProgressItem::updateValueByIncrement(double amount) {
  const Changing self(*this);
  report(kValuesWill, self.item());
  store(amount + value());
  commit(self.item());
}

std::vector<ORLFProgressItem::Item> ORLFProgressItem::children() const {
  const ProgressTreeGuard guard;
  return children_;
}

ORLFProgressItem::Item ORLFProgressItem::parent() const {
  const ProgressTreeGuard guard;
  return parent_.lock();
}

ORLFProgressItem::Item ORLFProgressItem::currentChild() const {
  const ProgressTreeGuard guard;
  return currentChild_.lock();
}

ORLFProgressItem::Item ORLFProgressItem::childProgressItemWithTotalCount(double count) {
  return childProgressItemWithTotalCount(count, 1);
}

ORLFProgressItem::Item ORLFProgressItem::childProgressItemWithTotalCount(double count,
                                                                         double pendingPercentage) {
  auto child = std::make_shared<ORLFProgressItem>();
  child->updateValue(0, count > 0 ? count : 0);
  const Changing self(*this);
  addProgressItem(*observerProgress_, child, pendingPercentage);
  child->changeValue("parent", [&] { child->parent_ = self.item(); });
  changeValue("children", [&] { children_.push_back(child); });
  return child;
}

void ORLFProgressItem::makeChildCurrent(const Item& child) {
  const Changing self(*this);
  if (child && std::find(children_.begin(), children_.end(), child) == children_.end()) return;
  if (child == currentChild_.lock()) return;
  report(kCurrentWill, self.item());
  changeValue("currentChild", [&] { currentChild_ = child; });
  report(kCurrentDid, self.item());
}

void ORLFProgressItem::addToIndicator() {
  const Item item = self();
  const ProgressTreeGuard guard;
  if (const Item parent = parent_.lock()) return parent->makeChildCurrent(item);
  const auto indicator = currentIndicator_;
  if (indicator && !indicator->isDisplayingProgressItem(item)) indicator->displayProgressItem(item);
}

void ORLFProgressItem::removeFromIndicator() {
  const Item item = self();  // outlives the guard: the list may be the only one to hold it
  const ProgressTreeGuard guard;
  if (const Item parent = parent_.lock()) {
    parent->makeChildCurrent(nullptr);
    auto& siblings = parent->children_;
    if (std::find(siblings.begin(), siblings.end(), item) != siblings.end())
      parent->changeValue("children", [&] { std::erase(siblings, item); });
    return;
  }
  if (const auto indicator = currentIndicator_) indicator->removeProgressItem(item);
}

void ORLFProgressItem::report(Notice notice, const Item& item) {
  if (const Item parent = parent_.lock()) return ((*parent).*notice)(item);
  if (const auto indicator = currentIndicator_) ((*indicator).*notice)(item);
}

void ORLFProgressItem::progressValuesWillChange() {
  const Changing self(*this);
  report(kValuesWill, self.item());
}

void ORLFProgressItem::progressValuesDidChange() {
  const Changing self(*this);
  report(kValuesDid, self.item());
}

void ORLFProgressItem::currentProgressWillChange() {
  const Changing self(*this);
  report(kCurrentWill, self.item());
}

void ORLFProgressItem::currentProgressDidChange() {
  const Changing self(*this);
  report(kCurrentDid, self.item());
}

void ORLFProgressItem::progressValuesWillChangeForItem(const Item& item) {
  const ProgressTreeGuard guard;
  if (item && item == currentChild_.lock()) progressValuesWillChange();
}

void ORLFProgressItem::progressValuesDidChangeForItem(const Item& item) {
  const ProgressTreeGuard guard;
  if (item && item == currentChild_.lock()) progressValuesDidChange();
}

void ORLFProgressItem::currentProgressDidChangeForItem(const Item& item) {
  const ProgressTreeGuard guard;
  if (item && item == currentChild_.lock()) currentProgressDidChange();
}

void ORLFProgressItem::currentProgressWillChangeForItem(const Item& item) {
  const ProgressTreeGuard guard;
  if (item && item == currentChild_.lock()) currentProgressWillChange();
}

std::shared_ptr<NSProgress> ORLFProgressItem::boundProgress() const {
  const std::lock_guard guard(boundProgressLock_);
  return boundProgress_;
}

void ORLFProgressItem::setBoundProgress(std::shared_ptr<NSProgress> value) {
  changeValue("boundProgress", [&] {
    const std::lock_guard guard(boundProgressLock_);
    boundProgress_.swap(value);
  });
}

void ORLFProgressItem::bindToProgress(const std::shared_ptr<NSProgress>& progress) {
  const Item item = self();  // outlives the guard: who is told may let go of the item
  const std::lock_guard guard(bindingLock_);
  if (!progress || boundProgress()) return;
  for (const std::string_view key : kBoundKeys)
    progress->addObserver(item, key, kBoundOptions, kBoundProgressContext);
  // Last: the first notices, which come at once, find no progress to read.
  setBoundProgress(progress);
}

void ORLFProgressItem::unbindFromProgress(const std::shared_ptr<NSProgress>& progress) {
  const Item item = self();  // outlives the guard: who is told may let go of the item
  const std::lock_guard guard(bindingLock_);
  if (!progress || progress != boundProgress()) return;
  for (const std::string_view key : kBoundKeys)
    progress->removeObserver(*item, key, kBoundProgressContext);
  setBoundProgress(nullptr);
}

void ORLFProgressItem::observeValueForKeyPath(std::string_view keyPath, NSObject& ofObject,
                                              const NSKeyValueChange& change, const void* context) {
  if (context != kBoundProgressContext)
    return NSObject::observeValueForKeyPath(keyPath, ofObject, change, context);
  const std::lock_guard guard(bindingLock_);
  const auto bound = boundProgress();
  updateValue(bound ? bound->fractionCompleted() : 0, 1);
  setMessage(bound ? bound->localizedDescription() : std::nullopt);
  setIndeterminate(bound && bound->isIndeterminate());
}

void addProgressItem(NSProgress& progress, const std::shared_ptr<ORLFProgressItem>& item,
                     double withPendingPercentage) {
  if (!item || item->parent()) return;
  // The two bounds stand the wrong way round: 1 for every percentage, not-a-number too. Required.
  const double atMostNothing = withPendingPercentage < 0 ? withPendingPercentage : 0;
  const double share = atMostNothing > 1 ? atMostNothing : 1;
  const auto total = static_cast<double>(progress.totalUnitCount());
  progress.addChild(item->observerProgress(), wholeUnits(total * share));
}

}  // namespace ORLFoundation
