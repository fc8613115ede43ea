/// A dictionary that does not own its values. Keys are ordinary keys.
///
/// A value must be removed before it is destroyed. One that was not reads as nil, but is still
/// counted until its key is removed. Plain values have no identity and cannot be values here. Not
/// safe on several threads.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>

#include <memory>
#include <span>
#include <string>

namespace ORLFoundation {

class ORLFNonretainingMutableMap final : public NSMutableDictionary {
 public:
  ORLFNonretainingMutableMap() = default;
  /// `initWithCapacity:`  The map grows as it needs, whatever the capacity.
  explicit ORLFNonretainingMutableMap(NSUInteger /*capacity*/) {}

  /// `count`
  [[nodiscard]] NSUInteger count() const noexcept override;
  /// `objectForKey:`
  [[nodiscard]] id objectForKey(const id& key) const override;
  /// `setObject:forKey:`  Raises `NSInvalidArgumentException` for a nil key, and for a nil or plain
  /// value.
  void setObject(const id& object, const id& forKey) override;
  /// `removeObjectForKey:`
  void removeObjectForKey(const id& key) override;
  void removeAllObjects() override;
  /// Without the keys of values that were destroyed.
  [[nodiscard]] Entries entries() const override;
  /// `keyEnumerator`
  [[nodiscard]] std::shared_ptr<NSEnumerator> keyEnumerator() const override;
  /// `countByEnumeratingWithState:objects:count:`  The keys.
  NSUInteger countByEnumeratingWithState(NSFastEnumerationState& state,
                                         std::span<id> objects) const override;

  [[nodiscard]] std::string className() const override { return "ORLFNonretainingMutableMap"; }

 private:
  [[nodiscard]] NSMutableDictionary& realDictionary() const;

  /// The wrapped values; made when it is first asked for.
  mutable std::shared_ptr<NSMutableDictionary> realDictionary_;
};

}  // namespace ORLFoundation
