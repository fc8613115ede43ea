/// Texts put together from a format, for log lines and descriptions.
///
///     stringWithFormat("%@ has %ld members, %.2f on average", name, count, mean)
#pragma once

#include <ORLFoundation/platform/object/Id.h>

#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// `stringWithFormat:`  Conversions: "%@" and "%s" take any value and print its description; "%d",
/// "%i", "%u", "%x", "%X" and "%o" a whole number; "%f", "%e", "%g" and their capitals any number;
/// "%%" prints a percent sign. Flags, width and precision are as in C, up to 1000; length modifiers
/// ("%ld") are taken and change nothing.
///
/// Arguments carry their types, so a format cannot misread them: an argument that does not fit its
/// conversion is printed by its description, a missing one as "(null)", and one too many is left
/// out. Text after a percent sign that is no conversion is printed as it stands.
template <class... Arguments>
[[nodiscard]] std::string stringWithFormat(std::string_view format, const Arguments&... arguments);

/// The same with the arguments in a list.
[[nodiscard]] std::string stringWithFormatArguments(std::string_view format,
                                                    std::span<const id> arguments);

template <class... Arguments>
std::string stringWithFormat(std::string_view format, const Arguments&... arguments) {
  // One more than needed, since an array cannot be empty.
  const id list[] = {id(arguments)..., id()};
  return stringWithFormatArguments(format, std::span(list, sizeof...(arguments)));
}

}  // namespace ORLFoundation
