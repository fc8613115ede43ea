#include <ORLFoundation/platform/files/HeldFolder.h>

#include <dirent.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

namespace ORLFoundation::internal::files {
namespace {

constexpr std::size_t kRecordBytes = 32768;

FileKind kindOfRecord(unsigned char type) {
  switch (type) {
    case DT_REG:
      return FileKind::File;
    case DT_DIR:
      return FileKind::Folder;
    case DT_LNK:
      return FileKind::Link;
    default:
      return FileKind::Other;
  }
}

bool isSelfOrAbove(std::string_view name) { return name == "." || name == ".."; }

}  // namespace

FileKind kindOf(const struct stat& status) noexcept {
  if (S_ISREG(status.st_mode)) return FileKind::File;
  if (S_ISDIR(status.st_mode)) return FileKind::Folder;
  return S_ISLNK(status.st_mode) ? FileKind::Link : FileKind::Other;
}

std::string folderOfPath(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return std::string(slash == path.npos ? std::string_view() : path.substr(0, slash));
}

std::string nameOfPath(std::string_view path) {
  return std::string(path.substr(path.rfind('/') + 1));
}

std::string joinedPath(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.empty() && !path.ends_with('/')) path += '/';
  return path.append(name);
}

HeldFolder::HeldFolder(FileCalls& calls, const std::string& path)
    : calls_(calls), root_(calls, calls.open(AT_FDCWD, path, O_PATH | O_DIRECTORY)), path_(path) {}

HeldFolder::HeldFolder(FileCalls& calls, OpenFile root, std::string path)
    : calls_(calls), root_(std::move(root)), path_(std::move(path)) {}

std::string HeldFolder::pathOf(std::string_view item) const {
  return item.empty() ? path_ : joinedPath(path_, item);
}

int HeldFolder::folder(std::string_view path) {
  if (path.empty()) return root_.number();
  if (last_.isOpen() && lastPath_ == path) return last_.number();
  lastPath_ = path;
  last_ = OpenFile(calls_, calls_.openBeneath(number(), lastPath_, O_PATH | O_DIRECTORY));
  return last_.number();
}

bool HeldFolder::status(std::string_view item, struct stat& status) {
  if (item.empty()) return calls_.status(number(), status);
  const int folder = folderOf(item);
  return folder >= 0 && calls_.status(folder, nameOfPath(item), status);
}

OpenFile HeldFolder::open(std::string_view item, int flags, mode_t mode) {
  const int folder = folderOf(item);
  if (folder < 0) return {};
  return {calls_, calls_.open(folder, nameOfPath(item), flags | O_NOFOLLOW, mode)};
}

std::optional<std::vector<FolderEntry>> HeldFolder::list(std::string_view folder) {
  const OpenFile open(calls_,
                      calls_.openBeneath(number(), std::string(folder), O_RDONLY | O_DIRECTORY));
  std::vector<FolderEntry> entries;
  if (!open.isOpen() || !appendEntries(open.number(), entries)) return std::nullopt;
  std::sort(entries.begin(), entries.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return entries;
}

bool HeldFolder::appendEntries(int folder, std::vector<FolderEntry>& entries) {
  alignas(dirent64) std::array<std::byte, kRecordBytes> records;
  ssize_t length = 0;
  while ((length = calls_.list(folder, records)) > 0) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
      const auto* record = reinterpret_cast<const dirent64*>(records.data() + at);
      at += record->d_reclen;
      FolderEntry entry{record->d_name, kindOfRecord(record->d_type)};
      if (isSelfOrAbove(entry.name)) continue;
      if (record->d_type == DT_UNKNOWN) {  // some file systems tell no kinds
        struct stat status {};
        if (!calls_.status(folder, entry.name, status)) return false;
        entry.kind = kindOf(status);
      }
      entries.push_back(std::move(entry));
    }
  }
  return length == 0;
}

}  // namespace ORLFoundation::internal::files
