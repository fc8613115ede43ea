/// A set of values, each at most once by equality. Members are met in the order of their addition.
/// nil cannot be a member.
#pragma once

#include <ORLFoundation/platform/object/NSCollection.h>
#include <ORLFoundation/platform/object/internal/IdTable.h>

#include <initializer_list>
#include <memory>
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
  /// `containsObject:`
  [[nodiscard]] bool containsObject(const id& object) const { return table_.find(object); }
  /// `allObjects`
  [[nodiscard]] std::vector<id> allObjects() const;
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
  internal::IdTable table_;
};

class NSMutableSet final : public NSSet {
 public:
  using NSSet::NSSet;

  /// `addObject:`  A member that equals one in the set leaves the set as it is.
  void addObject(const id& object);
  /// `removeObject:`
  void removeObject(const id& object) { table_.remove(object); }
  /// `removeAllObjects`
  void removeAllObjects() { table_.clear(); }

  [[nodiscard]] std::string className() const override { return "NSMutableSet"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
};

}  // namespace ORLFoundation
