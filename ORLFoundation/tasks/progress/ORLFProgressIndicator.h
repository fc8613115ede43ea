/// The model behind a progress display. It lists root items, of which the one added last is on
/// show, and copies what that one shows at a pace for eyes: at most once in 0.01 second, and not
/// for 0.25 second after the thing shown has changed. One delegate is told after each copy, on the
/// main thread. Items may be updated on any thread, as often as one likes.
///
///     struct Bar : ORLFProgressIndicatorDelegate {
///       void progressIndicatorDidChange(const std::shared_ptr<ORLFProgressIndicator>& indicator)
///           override {
///         if (indicator->visible()) show(indicator->normalizedValue(), indicator->message());
///       }
///     };
///     const auto indicator = std::make_shared<ORLFProgressIndicator>();
///     const auto bar = std::make_shared<Bar>();
///     indicator->setDelegate(bar);
///     indicator->displayProgressItem(item);
///     while (!job->isFinished()) pumpMainQueue(0.1);
///
/// Any thread may call everything, but the display belongs to the main thread:
/// `updateDisplayValues` and `updateDisplayValuesWithItem` run there. Under the tree's lock
/// (ORLFProgressItem.h) the indicator enters `sharedProgressIndicatorQueue`, never the other way
/// round: work on that queue takes no lock but those of a timer and of the run loop for it, and no
/// item or indicator is destroyed there.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/tasks/progress/ORLFProgressObservation.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation {

class NSTimer;
class ORLFProgressIndicator;

class ORLFProgressIndicatorDelegate {
 public:
  virtual ~ORLFProgressIndicatorDelegate() = default;
  /// `progressIndicatorDidChange:`  The indicator's values are new, or may be: it does not compare.
  virtual void progressIndicatorDidChange(
      const std::shared_ptr<ORLFProgressIndicator>& indicator) = 0;
};

class ORLFProgressIndicator : public NSObject, public ORLFProgressObservation {
 public:
  using Items = std::vector<Item>;

  ORLFProgressIndicator() = default;
  /// Sets `currentIndicator` nil on every item of the list, in order. A pending update or an item
  /// that names the indicator keeps it alive.
  ~ORLFProgressIndicator() override;

  /// `sharedProgressIndicatorQueue`  The one serial queue of all indicators,
  /// "com.orlsoftware.foundation.ORLFProgressIndicator".
  [[nodiscard]] static const dispatch_queue_t& sharedProgressIndicatorQueue();

  /// `visible`, `indeterminate`, `currentValue`, `minValue`, `maxValue`, `message`  What to draw,
  /// as of the last update: false, 0 and nil before the first. `visible` says whether there is
  /// something to draw; without an item the indicator is indeterminate.
  [[nodiscard]] bool visible() const noexcept { return visible_; }
  void setVisible(bool value);
  [[nodiscard]] bool indeterminate() const noexcept { return indeterminate_; }
  void setIndeterminate(bool value);
  [[nodiscard]] double currentValue() const noexcept { return currentValue_; }
  void setCurrentValue(double value);
  [[nodiscard]] double minValue() const noexcept { return minValue_; }
  void setMinValue(double value);
  [[nodiscard]] double maxValue() const noexcept { return maxValue_; }
  void setMaxValue(double value);
  [[nodiscard]] std::optional<std::string> message() const;
  void setMessage(std::optional<std::string> value);
  /// `normalizedValue`  The value in parts of maximum less minimum, 0 where these are equal. The
  /// minimum is not taken off the value: 15 between 10 and 20 is 1.5. Required.
  [[nodiscard]] double normalizedValue() const noexcept;

  /// `delegate`, `setDelegate:`  Held weakly.
  [[nodiscard]] std::shared_ptr<ORLFProgressIndicatorDelegate> delegate() const;
  void setDelegate(const std::shared_ptr<ORLFProgressIndicatorDelegate>& value);

  /// `progressItems`  The list, oldest first; nil until the first item is displayed.
  [[nodiscard]] std::optional<Items> progressItems() const;
  /// `displayTimer`  The update that is armed; null for none.
  [[nodiscard]] std::shared_ptr<NSTimer> displayTimer() const;
  /// `displayTimerCounter`  0, or, while the display is held, less by one for each hold.
  [[nodiscard]] std::int64_t displayTimerCounter() const;

  /// `displayProgressItem:`  Lists the item on top of the others, with the next update; leaves it
  /// where its `currentIndicator` is the receiver. It leaves its old place first: another
  /// indicator, or its parent's children, to which it goes on reporting.
  void displayProgressItem(const Item& item);
  /// `removeProgressItem:`  Takes it off; its last values stay on show for 0.25 second if they
  /// were. Ignores an item whose `currentIndicator` is another.
  void removeProgressItem(const Item& item);
  /// `isDisplayingProgressItem:`, `isProgressItemVisible:`  Whether the list holds the item, and
  /// whether it is the last there; false for nil.
  [[nodiscard]] bool isDisplayingProgressItem(const Item& item) const;
  [[nodiscard]] bool isProgressItemVisible(const Item& item) const;

  /// `updateDisplayTimer`  Arms an update in 0.01 second, in the common modes of the main run loop,
  /// unless one is armed or the display is held. An armed update keeps the indicator alive.
  void updateDisplayTimer();
  /// `stopDisplayTimer`  Holds the display, once more if it is held; an armed update is dropped.
  void stopDisplayTimer();
  /// `startDisplayTimer`  Ends one hold; the last one that ends arms an update. Nothing happens
  /// without a hold.
  void startDisplayTimer();
  /// `updateDisplayValues`  The armed update: shows the last item of the list.
  void updateDisplayValues();
  /// `updateDisplayValuesWithItem:`  Copies what the item shows, nil for the idle state, and tells
  /// the delegate.
  void updateDisplayValuesWithItem(const Item& item);

  /// Arms an update if the item is visible.
  void progressValuesDidChangeForItem(const Item& item) override;
  /// Holds the display if the item is visible: its new values are shown at once, from the main
  /// queue, and 0.25 second later, counted from the end of the delegate's call, the hold ends.
  void currentProgressWillChangeForItem(const Item& item) override;
  /// Nothing.
  void progressValuesWillChangeForItem(const Item& item) override;
  void currentProgressDidChangeForItem(const Item& item) override;

  [[nodiscard]] std::string className() const override { return "ORLFProgressIndicator"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  [[nodiscard]] std::shared_ptr<ORLFProgressIndicator> self() const;
  [[nodiscard]] bool isLast(const Item& item) const;
  void armDisplayTimer();

  std::atomic<bool> visible_{false};
  std::atomic<bool> indeterminate_{false};
  std::atomic<double> currentValue_{0};
  std::atomic<double> minValue_{0};
  std::atomic<double> maxValue_{0};

  mutable std::mutex fieldLock_;  // of the next two
  std::optional<std::string> message_;
  std::weak_ptr<ORLFProgressIndicatorDelegate> delegate_;

  // The shared queue guards these.
  std::shared_ptr<NSTimer> displayTimer_;
  std::int64_t displayTimerCounter_ = 0;
  std::optional<Items> progressItems_;
};

}  // namespace ORLFoundation
