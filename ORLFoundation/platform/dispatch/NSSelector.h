/// An operation by its name, for those who call it later: timers, delayed and ordered performs.
///
///     const NSSelector reload = NSSelectorOf<&Ledger::reload>("reload:");
///     reload.perform(ledger, "drafts");       // ledger->reload("drafts")
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace ORLFoundation {

/// Equal when the names are equal.
class NSSelector {
 public:
  using Operation =
      std::function<void(const std::shared_ptr<NSObject>& target, const id& argument)>;

  NSSelector(std::string name, Operation operation)
      : name_(std::move(name)), operation_(std::move(operation)) {}

  /// The labelled name, "reload:".
  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  /// `performSelector:withObject:`
  void perform(const std::shared_ptr<NSObject>& target, const id& argument) const {
    if (operation_) operation_(target, argument);
  }
  friend bool operator==(const NSSelector& left, const NSSelector& right) noexcept {
    return left.name_ == right.name_;
  }

 private:
  std::string name_;
  Operation operation_;
};

namespace internal::dispatch {

template <class T>
struct SelectorArgument {
  static T from(const id& argument) { return argument; }
};
template <class T>
struct SelectorArgument<std::shared_ptr<T>> {
  static std::shared_ptr<T> from(const id& argument) {
    return std::dynamic_pointer_cast<T>(argument.object());
  }
};

template <class Class, class Result, class... Arguments>
NSSelector selectorOf(std::string name, Result (Class::*operation)(Arguments...)) {
  static_assert(sizeof...(Arguments) <= 1, "an operation of no argument or one");
  return {std::move(name),
          [operation](const std::shared_ptr<NSObject>& target, const id& argument) {
            const auto receiver = std::dynamic_pointer_cast<Class>(target);
            if (!receiver) return;
            (receiver.get()->*operation)(
                SelectorArgument<std::remove_cvref_t<Arguments>>::from(argument)...);
          }};
}

}  // namespace internal::dispatch

/// A member of a class as an operation: of no argument, of an `id`, or of a shared pointer, null
/// for an argument of another class. A target of another class gets nothing.
// Always inline: GCC 12 gives the instances for classes of one name in the unnamed namespaces of
// two sources one symbol, and the linker would keep one of them for both.
template <auto Member>
[[nodiscard, gnu::always_inline]] inline NSSelector NSSelectorOf(std::string name) {
  return internal::dispatch::selectorOf(std::move(name), Member);
}

}  // namespace ORLFoundation
