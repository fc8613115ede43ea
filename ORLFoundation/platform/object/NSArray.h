/// A list of values. An `NSArray` never changes; `NSMutableArray` does, and its copy is an
/// `NSArray` that no longer changes. nil cannot be a member (`NSNull` can): adding it raises
/// `NSInvalidArgumentException`.
#pragma once

#include <ORLFoundation/platform/object/NSCollection.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSIndexSet;

/// How the members of an array are visited; the bits combine.
enum NSEnumerationOptions : NSUInteger {
  NSEnumerationConcurrent = 1,  ///< On several threads at once, in no order.
  NSEnumerationReverse = 2,     ///< From the last member to the first.
};

class NSArray : public NSCollection {
 public:
  NSArray() = default;
  explicit NSArray(std::vector<id> members);
  /// `arrayWithObjects:`
  [[nodiscard]] static std::shared_ptr<NSArray> arrayWithObjects(std::initializer_list<id> members);

  [[nodiscard]] NSUInteger count() const noexcept override { return members_.size(); }
  /// `objectAtIndex:`  Raises `NSRangeException` beyond the end.
  [[nodiscard]] const id& objectAtIndex(NSUInteger index) const;
  /// `firstObject`, `lastObject`  nil when there is none.
  [[nodiscard]] id firstObject() const { return members_.empty() ? id() : members_.front(); }
  [[nodiscard]] id lastObject() const { return members_.empty() ? id() : members_.back(); }
  /// `containsObject:`, `indexOfObject:`  By equality; `NSNotFound` when it is absent.
  [[nodiscard]] bool containsObject(const id& object) const;
  [[nodiscard]] NSUInteger indexOfObject(const id& object) const;
  /// `indexOfObjectIdenticalTo:`  By identity; plain values are identical when they are equal.
  [[nodiscard]] NSUInteger indexOfObjectIdenticalTo(const id& object) const;
  /// Gets a member and its index. Setting `stop` ends the visit.
  using Visitor = std::function<void(const id& object, NSUInteger index, bool& stop)>;
  /// `enumerateObjectsWithOptions:usingBlock:`  Visits each member once; the block must not change
  /// the array. Once the block has stopped the visit, or has thrown, no further member is begun; of
  /// several exceptions on several threads one reaches the caller, after all threads are done.
  /// Concurrent visits have no order, reverse or not.
  void enumerateObjectsWithOptions(NSUInteger options, const Visitor& usingBlock) const;
  /// All members in order. Changing a mutable array ends references into it.
  [[nodiscard]] const std::vector<id>& members() const noexcept { return members_; }
  [[nodiscard]] auto begin() const noexcept { return members_.begin(); }
  [[nodiscard]] auto end() const noexcept { return members_.end(); }

  [[nodiscard]] std::string className() const override { return "NSArray"; }
  /// Equal members in the same order; a mutable array can equal an immutable one.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::string descriptionWithIndent(NSUInteger indent) const override;
  [[nodiscard]] bool isPropertyList() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

  /// `valueForKey:`  An array of the members' values, `NSNull` for nil; "@count" is the count.
  [[nodiscard]] id valueForKey(std::string_view key) const override;
  /// `setValue:forKey:`  Sets the value of every member that is an object.
  void setValueForKey(const id& value, std::string_view key) override;
  /// `valueForKeyPath:`  With the operators of internal/CollectionOperators.h ("@sum.amount").
  [[nodiscard]] id valueForKeyPath(std::string_view keyPath) const override;

 protected:
  std::vector<id> members_;
};

class NSMutableArray final : public NSArray {
 public:
  using NSArray::NSArray;

  /// `addObject:`
  void addObject(id object);
  /// `insertObject:atIndex:`  Raises `NSRangeException` beyond the count.
  void insertObject(id object, NSUInteger atIndex);
  /// `replaceObjectAtIndex:withObject:`
  void replaceObjectAtIndex(NSUInteger index, id withObject);
  /// `removeObjectAtIndex:`
  void removeObjectAtIndex(NSUInteger index);
  /// `removeObjectsAtIndexes:`  Raises `NSRangeException`, and removes nothing, when an index is
  /// beyond the end.
  void removeObjectsAtIndexes(const NSIndexSet& indexes);
  /// `removeObject:`  Every member that equals it. Taken by value: the argument may be a member,
  /// which moves while others are removed.
  void removeObject(id object);
  /// `removeAllObjects`
  void removeAllObjects() noexcept;

  [[nodiscard]] std::string className() const override { return "NSMutableArray"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
};

}  // namespace ORLFoundation
