#include <ORLFoundation/security/store/internal/StoreLock.h>

#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/NSURLResourceValues.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

namespace ORLFoundation::internal::store {
namespace {

using files::FileCalls;
using files::OpenFile;

constexpr mode_t kPrivateMode = 0600;

std::string lockPathOf(const std::string& path) {
  return stringByResolvingSymlinksInPath(path) + ".lock";
}

OpenFile open(const std::string& path, int flags) {
  FileCalls& calls = *FileCalls::system();
  return {calls, calls.open(AT_FDCWD, path, flags | O_RDWR | O_NOFOLLOW, kPrivateMode)};
}

bool take(const OpenFile& file, int operation) {
  int result = 0;
  while ((result = ::flock(file.number(), operation)) != 0 && errno == EINTR) {
  }
  return result == 0;
}

/// Whether the file is the one that stands at the path: who removes it holds it.
bool standsAt(const std::string& path, const OpenFile& file) {
  struct stat held {
  }, there{};
  FileCalls& calls = *FileCalls::system();
  return calls.status(file.number(), held) && calls.status(AT_FDCWD, path, there) &&
         held.st_dev == there.st_dev && held.st_ino == there.st_ino;
}

}  // namespace

StoreLock::StoreLock(const NSURL& url, NSErrorSlot error) {
  const auto storePath = files::pathOfFileURL(url, files::FileWork::Write, error);
  if (!storePath) return;
  const std::string path = lockPathOf(*storePath);
  while (true) {
    OpenFile file = open(path, O_CREAT);
    if (!file.isOpen() || !take(file, LOCK_EX)) {
      files::fillErrorSlot(error, {files::FileWork::Write, errno, path});
      return;
    }
    if (!standsAt(path, file)) continue;
    file_ = std::move(file);
    return;
  }
}

void StoreLock::removeFile(const NSURL& url) {
  const auto storePath = files::pathOfFileURL(url, files::FileWork::Remove, nullptr);
  if (!storePath) return;
  const std::string path = lockPathOf(*storePath);
  const OpenFile file = open(path, 0);
  if (file.isOpen() && take(file, LOCK_EX | LOCK_NB) && standsAt(path, file))
    static_cast<void>(FileCalls::system()->remove(AT_FDCWD, path));
}

}  // namespace ORLFoundation::internal::store
