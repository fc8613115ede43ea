
#include <ORLFoundation/platform/object/NSArray.h>

#include <ORLFoundation/platform/object/NSIndexSet.h>
#include <ORLFoundation/platform/object/internal/CollectionOperators.h>
#include <ORLFoundation/platform/object/internal/DescriptionText.h>
#include <ORLFoundation/platform/object/internal/RefuseNil.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace ORLFoundation {
namespace {

using internal::object::refuseNil;

void requireIndex(NSUInteger index, NSUInteger limit) {
  if (index < limit) return;
  throw NSException(NSRangeException, "index " + std::to_string(index) + " beyond bounds [0 .. " +
                                          std::to_string(limit) + ")");
}

NSUInteger indexIn(const std::vector<id>& members, std::vector<id>::const_iterator found) {
  return found == members.end() ? static_cast<NSUInteger>(NSNotFound)
                                : static_cast<NSUInteger>(found - members.begin());
}

auto at(std::vector<id>& members, NSUInteger index) {
  return members.begin() + static_cast<std::ptrdiff_t>(index);
}

}  // namespace

NSArray::NSArray(std::vector<id> members) : members_(std::move(members)) {
  std::ranges::for_each(members_, refuseNil);
}

std::shared_ptr<NSArray> NSArray::arrayWithObjects(std::initializer_list<id> members) {
  return std::make_shared<NSArray>(std::vector<id>(members));
}

const id& NSArray::objectAtIndex(NSUInteger index) const {
  requireIndex(index, members_.size());
  return members_[index];
}

NSUInteger NSArray::indexOfObject(const id& object) const {
  return indexIn(members_, std::ranges::find(members_, object));
}

NSUInteger NSArray::indexOfObjectIdenticalTo(const id& object) const {
  return indexIn(members_, std::ranges::find_if(members_, [&object](const id& member) {
                   return member.isIdenticalTo(object);
                 }));
}

bool NSArray::containsObject(const id& object) const {
  return std::ranges::find(members_, object) != members_.end();
}

bool NSArray::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const auto* array = dynamic_cast<const NSArray*>(other);
  return array && members_ == array->members_;
}

// Members that are objects stay out: hashing costs the same however deep the array goes.
NSUInteger NSArray::hash() const {
  NSUInteger hash = members_.size() + 1;
  for (const id& member : members_) hash = hash * 31 + (member.object() ? 1 : member.hash());
  return hash;
}

std::string NSArray::descriptionWithIndent(NSUInteger indent) const {
  const std::string margin = internal::object::indentation(indent);
  if (indent > internal::object::kDeepestDescription) return margin + "...";
  std::string out = margin + "(\n";
  for (std::size_t i = 0; i < members_.size(); ++i) {
    out += margin + "    " + members_[i].descriptionInCollection(indent + 1);
    out += i + 1 < members_.size() ? ",\n" : "\n";
  }
  return out + margin + ")";
}

bool NSArray::isPropertyList() const {
  return std::ranges::all_of(members_, [](const id& member) { return member.isPropertyList(); });
}

std::shared_ptr<NSObject> NSArray::copy() {
  return receiverOr([this] { return std::make_shared<NSArray>(members_); });
}

std::shared_ptr<NSObject> NSArray::mutableCopy() {
  return std::make_shared<NSMutableArray>(members_);
}

id NSArray::valueForKey(std::string_view key) const {
  if (key == "@count") return count();
  if (key.starts_with('@')) return NSObject::valueForKey(key.substr(1));
  std::vector<id> values;
  values.reserve(members_.size());
  for (const id& member : members_) {
    id value = member.valueForKey(key);
    values.push_back(value.isNil() ? id(NSNull()) : std::move(value));
  }
  return std::make_shared<NSArray>(std::move(values));
}

void NSArray::setValueForKey(const id& value, std::string_view key) {
  // A setter, or who observes it, may change this array.
  const std::vector<id> members = members_;
  for (const id& member : members)
    if (const auto object = member.object()) object->setValueForKey(value, key);
}

id NSArray::valueForKeyPath(std::string_view keyPath) const {
  if (keyPath.starts_with('@')) return internal::object::applyCollectionOperator(members_, keyPath);
  return NSObject::valueForKeyPath(keyPath);
}

// A member's destructor may look into the array that it leaves. So members are moved out first and
// let go when the array is whole again.

void NSMutableArray::addObject(id object) {
  refuseNil(object);
  members_.push_back(std::move(object));
}

void NSMutableArray::insertObject(id object, NSUInteger atIndex) {
  refuseNil(object);
  requireIndex(atIndex, members_.size() + 1);
  members_.insert(at(members_, atIndex), std::move(object));
}

void NSMutableArray::replaceObjectAtIndex(NSUInteger index, id withObject) {
  refuseNil(withObject);
  requireIndex(index, members_.size());
  std::swap(members_[index], withObject);
}

void NSMutableArray::removeObjectAtIndex(NSUInteger index) {
  requireIndex(index, members_.size());
  const id removed = std::move(members_[index]);
  members_.erase(at(members_, index));
}

void NSMutableArray::removeObjectsAtIndexes(const NSIndexSet& indexes) {
  if (indexes.count() == 0) return;
  requireIndex(indexes.lastIndex(), members_.size());
  std::vector<id> kept;
  kept.reserve(members_.size() - indexes.count());
  NSUInteger next = 0;
  const auto keepUpTo = [&](NSUInteger end) {
    std::move(at(members_, next), at(members_, end), std::back_inserter(kept));
  };
  for (const NSRange range : indexes.ranges()) {
    keepUpTo(range.location);
    next = NSMaxRange(range);
  }
  keepUpTo(members_.size());
  const std::vector<id> removed = std::exchange(members_, std::move(kept));
}

void NSMutableArray::removeObject(id object) {
  NSMutableIndexSet found;
  for (NSUInteger index = 0; index < members_.size(); ++index)
    if (members_[index] == object) found.addIndex(index);
  removeObjectsAtIndexes(found);
}

void NSMutableArray::removeAllObjects() noexcept {
  const std::vector<id> removed = std::exchange(members_, {});
}

std::shared_ptr<NSObject> NSMutableArray::copy() { return std::make_shared<NSArray>(members_); }

}  // namespace ORLFoundation
