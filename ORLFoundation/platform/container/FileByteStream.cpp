#include <ORLFoundation/platform/container/FileByteStream.h>

#include <cerrno>
#include <utility>

namespace ORLFoundation::internal::container {

using files::FileWork;

void throwFileFailure(FileWork work, int number, const std::string& path) {
  throw ArchiveError(files::errorOf({work, number, path}));
}

FileByteStream::FileByteStream(files::FileCalls& calls, files::OpenFile file, std::string path)
    : calls_(calls), file_(std::move(file)), path_(std::move(path)) {
  struct stat status {};
  if (!calls_.status(file_.number(), status)) throwFileFailure(FileWork::Read, errno, path_);
  if (S_ISDIR(status.st_mode)) throwFileFailure(FileWork::Read, EISDIR, path_);
  length_ = S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : UINT64_MAX;
}

std::size_t FileByteStream::read(std::span<std::uint8_t> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = calls_.read(file_.number(), std::as_writable_bytes(bytes.subspan(done)),
                                      static_cast<off_t>(place_));
    if (count < 0) throwFileFailure(FileWork::Read, errno, path_);
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
    place_ += static_cast<std::uint64_t>(count);
  }
  return done;
}

void FileByteStream::write(std::span<const std::uint8_t> bytes) {
  writeAt(place_, bytes);
  place_ += bytes.size();
}

void FileByteStream::writeAt(std::uint64_t place, std::span<const std::uint8_t> bytes) {
  isChanged_ = true;
  if (!calls_.write(file_.number(), std::as_bytes(bytes), static_cast<off_t>(place)))
    throwFileFailure(FileWork::Write, errno, path_);
}

void FileByteStream::close() {
  if (isChanged_ && !calls_.synchronize(file_.number()))
    throwFileFailure(FileWork::Write, errno, path_);
  if (!file_.close()) throwFileFailure(FileWork::Write, errno, path_);
}

}  // namespace ORLFoundation::internal::container
