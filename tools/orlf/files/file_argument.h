/// Paths as they were typed, as addresses of files.
#pragma once

#include <ORLFoundation/platform/value/NSURL.h>

#include <string>

namespace orlftool {

/// The path, from the folder that the tool runs in. Throws UsageFailure for an empty one; `name` is
/// that of the argument.
[[nodiscard]] std::string absolutePathOfArgument(const std::string& name, const std::string& text);
/// The same as an address.
[[nodiscard]] ORLFoundation::NSURL fileURLOfArgument(const std::string& name,
                                                     const std::string& text);

}  // namespace orlftool
