#include <ORLFoundation/platform/container/internal/FolderPacking.h>

#include <ORLFoundation/platform/log/NSLog.h>

#include <algorithm>
#include <cerrno>

namespace ORLFoundation::internal::container {

using files::FileKind;
using files::FileWork;
using files::FolderWalk;
using files::OpenFile;

namespace {

constexpr mode_t kPackedModeBits = 07777;

bool isSameFile(const std::optional<std::pair<std::uint64_t, std::uint64_t>>& file,
                const struct stat& status) {
  return file && file->first == status.st_dev && file->second == status.st_ino;
}

}  // namespace

void FolderPacking::throwUnreadable(const std::string& path) const {
  throwFileFailure(FileWork::Read, errno, folder_.pathOf(path));
}

void FolderPacking::packInto(ArchiveStream& stream) {
  struct stat status {};
  if (!folder_.status("", status)) throwUnreadable("");
  ArchiveHeader header = headerOf('D', "");
  appendTraits(header, status);
  stream.writeHeader(header);
  FolderWalk walk([this](const std::string& path) { return folder_.list(path); }, 0);
  while (const auto item = walk.next()) packItem(stream, *item);
  if (walk.hasFailed()) throwUnreadable(walk.failedFolder());
  advance(0);
}

void FolderPacking::packItem(ArchiveStream& stream, const FolderWalk::Item& item) {
  if (item.kind == FileKind::File) return packFile(stream, item.path);
  struct stat status {};
  if (!folder_.status(item.path, status)) throwUnreadable(item.path);
  if (item.kind == FileKind::Link) return packLink(stream, item.path, status);
  if (item.kind == FileKind::Other) {
    NSLog("Left out of the archive, since it is no file, folder or link: " +
          folder_.pathOf(item.path));
    return;
  }
  ArchiveHeader header = headerOf('D', item.path);
  appendTraits(header, status);
  stream.writeHeader(header);
  advance(0);
}

void FolderPacking::packFile(ArchiveStream& stream, const std::string& path) {
  // Nobody waits for a pipe that took the file's place.
  const OpenFile file = folder_.open(path, O_RDONLY | O_NONBLOCK);
  struct stat status {};
  if (!file.isOpen() || !folder_.calls().status(file.number(), status)) throwUnreadable(path);
  if (!S_ISREG(status.st_mode)) throwFileFailure(FileWork::Read, EINVAL, folder_.pathOf(path));
  if (isSameFile(options_.leftOut, status)) return;
  ArchiveHeader header = headerOf('F', path);
  appendTraits(header, status);
  const bool holdsData = keys_.contains("DAT");
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (holdsData) header.append(ArchiveHeader::Field::blob("DAT", size));
  stream.writeHeader(header);
  for (std::uint64_t at = 0; holdsData && at < size;) {
    const std::size_t count = std::min<std::uint64_t>(piece_.size(), size - at);
    const auto bytes = std::span(piece_).first(count);
    const ssize_t read =
        folder_.calls().read(file.number(), std::as_writable_bytes(bytes), static_cast<off_t>(at));
    if (read < 0) throwUnreadable(path);
    if (read == 0)
      throw ArchiveError(ArchiveErrorChanged,
                         folder_.pathOf(path) + ": it became shorter while it was packed");
    stream.writeBlob("DAT", bytes.first(static_cast<std::size_t>(read)));
    at += static_cast<std::uint64_t>(read);
    advance(static_cast<std::uint64_t>(read));
  }
  if (size == 0) advance(0);
}

void FolderPacking::packLink(ArchiveStream& stream, const std::string& path,
                             const struct stat& status) {
  const int folder = folder_.folderOf(path);
  const auto target =
      folder < 0 ? std::nullopt : folder_.calls().readLink(folder, files::nameOfPath(path));
  if (!target) throwUnreadable(path);
  ArchiveHeader header = headerOf('L', path);
  header.append(ArchiveHeader::Field::string("LNK", *target));
  appendTraits(header, status);
  stream.writeHeader(header);
}

ArchiveHeader FolderPacking::headerOf(char type, const std::string& path) const {
  ArchiveHeader header;
  header.append(ArchiveHeader::Field::uint("TYP", static_cast<std::uint8_t>(type)));
  header.append(ArchiveHeader::Field::string("PAT", path));
  return header;
}

void FolderPacking::appendTraits(ArchiveHeader& header, const struct stat& status) const {
  if (keys_.contains("UID")) header.append(ArchiveHeader::Field::uint("UID", status.st_uid));
  if (keys_.contains("GID")) header.append(ArchiveHeader::Field::uint("GID", status.st_gid));
  if (keys_.contains("MOD"))
    header.append(ArchiveHeader::Field::uint("MOD", status.st_mode & kPackedModeBits));
}

void FolderPacking::advance(std::uint64_t bytes) {
  packed_ += bytes;
  if (options_.advance) options_.advance(packed_);
}

}  // namespace ORLFoundation::internal::container
