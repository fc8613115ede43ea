/// Where the identifier of a machine comes from.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::device {

/// The 32 hex digits in lower case of the first file that holds such an identifier, other than
/// zero, alone on its first line; nil when no file does.
[[nodiscard]] std::optional<std::string> machineIdentifierIn(std::span<const std::string> paths);
/// The device identifier of a machine that is known by a text.
[[nodiscard]] std::string deviceIdentifierOf(std::string_view machine);

}  // namespace ORLFoundation::internal::device
