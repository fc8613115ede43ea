
#include <ORLFoundation/platform/plist/internal/PropertyListObjects.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListUID.h>
#include <ORLFoundation/platform/plist/PropertyListBuilder.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::plist {
namespace {

using Index = PropertyListTable::Index;

class TableMaker {
 public:
  PropertyListTable make(const id& object) {
    builder_.setTop(nodeOf(object, 0));
    return builder_.table();
  }

 private:
  Index nodeOf(const id& value, std::size_t depth) {
    if (const auto* text = value.get<std::string>()) return builder_.string(*text);
    if (const auto* number = value.get<NSNumber>()) return builder_.number(*number);
    if (const auto* date = value.get<NSDate>())
      return builder_.date(date->timeIntervalSinceReferenceDate());
    if (const auto* data = value.get<NSData>()) return builder_.data(data->text());
    if (const auto uid = value.as<NSPropertyListUID>()) return builder_.uid(uid->value());
    if (const auto list = value.as<NSCollection>()) return nodeOfCollection(*list, depth);
    throw PropertyListFault("A property list cannot hold " + value.className() + ".");
  }

  Index nodeOfCollection(const NSCollection& list, std::size_t depth) {
    if (depth >= PropertyListTable::kDeepestNesting)
      throw PropertyListFault("The list is nested too deep.");
    const auto [place, isNew] = nodes_.try_emplace(&list, std::nullopt);
    if (!isNew && !place->second) throw PropertyListFault("A list holds itself.");
    if (!isNew) return *place->second;
    Index node = 0;
    if (const auto* array = dynamic_cast<const NSArray*>(&list)) {
      node = builder_.array(nodesOf(array->members(), depth));
    } else if (const auto* dictionary = dynamic_cast<const NSDictionary*>(&list)) {
      node = nodeOfDictionary(*dictionary, depth);
    } else {
      throw PropertyListFault("A property list cannot hold " + list.className() + ".");
    }
    nodes_[&list] = node;
    return node;
  }

  std::vector<Index> nodesOf(const std::vector<id>& members, std::size_t depth) {
    std::vector<Index> nodes;
    nodes.reserve(members.size());
    for (const id& member : members) nodes.push_back(nodeOf(member, depth + 1));
    return nodes;
  }

  Index nodeOfDictionary(const NSDictionary& dictionary, std::size_t depth) {
    std::vector<Index> keys;
    for (const id& key : dictionary.allKeys()) {
      const auto* text = key.get<std::string>();
      if (text == nullptr) throw PropertyListFault("A key of a property list is no text.");
      keys.push_back(builder_.string(*text));
    }
    return builder_.dictionary(keys, nodesOf(dictionary.allValues(), depth));
  }

  PropertyListBuilder builder_;
  std::unordered_map<const NSCollection*, std::optional<Index>> nodes_;  // none while it is read
};

class ObjectMaker {
 public:
  ObjectMaker(const PropertyListTable& table, bool mutableContainers)
      : table_(table), budget_(table.size()), mutableContainers_(mutableContainers) {}

  id objectOf(Index node) {
    switch (table_.kind(node)) {
      case PropertyListKind::Boolean:
        return table_.boolean(node);
      case PropertyListKind::Integer:
        return table_.integer(node);
      case PropertyListKind::UnsignedInteger:
        return table_.unsignedInteger(node);
      case PropertyListKind::Real:
        return table_.real(node);
      case PropertyListKind::Date:
        return NSDate::dateWithTimeIntervalSinceReferenceDate(table_.real(node));
      case PropertyListKind::UID:
        return std::make_shared<NSPropertyListUID>(table_.uid(node));
      case PropertyListKind::String:
        return textOf(node);
      case PropertyListKind::Data:
        return NSData(textOf(node));
      default:
        return containerOf(node);
    }
  }

 private:
  std::string_view textOf(Index node) {
    const std::string_view text = table_.text(node);
    if (!budget_.take(text.size())) throw PropertyListFault("The list repeats too much text.");
    return text;
  }

  id containerOf(Index node) {
    if (const auto made = containers_.find(node); made != containers_.end()) return made->second;
    std::shared_ptr<NSObject> container;
    if (table_.kind(node) == PropertyListKind::Array) {
      container = makeArray(objectsOf(table_.members(node)));
    } else {
      container = makeDictionary(node);
    }
    containers_.emplace(node, container);
    return container;
  }

  std::vector<id> objectsOf(PropertyListTable::Indexes nodes) {
    std::vector<id> objects;
    objects.reserve(nodes.size());
    for (const Index node : nodes) objects.push_back(objectOf(node));
    return objects;
  }

  [[nodiscard]] std::shared_ptr<NSObject> makeArray(std::vector<id> members) const {
    if (mutableContainers_) return std::make_shared<NSMutableArray>(std::move(members));
    return std::make_shared<NSArray>(std::move(members));
  }

  std::shared_ptr<NSObject> makeDictionary(Index node) {
    NSDictionary::Entries entries;
    const auto keys = table_.keys(node);
    entries.reserve(keys.size());
    for (std::size_t entry = 0; entry < keys.size(); ++entry)
      entries.emplace_back(textOf(keys[entry]), objectOf(table_.values(node)[entry]));
    if (mutableContainers_) return std::make_shared<NSMutableDictionary>(entries);
    return std::make_shared<NSDictionary>(entries);
  }

  const PropertyListTable& table_;
  PropertyListTextBudget budget_;
  bool mutableContainers_;
  std::unordered_map<Index, std::shared_ptr<NSObject>> containers_;
};

}  // namespace

PropertyListTable tableFromObject(const id& object) { return TableMaker().make(object); }

id objectFromTable(const PropertyListTable& table, bool mutableContainers) {
  return ObjectMaker(table, mutableContainers).objectOf(table.top());
}

}  // namespace ORLFoundation::internal::plist
