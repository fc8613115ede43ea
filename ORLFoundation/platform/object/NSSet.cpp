
#include <ORLFoundation/platform/object/NSSet.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/internal/CollectionOperators.h>
#include <ORLFoundation/platform/object/internal/DescriptionText.h>
#include <ORLFoundation/platform/object/internal/RefuseNil.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <array>

namespace ORLFoundation {
using internal::object::refuseNil;

NSSet::NSSet(const std::vector<id>& members) {
  for (const id& member : members) {
    refuseNil(member);
    table_.set(member, nullptr);
  }
}

std::shared_ptr<NSSet> NSSet::setWithObjects(std::initializer_list<id> members) {
  return std::make_shared<NSSet>(std::vector<id>(members));
}

id NSSet::member(const id& object) const {
  const auto* entry = table_.find(object);
  return entry ? entry->key : id();
}

std::shared_ptr<NSEnumerator> NSSet::objectEnumerator() const {
  return NSEnumerator::enumeratorWithObjects(allObjects());
}

NSUInteger NSSet::countByEnumeratingWithState(NSFastEnumerationState& state,
                                              std::span<id> objects) const {
  state.requireUnchanged(*this, table_.mutations());
  return table_.copyKeys(state.position, objects);
}

std::vector<id> NSSet::allObjects() const {
  std::vector<id> members;
  members.reserve(table_.count());
  table_.forEach([&](const auto& entry) { members.push_back(entry.key); });
  return members;
}

id NSSet::anyObject() const {
  NSFastEnumerationState state;
  std::array<id, 1> any;
  countByEnumeratingWithState(state, any);
  return any.front();
}

bool NSSet::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const auto* set = dynamic_cast<const NSSet*>(other);
  if (!set || set->count() != count()) return false;
  return std::ranges::all_of(allObjects(),
                             [set](const id& member) { return set->containsObject(member); });
}

NSUInteger NSSet::hash() const { return count() ^ 0x736574; }

std::string NSSet::descriptionWithIndent(NSUInteger indent) const {
  const std::string margin = internal::object::indentation(indent);
  if (indent > internal::object::kDeepestDescription) return margin + "...";
  std::string members;
  for (const id& member : allObjects()) {
    if (!members.empty()) members += ",\n";
    members += margin + "    " + member.descriptionInCollection(indent + 1);
  }
  return margin + "{(\n" + members + (members.empty() ? "" : "\n") + margin + ")}";
}

std::shared_ptr<NSObject> NSSet::copy() {
  return receiverOr([this] { return std::make_shared<NSSet>(allObjects()); });
}

std::shared_ptr<NSObject> NSSet::mutableCopy() {
  return std::make_shared<NSMutableSet>(allObjects());
}

id NSSet::valueForKey(std::string_view key) const {
  if (key == "@count") return count();
  if (key.starts_with('@')) return NSObject::valueForKey(key.substr(1));
  const auto values = std::make_shared<NSMutableSet>();
  for (const id& member : allObjects())
    if (const id value = member.valueForKey(key)) values->addObject(value);
  return values->copy();
}

id NSSet::valueForKeyPath(std::string_view keyPath) const {
  if (keyPath.starts_with('@'))
    return internal::object::applyCollectionOperator(allObjects(), keyPath);
  return NSObject::valueForKeyPath(keyPath);
}

void NSMutableSet::addObject(const id& object) {
  refuseNil(object);
  table_.set(object, nullptr);
}

std::shared_ptr<NSObject> NSMutableSet::copy() { return std::make_shared<NSSet>(allObjects()); }

}  // namespace ORLFoundation
