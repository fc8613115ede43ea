
#include <ORLFoundation/platform/object/Id.h>

#include <ORLFoundation/platform/object/NSCollection.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/object/internal/DescriptionText.h>
#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation {
namespace {

using Object = std::shared_ptr<NSObject>;

template <class... Cases>
struct Overload : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overload(Cases...) -> Overload<Cases...>;

/// A hash that no plain value of another kind is likely to have.
constexpr NSUInteger kNullHash = 0x6e756c6c;

}  // namespace

id::id(const id& other) = default;
id::id(id&& other) noexcept = default;
id& id::operator=(const id& other) = default;
id& id::operator=(id&& other) noexcept = default;
id::~id() = default;

id::id(const char* text) {
  if (text != nullptr) value_ = std::string(text);
}
id::id(std::string_view text) : value_(std::string(text)) {}

void id::hold(std::shared_ptr<NSObject> object) noexcept {
  if (object) value_ = std::move(object);
}

bool id::isEqual(const id& other) const {
  if (value_.index() != other.value_.index()) return false;
  if (const auto* object = std::get_if<Object>(&value_)) {
    const Object& otherObject = *std::get_if<Object>(&other.value_);
    return *object == otherObject || (*object)->isEqual(otherObject.get());
  }
  return value_ == other.value_;
}

bool id::isIdenticalTo(const id& other) const {
  const auto* object = std::get_if<Object>(&value_);
  return object ? *object == other.object() : isEqual(other);
}

NSUInteger id::hash() const {
  return std::visit(
      Overload{[](std::monostate) -> NSUInteger { return 0; },
               [](NSNull) -> NSUInteger { return kNullHash; },
               [](const std::string& text) -> NSUInteger { return std::hash<std::string>{}(text); },
               [](const Object& object) { return object->hash(); },
               [](const auto& plain) -> NSUInteger { return plain.hash(); }},
      value_);
}

std::string id::description() const {
  return std::visit(
      Overload{[](std::monostate) -> std::string { return "(null)"; },
               [](NSNull) -> std::string { return "<null>"; },
               [](const std::string& text) { return internal::object::wellFormed(text); },
               [](const Object& object) { return object->description(); },
               [](const auto& plain) -> std::string { return plain.description(); }},
      value_);
}

std::string id::descriptionInCollection(NSUInteger indent) const {
  const auto* object = std::get_if<Object>(&value_);
  const auto* collection = object ? dynamic_cast<const NSCollection*>(object->get()) : nullptr;
  if (collection) return collection->descriptionWithIndent(indent);
  return internal::object::quotedWhereNeeded(description());
}

std::string id::className() const {
  return std::visit(Overload{[](std::monostate) -> std::string { return ""; },
                             [](NSNull) -> std::string { return "NSNull"; },
                             [](const NSNumber&) -> std::string { return "NSNumber"; },
                             [](const std::string&) -> std::string { return "NSString"; },
                             [](const NSDate&) -> std::string { return "NSDate"; },
                             [](const NSData&) -> std::string { return "NSData"; },
                             [](const NSURL&) -> std::string { return "NSURL"; },
                             [](const NSUUID&) -> std::string { return "NSUUID"; },
                             [](const NSValue&) -> std::string { return "NSValue"; },
                             [](const Object& object) { return object->className(); }},
                    value_);
}

bool id::isPropertyList() const {
  if (get<std::string>() || get<NSNumber>() || get<NSDate>() || get<NSData>()) return true;
  const auto collection = as<NSCollection>();
  return collection && collection->isPropertyList();
}

id id::valueForKey(std::string_view key) const {
  if (isNil()) return nullptr;
  if (const auto* object = std::get_if<Object>(&value_)) return (*object)->valueForKey(key);
  if (key == "self") return *this;
  throw NSException(NSUndefinedKeyException,
                    "[<" + className() +
                        "> valueForUndefinedKey:]: this "
                        "class is not key value coding-compliant for the key " +
                        std::string(key) + ".");
}

id id::valueForKeyPath(std::string_view keyPath) const {
  if (const auto* object = std::get_if<Object>(&value_)) return (*object)->valueForKeyPath(keyPath);
  const auto point = keyPath.find('.');
  const id first = valueForKey(keyPath.substr(0, point));
  return point == keyPath.npos ? first : first.valueForKeyPath(keyPath.substr(point + 1));
}

}  // namespace ORLFoundation
