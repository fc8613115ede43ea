/// Values under keys. Keys and values are any `id` but nil. A key that is an object is copied, so
/// that a mutable one, changed afterwards, does not change it here; a class that does not copy
/// raises. Entries are met in the order of their addition, and a description lists text keys in
/// ascending order. A subclass that keeps its values
/// elsewhere overrides the virtual operations of its own; all others rest on them.
#pragma once

#include <ORLFoundation/platform/object/NSCollection.h>
#include <ORLFoundation/platform/object/NSEnumerator.h>
#include <ORLFoundation/platform/object/internal/IdTable.h>

#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation {

class NSDictionary : public NSCollection {
 public:
  using Entries = std::vector<std::pair<id, id>>;

  NSDictionary() = default;
  /// A later entry takes the place of an earlier one with an equal key. Raises
  /// `NSInvalidArgumentException` for a nil key or value, and for a key that cannot be copied.
  explicit NSDictionary(const Entries& entries);
  /// `dictionaryWithObjectsAndKeys:`  Each pair is a key and its value.
  [[nodiscard]] static std::shared_ptr<NSDictionary> dictionaryWithEntries(
      std::initializer_list<std::pair<id, id>> entries);

  [[nodiscard]] NSUInteger count() const noexcept override { return table_.count(); }
  /// `objectForKey:`  nil for a key that is absent, and for nil.
  [[nodiscard]] virtual id objectForKey(const id& key) const;
  /// `allKeys`, `allValues`  In the same order.
  [[nodiscard]] std::vector<id> allKeys() const;
  [[nodiscard]] std::vector<id> allValues() const;
  [[nodiscard]] virtual Entries entries() const;
  /// `keyEnumerator`  Walks the keys of this moment.
  [[nodiscard]] virtual std::shared_ptr<NSEnumerator> keyEnumerator() const;
  /// `countByEnumeratingWithState:objects:count:`  Fills the next keys into `objects` and answers
  /// how many, 0 at the end. Raises `NSGenericException` when keys came or went since the first
  /// call.
  virtual NSUInteger countByEnumeratingWithState(NSFastEnumerationState& state,
                                                 std::span<id> objects) const;

  [[nodiscard]] std::string className() const override { return "NSDictionary"; }
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::string descriptionWithIndent(NSUInteger indent) const override;
  [[nodiscard]] bool isPropertyList() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

  /// `valueForKey:`  `objectForKey`, except that "@count" is the count.
  [[nodiscard]] id valueForKey(std::string_view key) const override;

 protected:
  internal::object::IdTable table_;
};

class NSMutableDictionary : public NSDictionary {
 public:
  using NSDictionary::NSDictionary;

  /// `setObject:forKey:`  Keeps a copy of the key. Raises `NSInvalidArgumentException` for a nil
  /// key or value, and for a key that cannot be copied.
  virtual void setObject(const id& object, const id& forKey);
  /// `removeObjectForKey:`
  virtual void removeObjectForKey(const id& key) { table_.remove(key); }
  /// `removeAllObjects`
  virtual void removeAllObjects() { table_.clear(); }
  /// `addEntriesFromDictionary:`
  void addEntriesFromDictionary(const NSDictionary& other);
  /// `setValue:forKey:`  nil removes the entry. Observers of the key are told.
  void setValueForKey(const id& value, std::string_view key) override;

  [[nodiscard]] std::string className() const override { return "NSMutableDictionary"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
};

}  // namespace ORLFoundation
