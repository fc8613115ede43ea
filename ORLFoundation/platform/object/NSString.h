/// Texts put together from a format, for log lines and descriptions.
///
///     stringWithFormat("%@ has %ld members, %.2f on average", name, count, mean)
#pragma once

#include <ORLFoundation/platform/object/Id.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace ORLFoundation {

/// `stringWithFormat:`  Conversions: "%@", "%s" and "%S" take any value and print its description;
/// "%d", "%i", "%u", "%x", "%X" and "%o" a whole number; "%f", "%e", "%g", "%a" and their capitals
/// any number; "%c" and "%C" print the character that a whole number is the code of, "%c" of its
/// lowest eight bits, U+FFFD for one that is none; "%p" prints the address of an object, or a whole
/// number as one; "%%" prints a percent sign. Flags, width and precision are as in C, up to 1000,
/// and "*" takes one of them from the arguments; length modifiers ("%ld") are taken and change
/// nothing. "%2$@" takes the second argument and "%*2$d" its width from there, without a say in
/// which one a conversion without a place takes next.
///
/// Arguments carry their types, so a format cannot misread them: an argument that does not fit its
/// conversion is printed by its description, a missing one and a null text as "(null)", and one too
/// many is left out. Text after a percent sign that is no conversion is printed as it stands, and
/// takes no argument from the conversions behind it.
template <class... Arguments>
[[nodiscard]] std::string stringWithFormat(std::string_view format, const Arguments&... arguments);

/// The same with the arguments in a list.
[[nodiscard]] std::string stringWithFormatArguments(std::string_view format,
                                                    std::span<const id> arguments);

namespace internal::object {

/// An argument as an `id`; of a pointer to anything but text, its address.
template <class T>
[[nodiscard]] id formatArgument(const T& argument) {
  using Plain = std::decay_t<T>;
  if constexpr (std::is_pointer_v<Plain> && !std::is_convertible_v<Plain, const char*>) {
    return reinterpret_cast<std::uintptr_t>(argument);
  } else {
    return id(argument);
  }
}

}  // namespace internal::object

template <class... Arguments>
std::string stringWithFormat(std::string_view format, const Arguments&... arguments) {
  // One more than needed, since an array cannot be empty.
  const id list[] = {internal::object::formatArgument(arguments)..., id()};
  return stringWithFormatArguments(format, std::span(list, sizeof...(arguments)));
}

}  // namespace ORLFoundation
