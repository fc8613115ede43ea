/// A set of indexes, kept as ranges in ascending order, so that long runs cost nothing. An
/// `NSIndexSet` never changes; `NSMutableIndexSet` does. An index is at most `NSNotFound` - 1.
///
///     const auto indexes = std::make_shared<NSMutableIndexSet>();
///     indexes->addIndexesInRange({2, 3});
///     // "<NSMutableIndexSet: 0x55d0c8>[number of indexes: 3 (in 1 ranges), indexes: (2-4)]"
///     indexes->description();
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ORLFoundation {

class NSIndexSet : public NSObject {
 public:
  NSIndexSet() = default;
  /// `indexSetWithIndexesInRange:`  Raises `NSRangeException` for a range that ends beyond
  /// `NSNotFound`.
  explicit NSIndexSet(NSRange indexesInRange);
  /// `initWithIndexSet:`
  NSIndexSet(const NSIndexSet& other) : ranges_(other.ranges_) {}
  NSIndexSet& operator=(const NSIndexSet&) = delete;

  /// `count`
  [[nodiscard]] NSUInteger count() const noexcept;
  /// `containsIndex:`
  [[nodiscard]] bool containsIndex(NSUInteger index) const noexcept;
  /// `firstIndex`, `lastIndex`  `NSNotFound` for an empty set.
  [[nodiscard]] NSUInteger firstIndex() const noexcept;
  [[nodiscard]] NSUInteger lastIndex() const noexcept;
  /// `enumerateIndexesUsingBlock:`  In ascending order, until the block sets its flag.
  void enumerateIndexesUsingBlock(
      const std::function<void(NSUInteger index, bool& stop)>& block) const;
  /// The runs of indexes in ascending order, none empty, no two of them touching.
  [[nodiscard]] const std::vector<NSRange>& ranges() const noexcept { return ranges_; }

  [[nodiscard]] std::string className() const override { return "NSIndexSet"; }
  /// Equal indexes; a mutable set can equal an immutable one.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// "<NSIndexSet: 0x55d0c8>[number of indexes: 4 (in 2 ranges), indexes: (1 3-5)]".
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<NSIndexSet>(*this); });
  }
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

 protected:
  std::vector<NSRange> ranges_;
};

class NSMutableIndexSet final : public NSIndexSet {
 public:
  using NSIndexSet::NSIndexSet;
  explicit NSMutableIndexSet(const NSIndexSet& other) : NSIndexSet(other) {}

  /// `addIndex:`  Raises `NSRangeException` for `NSNotFound` and above.
  void addIndex(NSUInteger index);
  /// `addIndexesInRange:`
  void addIndexesInRange(NSRange range);
  /// `removeIndex:`
  void removeIndex(NSUInteger index) { removeIndexesInRange({index, 1}); }
  /// `removeIndexesInRange:`  Indexes that are not there are passed over.
  void removeIndexesInRange(NSRange range);

  [[nodiscard]] std::string className() const override { return "NSMutableIndexSet"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
};

}  // namespace ORLFoundation
