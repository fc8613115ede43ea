/// How a class declares the keys under which its values are read, set and observed: one static
/// table, of which the class's `keyTable` answers a reference. The accessors are named once; their
/// types decide how a value is boxed and unboxed.
///
///     const NSKeyTable& Plan::keyTable() const {
///       static const NSKeyTable table(NSObject::keyTable(), {
///           NSKey::readWrite<&Plan::endDate, &Plan::setEndDate>("endDate"),
///           NSKey::readWrite<&Plan::segments, &Plan::setSegments>("segments"),
///           NSKey::readOnly<&Plan::firstSegment>("firstSegment", {"segments"}),
///           NSKey::readOnly<&Plan::planStartDate>("planStartDate", {"firstSegment.startDate"}),
///       });
///       return table;
///     }
///
/// The last two lines say what a derived value depends on: whoever observes "planStartDate" hears
/// when the first segment, or its start date, changes. (Base keys are reached by a qualified call,
/// `Base::keyTable()`, in subclasses.)
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace ORLFoundation {

/// One key of a class.
struct NSKey {
  /// Keeps the text that it was given, which must be a literal.
  std::string_view name;
  id (*get)(const NSObject& object) = nullptr;
  /// Null for keys that cannot be set.
  void (*set)(NSObject& object, const id& value) = nullptr;
  /// The key paths on whose values this one depends.
  std::vector<std::string_view> affectingKeyPaths;

  template <auto Getter>
  [[nodiscard]] static NSKey readOnly(std::string_view name,
                                      std::vector<std::string_view> affecting = {});
  template <auto Getter, auto Setter>
  [[nodiscard]] static NSKey readWrite(std::string_view name,
                                       std::vector<std::string_view> affecting = {});
};

/// The keys of one class with those of its base class. Never changes; safe on any thread.
class NSKeyTable {
 public:
  /// A key of the class takes the place of a base key of the same name.
  NSKeyTable(const NSKeyTable& base, std::vector<NSKey> keys);
  /// A table without a base.
  explicit NSKeyTable(std::vector<NSKey> keys);

  /// Null for a name that the class does not have.
  [[nodiscard]] const NSKey* find(std::string_view name) const noexcept;
  /// All keys, in order of their names.
  [[nodiscard]] const std::vector<NSKey>& keys() const noexcept { return keys_; }

 private:
  std::vector<NSKey> keys_;
};

namespace internal::object {

/// Class and argument of a member function.
template <class Member>
struct MemberTraits;
template <class C, class R, class... A>
struct MemberTraits<R (C::*)(A...)> {
  using Class = C;
  using Argument = std::tuple<std::remove_cvref_t<A>...>;
};
template <class C, class R, class... A>
struct MemberTraits<R (C::*)(A...) const> : MemberTraits<R (C::*)(A...)> {};
template <class C, class R, class... A>
struct MemberTraits<R (C::*)(A...) noexcept> : MemberTraits<R (C::*)(A...)> {};
template <class C, class R, class... A>
struct MemberTraits<R (C::*)(A...) const noexcept> : MemberTraits<R (C::*)(A...)> {};

[[noreturn]] void raiseWrongKind(const id& value);

/// What a setter's argument is made of. Raises `NSInvalidArgumentException` for a value of the
/// wrong kind, and for nil where the argument has no nil.
template <class T>
struct Unboxed {
  static T from(const id& value) {
    std::optional<T> plain = value.as<T>();
    if (!plain) raiseWrongKind(value);
    return *std::move(plain);
  }
};
template <>
struct Unboxed<id> {
  static id from(const id& value) { return value; }
};
template <class T>
struct Unboxed<std::optional<T>> {
  static std::optional<T> from(const id& value) {
    if (value.isNil() || value.isNull()) return std::nullopt;
    return Unboxed<T>::from(value);
  }
};
template <class T>
struct Unboxed<std::shared_ptr<T>> {
  static std::shared_ptr<T> from(const id& value) {
    if (value.isNil() || value.isNull()) return nullptr;
    std::shared_ptr<T> object = value.as<T>();
    if (!object) raiseWrongKind(value);
    return object;
  }
};
template <class T>
struct Unboxed<std::vector<T>> {
  static std::vector<T> from(const id& value) {
    std::vector<T> members;
    const auto array = Unboxed<std::shared_ptr<NSArray>>::from(value);
    if (!array) return members;
    members.reserve(array->count());
    for (const id& member : array->members()) members.push_back(Unboxed<T>::from(member));
    return members;
  }
};

/// Lists are boxed as arrays, everything else as `id` itself does.
template <class T>
id boxed(T&& value) {
  return id(std::forward<T>(value));
}
template <class T>
id boxed(const std::vector<T>& members) {
  std::vector<id> boxes;
  boxes.reserve(members.size());
  for (const T& member : members) boxes.push_back(boxed(member));
  return std::make_shared<NSArray>(std::move(boxes));
}
template <class T>
id boxed(const std::weak_ptr<T>& object) {
  return object.lock();
}

template <auto Getter>
id getThrough(const NSObject& object) {
  using Class = typename MemberTraits<decltype(Getter)>::Class;
  const auto& value = (static_cast<const Class&>(object).*Getter)();
  return boxed(value);
}

template <auto Setter>
void setThrough(NSObject& object, const id& value) {
  using Traits = MemberTraits<decltype(Setter)>;
  using Argument = std::tuple_element_t<0, typename Traits::Argument>;
  (static_cast<typename Traits::Class&>(object).*Setter)(Unboxed<Argument>::from(value));
}

}  // namespace internal::object

template <auto Getter>
NSKey NSKey::readOnly(std::string_view name, std::vector<std::string_view> affecting) {
  return {name, &internal::object::getThrough<Getter>, nullptr, std::move(affecting)};
}

template <auto Getter, auto Setter>
NSKey NSKey::readWrite(std::string_view name, std::vector<std::string_view> affecting) {
  return {name, &internal::object::getThrough<Getter>, &internal::object::setThrough<Setter>,
          std::move(affecting)};
}

}  // namespace ORLFoundation
