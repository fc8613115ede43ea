#include <ORLFoundation/platform/object/Id.h>

#include <ORLFoundation/platform/object/NSCollection.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/object/internal/DescriptionText.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <new>
#include <utility>
#include <variant>

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

struct id::Stored {
  std::variant<std::monostate, NSNull, NSNumber, std::string, NSDate, NSData, NSURL, NSUUID,
               NSValue, Object>
      value;
};

id::Stored& id::stored() noexcept { return *std::launder(reinterpret_cast<Stored*>(bytes_)); }
const id::Stored& id::stored() const noexcept {
  return *std::launder(reinterpret_cast<const Stored*>(bytes_));
}

id::id() noexcept {
  static_assert(sizeof(Stored) <= sizeof(bytes_) && alignof(Stored) <= alignof(id));
  new (bytes_) Stored;
}
id::id(const id& other) { new (bytes_) Stored(other.stored()); }
id::id(id&& other) noexcept { new (bytes_) Stored(std::move(other.stored())); }
id& id::operator=(const id& other) {
  if (this != &other) stored() = other.stored();
  return *this;
}
id& id::operator=(id&& other) noexcept {
  stored() = std::move(other.stored());
  return *this;
}
id::~id() { stored().~Stored(); }

template <NSPlainValue T>
id::id(T value) {
  new (bytes_) Stored{std::move(value)};
}
template id::id(NSNull value);
template id::id(NSNumber value);
template id::id(std::string value);
template id::id(NSDate value);
template id::id(NSData value);
template id::id(NSURL value);
template id::id(NSUUID value);
template id::id(NSValue value);

id::id(const char* text) : id() {
  if (text != nullptr) stored().value = std::string(text);
}
id::id(std::string_view text) : id(std::string(text)) {}

bool id::isNil() const noexcept { return stored().value.index() == 0; }

template <NSPlainValue T>
const T* id::get() const noexcept {
  return std::get_if<T>(&stored().value);
}
template const NSNull* id::get() const noexcept;
template const NSNumber* id::get() const noexcept;
template const std::string* id::get() const noexcept;
template const NSDate* id::get() const noexcept;
template const NSData* id::get() const noexcept;
template const NSURL* id::get() const noexcept;
template const NSUUID* id::get() const noexcept;
template const NSValue* id::get() const noexcept;

std::shared_ptr<NSObject> id::object() const {
  const auto* held = std::get_if<Object>(&stored().value);
  return held ? *held : nullptr;
}

void id::hold(std::shared_ptr<NSObject> object) noexcept {
  if (object) stored().value = std::move(object);
}

bool id::isEqual(const id& other) const {
  if (stored().value.index() != other.stored().value.index()) return false;
  if (const auto* object = std::get_if<Object>(&stored().value)) {
    const Object& otherObject = *std::get_if<Object>(&other.stored().value);
    return *object == otherObject || (*object)->isEqual(otherObject.get());
  }
  return stored().value == other.stored().value;
}

bool id::isIdenticalTo(const id& other) const {
  const auto* object = std::get_if<Object>(&stored().value);
  return object ? *object == other.object() : isEqual(other);
}

NSUInteger id::hash() const {
  return std::visit(
      Overload{[](std::monostate) -> NSUInteger { return 0; },
               [](NSNull) -> NSUInteger { return kNullHash; },
               [](const std::string& text) -> NSUInteger { return std::hash<std::string>{}(text); },
               [](const Object& object) { return object->hash(); },
               [](const auto& plain) -> NSUInteger { return plain.hash(); }},
      stored().value);
}

std::string id::description() const {
  return std::visit(
      Overload{[](std::monostate) -> std::string { return "(null)"; },
               [](NSNull) -> std::string { return "<null>"; },
               [](const std::string& text) { return internal::object::wellFormed(text); },
               [](const Object& object) { return object->description(); },
               [](const auto& plain) -> std::string { return plain.description(); }},
      stored().value);
}

std::string id::descriptionInCollection(NSUInteger indent) const {
  const auto* object = std::get_if<Object>(&stored().value);
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
                    stored().value);
}

bool id::isPropertyList() const {
  if (get<std::string>() || get<NSNumber>() || get<NSDate>() || get<NSData>()) return true;
  const auto collection = as<NSCollection>();
  return collection && collection->isPropertyList();
}

id id::valueForKey(std::string_view key) const {
  if (isNil()) return nullptr;
  if (const auto* object = std::get_if<Object>(&stored().value)) return (*object)->valueForKey(key);
  if (key == "self") return *this;
  throw NSException(NSUndefinedKeyException,
                    "[<" + className() +
                        "> valueForUndefinedKey:]: this "
                        "class is not key value coding-compliant for the key " +
                        std::string(key) + ".");
}

id id::valueForKeyPath(std::string_view keyPath) const {
  if (const auto* object = std::get_if<Object>(&stored().value))
    return (*object)->valueForKeyPath(keyPath);
  const auto point = keyPath.find('.');
  const id first = valueForKey(keyPath.substr(0, point));
  return point == keyPath.npos ? first : first.valueForKeyPath(keyPath.substr(point + 1));
}

}  // namespace ORLFoundation
