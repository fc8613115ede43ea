#include "io/byte_source.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli/failure.h"
#include "progress/work_progress.h"

namespace orlftool {
namespace {

/// Standard input stays open.
void close(std::FILE* file) {
  if (file != nullptr && file != stdin) std::fclose(file);
}

}  // namespace

ByteSource openBytes(const std::string& path, std::string_view kind) {
  const bool isInput = path == "-";
  ByteSource source{isInput ? "standard input" : path, std::nullopt, {}};
  const std::shared_ptr<std::FILE> file(isInput ? stdin : std::fopen(path.c_str(), "rb"), &close);
  if (!file) throw JobFailure(source.name + ": cannot be read: " + std::strerror(errno));
  struct stat status {};
  if (::fstat(::fileno(file.get()), &status) == 0) {
    if (S_ISDIR(status.st_mode))
      throw JobFailure(source.name + ": expected " + std::string(kind) + ", got a directory");
    if (S_ISREG(status.st_mode)) source.size = static_cast<std::uint64_t>(status.st_size);
  }
  const auto progress =
      std::make_shared<WorkProgress>("Reading " + source.name, source.size, ProgressUnit::bytes);
  source.read = [file, progress, name = source.name,
                 done = std::uint64_t{0}](std::span<char> buffer) mutable {
    const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file.get());
    if (std::ferror(file.get()) != 0)
      throw JobFailure(name + ": cannot be read: " + std::strerror(errno));
    done += count;
    progress->update(static_cast<double>(done));
    return count;
  };
  return source;
}

ByteSource bytesInMemory(std::string_view bytes) {
  return {"memory", bytes.size(), [rest = bytes](std::span<char> buffer) mutable {
            const std::size_t count = std::min(buffer.size(), rest.size());
            std::copy_n(rest.data(), count, buffer.data());
            rest.remove_prefix(count);
            return count;
          }};
}

}  // namespace orlftool
