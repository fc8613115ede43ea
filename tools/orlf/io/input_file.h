/// Files that the tool reads.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace orlftool {

using InputFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// A file opened for reading, the standard input for "-". Null when it cannot be opened; the reason
/// stands in `errno` then.
[[nodiscard]] InputFile openInputFile(const std::string& path);

/// The bytes of a file, of the standard input for "-". `kind` stands for it in messages: "a plan
/// file". Throws JobFailure for a file that cannot be read, for a directory and above 64 MB.
[[nodiscard]] std::string readInputFile(const std::string& path, std::string_view kind);

}  // namespace orlftool
