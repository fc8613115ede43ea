#include "io/input_file.h"

#include <array>

#include "cli/failure.h"
#include "io/byte_source.h"

namespace orlftool {

std::string readInputFile(const std::string& path, std::string_view kind) {
  constexpr std::size_t kMostBytes = std::size_t{64} << 20;
  const ByteSource source = openBytes(path, kind);
  std::string bytes;
  std::array<char, 65536> buffer{};
  while (const std::size_t count = source.read(buffer)) {
    bytes.append(buffer.data(), count);
    if (bytes.size() > kMostBytes)
      throw JobFailure(source.name + ": expected " + std::string(kind) +
                       " of at most 64 MB, got more");
  }
  return bytes;
}

}  // namespace orlftool
