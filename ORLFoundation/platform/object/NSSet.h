/// A set of values, each at most once by equality. Members are met in the order of their addition.
/// nil cannot be a member. A subclass that keeps its members elsewhere overrides the virtual
/// operations of its own; all others rest on them.
#pragma once

#include <ORLFoundation/platform/object/NSCollection.h>
#include <ORLFoundation/platform/object/NSEnumerator.h>
#include <ORLFoundation/platform/object/internal/IdTable.h>

#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSSet : public NSCollection {
 public:
  NSSet() = default;
  explicit NSSet(const std::vector<id>& members);
  /// `setWithObjects:`
  [[nodiscard]] static std::shared_ptr<NSSet> setWithObjects(std::initializer_list<id> members);

  [[nodiscard]] NSUInteger count() const noexcept override { return table_.count(); }
  /// `member:`  The member that equals the object; nil when there is none.
  [[nodiscard]] virtual id member(const id& object) const;
  /// `containsObject:`
  [[nodiscard]] bool containsObject(const id& object) const { return !member(object).isNil(); }
  /// `allObjects`
  [[nodiscard]] virtual std::vector<id> allObjects() const;
  /// `objectEnumerator`  Walks the members of this moment.
  [[nodiscard]] virtual std::shared_ptr<NSEnumerator> objectEnumerator() const;
  /// `countByEnumeratingWithState:objects:count:`  Fills the next members into `objects` and
  /// answers how many, 0 at the end. Raises `NSGenericException` when the set changed since the
  /// first call.
  virtual NSUInteger countByEnumeratingWithState(NSFastEnumerationState& state,
                                                 std::span<id> objects) const;
  /// `anyObject`  The first one; nil for an empty set.
  [[nodiscard]] id anyObject() const;

  [[nodiscard]] std::string className() const override { return "NSSet"; }
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// "{(\n    1,\n    2\n)}".
  [[nodiscard]] std::string descriptionWithIndent(NSUInteger indent) const override;
  /// false: property lists have no sets.
  [[nodiscard]] bool isPropertyList() const override { return false; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

  /// `valueForKey:`  The set of the members' values, nil left out.
  [[nodiscard]] id valueForKey(std::string_view key) const override;
  [[nodiscard]] id valueForKeyPath(std::string_view keyPath) const override;

 protected:
  internal::object::IdTable table_;
};

class NSMutableSet : public NSSet {
 public:
  using NSSet::NSSet;

  /// `addObject:`  A member that equals one in the set leaves the set as it is.
  virtual void addObject(const id& object);
  /// `removeObject:`
  virtual void removeObject(const id& object) { table_.remove(object); }
  /// `removeAllObjects`
  virtual void removeAllObjects() { table_.clear(); }

  [[nodiscard]] std::string className() const override { return "NSMutableSet"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
};

}  // namespace ORLFoundation
