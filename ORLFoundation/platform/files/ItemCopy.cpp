#include <ORLFoundation/platform/files/ItemCopy.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace ORLFoundation::internal::files {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 17;
/// From this size on the kernel copies, which may share the blocks instead.
constexpr off_t kLargeBytes = off_t{1} << 20;
constexpr off_t kBlockBytes = 512;  // the unit of st_blocks
constexpr mode_t kNewFile = 0600, kNewFolder = 0700;
constexpr mode_t kModeBitsOfCopy = 07777;
/// The rights to run a file as its owner or its group.
constexpr mode_t kIdentityBits = 06000;

bool hasHoles(const struct stat& status) { return status.st_blocks * kBlockBytes < status.st_size; }

/// Attributes that belong to the system, and that it may withhold.
bool isSystemAttribute(std::string_view name) { return !name.starts_with("user."); }

}  // namespace

ItemCopy::ItemCopy(HeldFolder& source, HeldFolder& target, CopyToDisk toDisk, CopyNotice notice)
    : calls_(source.calls()),
      source_(source),
      target_(target),
      toDisk_(toDisk),
      notice_(std::move(notice)) {}

FileOutcome ItemCopy::unreadable() const {
  return FileFailure{FileWork::Read, errno, source_.pathOf(from_)};
}

FileOutcome ItemCopy::unwritable() const {
  return FileFailure{FileWork::Write, errno, target_.pathOf(to_)};
}

FileOutcome ItemCopy::copy(const std::string& from, const std::string& to) {
  from_ = from;
  to_ = to;
  if (notice_) notice_(source_.pathOf(from));
  struct stat status {};
  if (!source_.status(from, status)) return unreadable();
  switch (kindOf(status)) {
    case FileKind::File:
      return copyFile(from, to);
    case FileKind::Folder:
      return copyFolder(from, to);
    case FileKind::Link:
      return copyLink(from, to, status);
    default:
      return FileFailure{FileWork::Read, EOPNOTSUPP, source_.pathOf(from),
                         "it is neither a file, a folder nor a link"};
  }
}

FileOutcome ItemCopy::copyFile(const std::string& from, const std::string& to) {
  // A pipe that took the file's place meanwhile must not hold the process.
  const OpenFile original = source_.open(from, O_RDONLY | O_NONBLOCK);
  struct stat status {};
  if (!original.isOpen() || !calls_.status(original.number(), status)) return unreadable();
  if (kindOf(status) != FileKind::File) errno = EAGAIN;
  if (kindOf(status) != FileKind::File) return unreadable();
  const mode_t mode = (status.st_mode & 0777) | kNewFile;
  OpenFile made = target_.open(to, O_WRONLY | O_CREAT | O_EXCL, mode);
  if (!made.isOpen()) return unwritable();
  if (auto failure = copyBytes(original.number(), made.number(), status)) return failure;
  if (auto failure = keepTraits(original.number(), made.number(), status)) return failure;
  if (toDisk_ == CopyToDisk::Yes && !calls_.synchronize(made.number())) return unwritable();
  return made.close() ? std::nullopt : unwritable();
}

FileOutcome ItemCopy::copyLink(const std::string& from, const std::string& to,
                               const struct stat& status) {
  const int source = source_.folderOf(from);
  const std::optional<std::string> goal =
      source < 0 ? std::nullopt : calls_.readLink(source, nameOfPath(from));
  if (!goal) return unreadable();
  const int target = target_.folderOf(to);
  const std::string name = nameOfPath(to);
  if (target < 0 || !calls_.makeLink(target, name, *goal)) return unwritable();
  const bool isOurs = status.st_uid == ::geteuid() && status.st_gid == ::getegid();
  if (!isOurs && !calls_.setOwner(target, name, status.st_uid, status.st_gid) && errno != EPERM)
    return unwritable();
  return calls_.setTimes(target, name, status) ? std::nullopt : unwritable();
}

FileOutcome ItemCopy::copyFolder(const std::string& from, const std::string& to) {
  const int target = target_.folderOf(to);
  if (target < 0 || !calls_.makeFolder(target, nameOfPath(to), kNewFolder)) return unwritable();
  const auto entries = source_.list(from);
  if (!entries) return unreadable();
  for (const FolderEntry& entry : *entries)
    if (auto failure = copy(joinedPath(from, entry.name), joinedPath(to, entry.name)))
      return failure;
  from_ = from;
  to_ = to;
  const OpenFile original = source_.open(from, O_RDONLY | O_DIRECTORY);
  struct stat status {};
  if (!original.isOpen() || !calls_.status(original.number(), status)) return unreadable();
  const OpenFile made = target_.open(to, O_RDONLY | O_DIRECTORY);
  if (!made.isOpen()) return unwritable();
  if (auto failure = keepTraits(original.number(), made.number(), status)) return failure;
  const bool isSettled = toDisk_ == CopyToDisk::No || calls_.synchronize(made.number());
  return isSettled ? std::nullopt : unwritable();
}

FileOutcome ItemCopy::copyBytes(int from, int to, const struct stat& status) {
  if (hasHoles(status)) return copyAroundHoles(from, to, status.st_size);
  return copyPart(from, to, 0, status.st_size);
}

FileOutcome ItemCopy::copyAroundHoles(int from, int to, off_t size) {
  for (off_t at = 0; at < size;) {
    const off_t data = calls_.seek(from, at, SEEK_DATA);
    if (data < 0 && errno == ENXIO) break;  // nothing but a hole is left
    const off_t end = data < 0 ? data : calls_.seek(from, data, SEEK_HOLE);
    if (end < 0) return unreadable();
    if (auto failure = copyPart(from, to, data, end)) return failure;
    at = end;
  }
  return calls_.truncate(to, size) ? std::nullopt : unwritable();
}

FileOutcome ItemCopy::copyPart(int from, int to, off_t begin, off_t end) {
  off_t at = begin;
  while (end - at >= kLargeBytes) {
    const ssize_t count = calls_.copyRange(from, to, at, static_cast<std::size_t>(end - at));
    if (count <= 0) break;  // where it cannot, bytes are read and written
    at += count;
  }
  if (at < end) buffer_.resize(kBufferBytes);
  while (at < end) {
    const auto length = std::min<off_t>(end - at, kBufferBytes);
    const std::span<std::byte> bytes(buffer_.data(), static_cast<std::size_t>(length));
    const ssize_t count = calls_.read(from, bytes, at);
    if (count < 0) return unreadable();
    if (count == 0) break;  // the file has been cut short
    if (!calls_.write(to, bytes.first(static_cast<std::size_t>(count)), at)) return unwritable();
    at += count;
  }
  return std::nullopt;
}

FileOutcome ItemCopy::keepTraits(int from, int to, const struct stat& original) {
  struct stat made {};
  if (!calls_.status(to, made)) return unwritable();
  mode_t mode = original.st_mode & kModeBitsOfCopy;
  const bool isOwned = made.st_uid == original.st_uid && made.st_gid == original.st_gid;
  if (!isOwned && !calls_.setOwner(to, original.st_uid, original.st_gid)) {
    if (errno != EPERM) return unwritable();
    mode &= ~kIdentityBits;
  }
  if (auto failure = keepAttributes(from, to)) return failure;
  // Giving a file away took the identity bits.
  const bool hasMode = isOwned && (made.st_mode & kModeBitsOfCopy) == mode;
  if (!hasMode && !calls_.setMode(to, mode)) return unwritable();
  return calls_.setTimes(to, original) ? std::nullopt : unwritable();
}

FileOutcome ItemCopy::keepAttributes(int from, int to) {
  const std::optional<std::string> names = calls_.attributeNames(from);
  if (!names) return errno == EOPNOTSUPP ? std::nullopt : unreadable();
  for (std::size_t at = 0; at < names->size();) {
    const std::string name = names->c_str() + at;
    at += name.size() + 1;
    const std::optional<std::string> value = calls_.attribute(from, name);
    const bool isWithheld = errno == EPERM || errno == EOPNOTSUPP || errno == ENODATA;
    if (!value && isSystemAttribute(name) && isWithheld) continue;
    if (!value) return unreadable();
    if (calls_.setAttribute(to, name, *value)) continue;
    if (isSystemAttribute(name) && (errno == EPERM || errno == EOPNOTSUPP)) continue;
    return unwritable();
  }
  return std::nullopt;
}

}  // namespace ORLFoundation::internal::files
