/// A set of objects that it does not own, each once by identity: two equal objects are two members.
///
///     observers->addObject(observer);
///     ...
///     Observer::~Observer() { observers->removeObject(this); }
///
/// A member must be removed before it is destroyed. One that was not is no longer given out, but is
/// still counted until the set is emptied. Plain values have no identity and cannot be members. Not
/// safe on several threads.
#pragma once

#include <ORLFoundation/platform/object/NSSet.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ORLFoundation {

class ORLFNonretainingMutableCollection final : public NSMutableSet {
 public:
  ORLFNonretainingMutableCollection() = default;
  /// `initWithCapacity:`  The set grows as it needs, whatever the capacity.
  explicit ORLFNonretainingMutableCollection(NSUInteger /*capacity*/) {}

  /// `addObject:`  Raises `NSInvalidArgumentException` for nil and for a plain value.
  void addObject(const id& object) override;
  /// `removeObject:`
  void removeObject(const id& object) override;
  /// The same for an object in its destructor, of which no `id` can be made any more.
  void removeObject(const NSObject* object);
  void removeAllObjects() override;
  /// `count`
  [[nodiscard]] NSUInteger count() const noexcept override;
  /// `member:`  The object itself when it is a member, else nil.
  [[nodiscard]] id member(const id& object) const override;
  [[nodiscard]] std::vector<id> allObjects() const override;
  /// `objectEnumerator`  An `ORLFNonretainingMutableCollectionEnumerator`.
  [[nodiscard]] std::shared_ptr<NSEnumerator> objectEnumerator() const override;
  /// `countByEnumeratingWithState:objects:count:`
  NSUInteger countByEnumeratingWithState(NSFastEnumerationState& state,
                                         std::span<id> objects) const override;

  [[nodiscard]] std::string className() const override {
    return "ORLFNonretainingMutableCollection";
  }

 private:
  [[nodiscard]] NSMutableSet& realSet() const;

  /// The wrapped members; made when it is first asked for.
  mutable std::shared_ptr<NSMutableSet> realSet_;
};

}  // namespace ORLFoundation
