/// Paths without links.
#pragma once

#include <ORLFoundation/platform/files/FileCalls.h>

#include <optional>
#include <string>

namespace ORLFoundation::internal::files {

/// An absolute path with its links, "." and ".." resolved. What does not exist keeps its name. nil,
/// with errno, for links that go round in a circle (ELOOP), for relative paths and those
/// with a zero in them (EINVAL), and where a part cannot be asked.
[[nodiscard]] std::optional<std::string> resolvedPath(FileCalls& calls, const std::string& path);

}  // namespace ORLFoundation::internal::files
