/// The bytes of a file from front to back, piece by piece; how far is shown as progress.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orlftool {

struct ByteSource {
  /// For messages: the path, or "standard input".
  std::string name;
  /// The length in bytes; nil for what is no plain file.
  std::optional<std::uint64_t> size;
  /// Fills the buffer with the next bytes and tells how many; 0 at the end. Throws JobFailure for
  /// what cannot be read.
  std::function<std::size_t(std::span<char> buffer)> read;
};

/// The file at a path, standard input for "-". `kind` is what a message expects there. Throws
/// JobFailure for a file that cannot be read and for a directory.
[[nodiscard]] ByteSource openBytes(const std::string& path, std::string_view kind = "a file");
/// Bytes that live on while they are read.
[[nodiscard]] ByteSource bytesInMemory(std::string_view bytes);

/// Begins the same bytes anew each time.
using ReopenedBytes = std::function<ByteSource()>;

}  // namespace orlftool
