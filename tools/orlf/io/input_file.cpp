#include "io/input_file.h"

#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include "cli/failure.h"
#include "progress/work_progress.h"

namespace orlftool {
namespace {

constexpr std::size_t kMostBytes = std::size_t{64} << 20;

int closeNothing(std::FILE*) { return 0; }

}  // namespace

InputFile openInputFile(const std::string& path) {
  if (path == "-") return {stdin, &closeNothing};
  return {std::fopen(path.c_str(), "rb"), &std::fclose};
}

std::string readInputFile(const std::string& path, std::string_view kind) {
  const bool isInput = path == "-";
  const std::string name = isInput ? "standard input" : path;
  struct stat status {};
  if (!isInput && ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
    throw JobFailure(name + ": expected " + std::string(kind) + ", got a directory");
  const InputFile file = openInputFile(path);
  if (!file) throw JobFailure(name + ": cannot be read: " + std::strerror(errno));
  const bool isPlain = !isInput && S_ISREG(status.st_mode);
  const WorkProgress progress(
      "Reading " + name,
      isPlain ? std::optional(static_cast<double>(status.st_size)) : std::nullopt,
      ProgressUnit::bytes);
  std::string bytes;
  std::array<char, 65536> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
    bytes.append(buffer.data(), count);
    progress.update(static_cast<double>(bytes.size()));
    if (bytes.size() > kMostBytes)
      throw JobFailure(name + ": expected " + std::string(kind) + " of at most 64 MB, got more");
  }
  if (std::ferror(file.get()) != 0)
    throw JobFailure(name + ": cannot be read: " + std::strerror(errno));
  return bytes;
}

}  // namespace orlftool
