/// The callback of walks over dates: a reference to any callable that takes the date, a count and a
/// flag to set when the walk shall stop. It is two pointers and does not own the callable, which
/// must outlive the call it is passed to; a lambda written in the call does.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>

#include <concepts>
#include <memory>
#include <type_traits>

namespace ORLFoundation {

class ORLFDateRecurrenceBlock {
 public:
  template <class Callable>
  requires(std::invocable<Callable&, NSDate, NSUInteger, bool&> &&
           !std::same_as<std::remove_cvref_t<Callable>, ORLFDateRecurrenceBlock>)
      ORLFDateRecurrenceBlock(Callable&& callable)
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
