/// Files that the tool reads.
#pragma once

#include <string>
#include <string_view>

namespace orlftool {

/// The bytes of a file, of the standard input for "-". `kind` stands for it in messages: "a plan
/// file". Throws JobFailure for a file that cannot be read, for a directory and above 64 MB.
[[nodiscard]] std::string readInputFile(const std::string& path, std::string_view kind);

}  // namespace orlftool
