/// A walk over all that stands in a folder: each item before what it holds, names in the order of
/// their bytes, links not followed.
///
///     FolderWalk walk([&](const std::string& folder) { return root.list(folder); }, options);
///     while (const auto item = walk.next())
///       if (item->path == "cache") walk.skipDescendants();
///     if (walk.hasFailed()) report(walk.failedFolder());
#pragma once

#include <ORLFoundation/platform/files/HeldFolder.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::files {

class FolderWalk {
 public:
  /// What stands in a folder, "" for the one that is walked; nil where it cannot be listed.
  using List = std::function<std::optional<std::vector<FolderEntry>>(const std::string& folder)>;
  struct Item {
    std::string path;
    FileKind kind = FileKind::Other;
  };

  /// `options` are those of `NSDirectoryEnumerationOptions`.
  FolderWalk(List list, NSUInteger options) : list_(std::move(list)), options_(options) {}

  /// nil at the end, and where a folder cannot be listed; the walk goes on past such a folder when
  /// it is asked again.
  [[nodiscard]] std::optional<Item> next();
  /// Whether the last answer was nil for a folder that could not be listed; `failedFolder` is it.
  [[nodiscard]] bool hasFailed() const noexcept { return hasFailed_; }
  [[nodiscard]] const std::string& failedFolder() const noexcept { return failedFolder_; }
  /// Leaves out what the last item holds. Nothing for one that is no folder.
  void skipDescendants() noexcept { descent_.reset(); }
  /// How many folders the last item stands in, beneath the one that is walked.
  [[nodiscard]] std::size_t level() const noexcept { return level_; }

 private:
  struct Level {
    std::string folder;
    std::vector<FolderEntry> entries;
    std::size_t next = 0;
  };

  [[nodiscard]] bool enter(const std::string& folder);

  const List list_;
  const NSUInteger options_;
  std::vector<Level> levels_;
  /// The folder to go into next.
  std::optional<std::string> descent_ = std::string();
  bool hasFailed_ = false;
  std::string failedFolder_;
  std::size_t level_ = 0;
};

}  // namespace ORLFoundation::internal::files
