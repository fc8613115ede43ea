/// How a node of progress hears of changes below it. There are two channels, each with a moment
/// before and one after a change: the values that a node shows, and which child it shows. Items
/// pass on what their current child reports; an indicator listens at the top.
///
/// All four are called on the thread that makes the change, while it holds the lock of the tree
/// (ORLFProgressItem.h).
#pragma once

#include <memory>

namespace ORLFoundation {

class ORLFProgressItem;

class ORLFProgressObservation {
 public:
  using Item = std::shared_ptr<ORLFProgressItem>;

  virtual ~ORLFProgressObservation() = default;

  /// `progressValuesWillChangeForItem:`
  virtual void progressValuesWillChangeForItem(const Item& item) = 0;
  /// `progressValuesDidChangeForItem:`
  virtual void progressValuesDidChangeForItem(const Item& item) = 0;
  /// `currentProgressDidChangeForItem:`
  virtual void currentProgressDidChangeForItem(const Item& item) = 0;
  /// `currentProgressWillChangeForItem:`
  virtual void currentProgressWillChangeForItem(const Item& item) = 0;
};

}  // namespace ORLFoundation
