
#include <ORLFoundation/platform/files/NSFileHandle.h>

#include <ORLFoundation/platform/files/FileCalls.h>
#include <sys/stat.h>

#include <fcntl.h>
#include <span>
#include <utility>

namespace ORLFoundation {

using internal::files::FileCalls;
using internal::files::OpenFile;

std::shared_ptr<NSFileHandle> NSFileHandle::fileHandleForWritingAtPath(
    const std::string& path, const std::shared_ptr<FileCalls>& calls) {
  if (path.find('\0') != std::string::npos) return nullptr;
  auto used = calls ? calls : FileCalls::system();
  OpenFile file(*used, used->open(AT_FDCWD, path, O_WRONLY | O_NONBLOCK | O_NOCTTY));
  if (!file.isOpen()) return nullptr;
  return std::make_shared<NSFileHandle>(std::move(used), std::move(file));
}

NSFileHandle::NSFileHandle(std::shared_ptr<FileCalls> calls, OpenFile file)
    : calls_(std::move(calls)), file_(std::make_unique<OpenFile>(std::move(file))) {}

NSFileHandle::~NSFileHandle() = default;

std::optional<std::uint64_t> NSFileHandle::seekToEndOfFile() {
  const off_t end = calls_->seek(file_->number(), 0, SEEK_END);
  if (end < 0) return std::nullopt;
  position_ = static_cast<std::uint64_t>(end);
  return position_;
}

bool NSFileHandle::writeData(std::string_view data) {
  const auto bytes = std::as_bytes(std::span(data.data(), data.size()));
  if (!calls_->write(file_->number(), bytes, static_cast<off_t>(position_))) return false;
  position_ += data.size();
  return true;
}

bool NSFileHandle::appendData(std::string_view data) {
  if (!calls_->waitForLock(file_->number())) return false;
  const auto end = seekToEndOfFile();
  const bool isWritten = end && writeData(data);
  if (end && !isWritten)
    static_cast<void>(calls_->truncate(file_->number(), static_cast<off_t>(*end)));
  static_cast<void>(calls_->unlock(file_->number()));
  return isWritten;
}

void NSFileHandle::closeFile() {
  if (file_->isOpen()) static_cast<void>(file_->close());
}

}  // namespace ORLFoundation
