#include <ORLFoundation/platform/files/FolderWalk.h>

#include <ORLFoundation/platform/files/NSDirectoryEnumerator.h>

namespace ORLFoundation::internal::files {

bool FolderWalk::enter(const std::string& folder) {
  std::optional<std::vector<FolderEntry>> entries = list_(folder);
  hasFailed_ = !entries;
  if (hasFailed_) {
    failedFolder_ = folder;
    return false;
  }
  levels_.push_back({folder, std::move(*entries)});
  return true;
}

std::optional<FolderWalk::Item> FolderWalk::next() {
  hasFailed_ = false;
  if (const auto folder = std::exchange(descent_, std::nullopt); folder && !enter(*folder))
    return std::nullopt;
  const bool skipsHidden = (options_ & NSDirectoryEnumerationSkipsHiddenFiles) != 0;
  const bool descends = (options_ & NSDirectoryEnumerationSkipsSubdirectoryDescendants) == 0;
  while (!levels_.empty()) {
    Level& level = levels_.back();
    if (level.next == level.entries.size()) {
      levels_.pop_back();
      continue;
    }
    const FolderEntry& entry = level.entries[level.next++];
    if (skipsHidden && entry.name.starts_with('.')) continue;
    level_ = levels_.size() - 1;
    Item item{joinedPath(level.folder, entry.name), entry.kind};
    if (descends && item.kind == FileKind::Folder) descent_ = item.path;
    return item;
  }
  return std::nullopt;
}

}  // namespace ORLFoundation::internal::files
