/// A node in a tree of progress. A job holds a root, reports a value against a maximum, and opens
/// children for its parts. A node shows its own values, or those of the child that it made current,
/// and so on down: shares are not added up here. They are in a second tree of `NSProgress` objects,
/// one for each item, in thousandths.
///
///     const auto root = std::make_shared<ORLFProgressItem>();
///     indicator->displayProgressItem(root);
///     const auto part = root->childProgressItemWithTotalCount(200);
///     part->addToIndicator();                   // the root shows its child from now on
///     part->setMessage("Reading");
///     for (int row = 0; row < 200; ++row) part->updateValueByIncrement(1);
///     part->removeFromIndicator();
///     indicator->removeProgressItem(root);
///
/// Any thread may call everything, and who is told of a change may let go of what changes. One
/// recursive lock, that of the tree, serves all items of the
/// process: it is held over each update and all notices that the update sends upward, those of
/// observed keys included. Binding has a lock of its own in each item, held while an outside
/// progress reports. The order is: binding lock, tree lock, queue of the indicators; whoever is
/// called under one of them must not wait for a thread that may want one further left. Binding to
/// the `observerProgress` of an item turns the order round, since that reports under the tree lock:
/// two threads that do so can wait for each other for ever. Bind to progress that no item owns.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/operation/NSProgress.h>
#include <ORLFoundation/tasks/progress/ORLFProgressObservation.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace ORLFoundation {

class ORLFProgressIndicator;

class ORLFProgressItem : public NSObject, public ORLFProgressObservation {
 public:
  /// `init`  A root at 0 of 0, without a message.
  ORLFProgressItem();

  /// `currentValue`, `currentMinValue`, `currentMaxValue`, `currentMessage`,
  /// `currentIndeterminate`  What the node shows: its own, or the current child's. A child without
  /// a message hides the parent's.
  [[nodiscard]] double currentValue() const;
  [[nodiscard]] double currentMinValue() const;
  [[nodiscard]] double currentMaxValue() const;
  [[nodiscard]] std::optional<std::string> currentMessage() const;
  [[nodiscard]] bool currentIndeterminate() const;

  /// `value`, `minValue`, `maxValue`  The node's own, without a lock. The setters store what they
  /// are given and report nothing upward; the operations below keep the values in order.
  [[nodiscard]] double value() const noexcept { return value_; }
  void setValue(double value);
  [[nodiscard]] double minValue() const noexcept { return minValue_; }
  void setMinValue(double value);
  [[nodiscard]] double maxValue() const noexcept { return maxValue_; }
  void setMaxValue(double value);

  /// `message`, `setMessage:`  Nothing happens for an equal text.
  [[nodiscard]] std::optional<std::string> message() const;
  void setMessage(std::optional<std::string> value);
  /// `isIndeterminate`, `setIndeterminate:`  No fraction can be told. The `observerProgress` has a
  /// total of -1 then, until the next update, which puts the 1000 back and leaves this flag.
  [[nodiscard]] bool isIndeterminate() const;
  void setIndeterminate(bool value);
  /// `currentIndicator`, `setCurrentIndicator:`  The indicator that lists the item. The notice
  /// before a change goes to the old one, the notice after it to the new one. An item and the
  /// indicator that lists it hold each other: take items off it, or set nil, when they have ended.
  [[nodiscard]] std::shared_ptr<ORLFProgressIndicator> currentIndicator() const;
  void setCurrentIndicator(std::shared_ptr<ORLFProgressIndicator> value);

  /// `updateValue:max:`  Nothing happens where both are what they were. A maximum that is not above
  /// 0 becomes 0, not-a-number too. The value is raised to `minValue`, then cut to the maximum;
  /// not-a-number stays, and counts as nothing done. The units of `observerProgress` are
  /// value / maximum x 1000 in doubles, toward zero, and the nearest that 64 bits hold; 0 without a
  /// maximum.
  void updateValue(double value, double max);
  /// `updateValue:`  The same under the present maximum. A value out of range is compared with the
  /// cut one that was stored, so that each repetition reports again.
  void updateValue(double value);
  /// `updateValueByIncrement:`  Reports an increment of 0 too.
  void updateValueByIncrement(double amount);

  /// `children`  In the order in which they were opened, without those that were removed.
  [[nodiscard]] std::vector<Item> children() const;
  /// `parent`, `currentChild`  Held weakly. A child that was removed keeps its parent.
  [[nodiscard]] Item parent() const;
  [[nodiscard]] Item currentChild() const;
  /// `childProgressItemWithTotalCount:`, `childProgressItemWithTotalCount:pendingPercentage:`  A
  /// new child at 0 of the count, 0 for less; not current yet. It counts for the whole of
  /// `observerProgress`, whatever the percentage: this is required.
  [[nodiscard]] Item childProgressItemWithTotalCount(double count);
  [[nodiscard]] Item childProgressItemWithTotalCount(double count, double pendingPercentage);
  /// `makeChildCurrent:`  Null shows the node's own values. One that is no child, or is current
  /// already, changes nothing and reports nothing.
  void makeChildCurrent(const Item& child);

  /// `addToIndicator`  Makes a child current in its parent; shows a root on `currentIndicator`,
  /// which has listed it already unless somebody set it by hand.
  void addToIndicator();
  /// `removeFromIndicator`  Takes a child from its parent, which shows no child afterwards,
  /// whichever was current; a root from its indicator.
  void removeFromIndicator();

  /// `progressValuesWillChange`, `progressValuesDidChange`, `currentProgressWillChange`,
  /// `currentProgressDidChange`  Report to the parent, or, at a root, to the indicator.
  void progressValuesWillChange();
  void progressValuesDidChange();
  void currentProgressWillChange();
  void currentProgressDidChange();
  /// What the current child reports climbs on; what another child reports ends here.
  void progressValuesWillChangeForItem(const Item& item) override;
  void progressValuesDidChangeForItem(const Item& item) override;
  void currentProgressDidChangeForItem(const Item& item) override;
  void currentProgressWillChangeForItem(const Item& item) override;

  /// `observerProgress`  The node in the tree of fractions, never null; shared with no other item.
  [[nodiscard]] const std::shared_ptr<NSProgress>& observerProgress() const noexcept {
    return observerProgress_;
  }
  /// `boundProgress`  The outside progress that drives the item.
  [[nodiscard]] std::shared_ptr<NSProgress> boundProgress() const;
  /// `bindToProgress:`  From the progress's next change on its fraction is the value, of a maximum
  /// of 1; its description and whether it is indeterminate come with it. Until then the item stands
  /// at 0 of 1. An item that is bound ignores any other progress. It must be unbound before it
  /// goes.
  void bindToProgress(const std::shared_ptr<NSProgress>& progress);
  /// `unbindFromProgress:`  Ignores a progress that the item is not bound to.
  void unbindFromProgress(const std::shared_ptr<NSProgress>& progress);
  void observeValueForKeyPath(std::string_view keyPath, NSObject& ofObject,
                              const NSKeyValueChange& change, const void* context) override;

  // The keys whose observers are told with each of these keys. The last three are declared for the
  // plain keys and not for "currentValue" and the like: this is required.
  using KeyNames = std::set<std::string>;
  [[nodiscard]] static KeyNames keyPathsForValuesAffectingCurrentMessage();
  [[nodiscard]] static KeyNames keyPathsForValuesAffectingCurrentIndeterminate();
  [[nodiscard]] static KeyNames keyPathsForValuesAffectingValue();
  [[nodiscard]] static KeyNames keyPathsForValuesAffectingMinValue();
  [[nodiscard]] static KeyNames keyPathsForValuesAffectingMaxValue();

  [[nodiscard]] std::string className() const override { return "ORLFProgressItem"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  using Notice = void (ORLFProgressObservation::*)(const Item& item);
  class Changing;

  [[nodiscard]] Item self() const;
  void report(Notice notice, const Item& item);
  void store(double value);
  void commit(const Item& item);
  void setBoundProgress(std::shared_ptr<NSProgress> value);

  // The tree lock guards what follows; the three numbers can be read without it.
  std::atomic<double> value_{0};
  std::atomic<double> minValue_{0};
  std::atomic<double> maxValue_{0};
  bool isIndeterminate_ = false;
  std::optional<std::string> message_;
  std::shared_ptr<ORLFProgressIndicator> currentIndicator_;
  std::vector<Item> children_;
  std::weak_ptr<ORLFProgressItem> parent_;
  std::weak_ptr<ORLFProgressItem> currentChild_;
  const std::shared_ptr<NSProgress> observerProgress_;

  std::recursive_mutex bindingLock_;
  mutable std::mutex boundProgressLock_;
  std::shared_ptr<NSProgress> boundProgress_;
};

/// `addProgressItem:withPendingPercentage:`  Has an item without a parent count for the whole total
/// of a progress, whatever the percentage: this is required. An item with a parent is left alone;
/// one whose progress counts elsewhere raises `NSInvalidArgumentException`.
void addProgressItem(NSProgress& progress, const std::shared_ptr<ORLFProgressItem>& item,
                     double withPendingPercentage);

}  // namespace ORLFoundation
