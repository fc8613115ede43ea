#include "io/atomic_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "cli/failure.h"

namespace orlftool {
namespace {

[[noreturn]] void failToWrite(const std::string& path, int error) {
  throw JobFailure(path + ": cannot be written: " + std::strerror(error));
}

/// The file that a path leads to through links. Only files are replaced, not devices and pipes.
std::string targetOf(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) return path;
  if (!std::filesystem::is_regular_file(status))
    throw JobFailure(path + ": cannot be written: it is not a file");
  return std::filesystem::canonical(path, error).string();
}

/// Makes an empty file of a new name beside the path, with the rights that a new file gets.
std::string makeTemporaryFile(const std::string& path) {
  std::string name = path + ".XXXXXX";
  const int descriptor = ::mkstemp(name.data());
  if (descriptor < 0) failToWrite(path, errno);
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(descriptor, 0666 & ~mask);
  ::close(descriptor);
  return name;
}

void writeBytes(const std::string& path, std::string_view contents) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) failToWrite(path, errno);
  const bool written = std::fwrite(contents.data(), 1, contents.size(), file) == contents.size();
  const bool closed = std::fclose(file) == 0;
  if (!written || !closed) failToWrite(path, errno);
}

}  // namespace

void writeFileAtomically(const std::string& path,
                         const std::function<void(const std::string&)>& write) {
  const std::string target = targetOf(path);
  const std::string temporary = makeTemporaryFile(target);
  try {
    write(temporary);
    if (std::rename(temporary.c_str(), target.c_str()) != 0) failToWrite(path, errno);
  } catch (...) {
    std::remove(temporary.c_str());
    throw;
  }
}

void writeFileAtomically(const std::string& path, std::string_view contents) {
  writeFileAtomically(
      path, [contents](const std::string& temporary) { writeBytes(temporary, contents); });
}

}  // namespace orlftool
