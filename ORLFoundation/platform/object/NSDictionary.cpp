
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <ORLFoundation/platform/object/internal/DescriptionText.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

void refuseNilPair(const id& key, const id& value) {
  if (key.isNil()) throw NSException(NSInvalidArgumentException, "key cannot be nil");
  if (value.isNil()) {
    throw NSException(NSInvalidArgumentException,
                      "object cannot be nil (key: " + key.description() + ")");
  }
}

/// The key as a dictionary keeps it.
id copyOfKey(const id& key) {
  const auto object = key.object();
  return object ? id(object->copy()) : key;
}

bool isText(const id& value) { return value.get<std::string>() != nullptr; }

/// In ascending order of the keys when all of them are text, else as they come.
NSDictionary::Entries inOrderOfDescription(NSDictionary::Entries entries) {
  const auto hasTextKey = [](const auto& entry) { return isText(entry.first); };
  if (std::ranges::all_of(entries, hasTextKey)) {
    std::ranges::sort(entries, {}, [](const auto& entry) -> const std::string& {
      return *entry.first.template get<std::string>();
    });
  }
  return entries;
}

}  // namespace

NSDictionary::NSDictionary(const Entries& entries) {
  for (const auto& [key, value] : entries) {
    refuseNilPair(key, value);
    table_.set(copyOfKey(key), value);
  }
}

std::shared_ptr<NSDictionary> NSDictionary::dictionaryWithEntries(
    std::initializer_list<std::pair<id, id>> entries) {
  return std::make_shared<NSDictionary>(Entries(entries));
}

id NSDictionary::objectForKey(const id& key) const {
  const auto* entry = table_.find(key);
  return entry ? entry->value : id();
}

std::vector<id> NSDictionary::allKeys() const {
  std::vector<id> keys;
  keys.reserve(count());
  for (auto& [key, value] : entries()) keys.push_back(key);
  return keys;
}

std::vector<id> NSDictionary::allValues() const {
  std::vector<id> values;
  values.reserve(count());
  for (auto& [key, value] : entries()) values.push_back(value);
  return values;
}

std::shared_ptr<NSEnumerator> NSDictionary::keyEnumerator() const {
  return NSEnumerator::enumeratorWithObjects(allKeys());
}

NSUInteger NSDictionary::countByEnumeratingWithState(NSFastEnumerationState& state,
                                                     std::span<id> objects) const {
  state.requireUnchanged(*this, table_.mutations());
  return table_.copyKeys(state.position, objects);
}

NSDictionary::Entries NSDictionary::entries() const {
  Entries all;
  all.reserve(count());
  table_.forEach([&](const auto& entry) { all.emplace_back(entry.key, entry.value); });
  return all;
}

bool NSDictionary::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const auto* dictionary = dynamic_cast<const NSDictionary*>(other);
  if (!dictionary || dictionary->count() != count()) return false;
  return std::ranges::all_of(entries(), [dictionary](const auto& entry) {
    return dictionary->objectForKey(entry.first) == entry.second;
  });
}

NSUInteger NSDictionary::hash() const { return count() ^ 0x64696374; }

std::string NSDictionary::descriptionWithIndent(NSUInteger indent) const {
  const std::string margin = internal::object::indentation(indent);
  if (indent > internal::object::kDeepestDescription) return margin + "...";
  std::string out = margin + "{\n";
  for (const auto& [key, value] : inOrderOfDescription(entries())) {
    out += margin + "    " + key.descriptionInCollection(indent + 1) + " = ";
    out += value.descriptionInCollection(indent + 1) + ";\n";
  }
  return out + margin + "}";
}

bool NSDictionary::isPropertyList() const {
  return std::ranges::all_of(entries(), [](const auto& entry) {
    return isText(entry.first) && entry.second.isPropertyList();
  });
}

std::shared_ptr<NSObject> NSDictionary::copy() {
  return receiverOr([this] { return std::make_shared<NSDictionary>(entries()); });
}

std::shared_ptr<NSObject> NSDictionary::mutableCopy() {
  return std::make_shared<NSMutableDictionary>(entries());
}

id NSDictionary::valueForKey(std::string_view key) const {
  if (key == "@count") return count();
  if (key.starts_with('@')) return NSObject::valueForKey(key.substr(1));
  return objectForKey(key);
}

void NSMutableDictionary::setObject(const id& object, const id& forKey) {
  refuseNilPair(forKey, object);
  table_.set(copyOfKey(forKey), object);
}

void NSMutableDictionary::addEntriesFromDictionary(const NSDictionary& other) {
  for (const auto& [key, value] : other.entries()) setObject(value, key);
}

void NSMutableDictionary::setValueForKey(const id& value, std::string_view key) {
  changeValue(key, [&] {
    if (value.isNil()) {
      removeObjectForKey(key);
    } else {
      setObject(value, key);
    }
  });
}

std::shared_ptr<NSObject> NSMutableDictionary::copy() {
  return std::make_shared<NSDictionary>(entries());
}

}  // namespace ORLFoundation
