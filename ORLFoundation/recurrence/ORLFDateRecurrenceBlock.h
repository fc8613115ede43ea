/// The callback of walks over dates: a reference to any callable that takes the date, a count and a
/// flag to set when the walk shall stop. It is two pointers and does not own the callable. It is
/// only ever a parameter of its own, never a member of a record, so that a lambda written in the
/// call lives as long as the call; it is not to be kept.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>

#include <concepts>
#include <memory>
#include <type_traits>

/// Where the compiler knows the mark, it warns of a block that outlives its callable.
#if defined(__has_cpp_attribute) && __has_cpp_attribute(clang::lifetimebound)
#define ORLF_LIFETIME_BOUND [[clang::lifetimebound]]
#else
#define ORLF_LIFETIME_BOUND
#endif

namespace ORLFoundation {

class ORLFDateRecurrenceBlock {
 public:
  template <class Callable>
  requires(std::invocable<Callable&, NSDate, NSUInteger, bool&> &&
           !std::same_as<std::remove_cvref_t<Callable>, ORLFDateRecurrenceBlock>)
      ORLFDateRecurrenceBlock(Callable&& callable ORLF_LIFETIME_BOUND)
  noexcept  // implicit, as a function's argument is
      : callable_(const_cast<void*>(static_cast<const void*>(std::addressof(callable)))),
        call_([](void* target, NSDate date, NSUInteger count, bool& stop) {
          (*static_cast<std::remove_reference_t<Callable>*>(target))(date, count, stop);
        }) {}

  void operator()(NSDate date, NSUInteger count, bool& stop) const {
    call_(callable_, date, count, stop);
  }

 private:
  void* callable_;
  void (*call_)(void*, NSDate, NSUInteger, bool&);
};

}  // namespace ORLFoundation
