/// A folder that is held open, and what stands beneath it. Items are named by their paths from it,
/// with "/" between names. No link is followed on the way to one and nothing outside is reached,
/// whatever is renamed, removed or put in place of a folder meanwhile.
///
///     HeldFolder root(*FileCalls::system(), "/home/ann/books");
///     if (!root.isOpen()) return failed(errno);
///     struct stat status {};
///     if (root.status("2024/may.csv", status)) use(status.st_size);
#pragma once

#include <ORLFoundation/platform/files/FileCalls.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::files {

enum class FileKind : std::uint8_t { File, Folder, Link, Other };

struct FolderEntry {
  std::string name;
  FileKind kind = FileKind::Other;
};

[[nodiscard]] FileKind kindOf(const struct stat& status) noexcept;

/// "a" of "a/b", "" of "b".
[[nodiscard]] std::string folderOfPath(std::string_view path);
/// "b" of "a/b".
[[nodiscard]] std::string nameOfPath(std::string_view path);
/// "a/b"; the name alone where the folder is "".
[[nodiscard]] std::string joinedPath(std::string_view folder, std::string_view name);

class HeldFolder {
 public:
  /// Opens the folder at a path, through links. Not open, with errno, on failure.
  HeldFolder(FileCalls& calls, const std::string& path);
  /// A folder that was opened already.
  HeldFolder(FileCalls& calls, OpenFile root, std::string path);

  [[nodiscard]] bool isOpen() const noexcept { return root_.isOpen(); }
  [[nodiscard]] FileCalls& calls() const noexcept { return calls_; }
  [[nodiscard]] int number() const noexcept { return root_.number(); }
  /// As it was given.
  [[nodiscard]] const std::string& path() const noexcept { return path_; }
  /// The path of an item, for people.
  [[nodiscard]] std::string pathOf(std::string_view item) const;

  /// A descriptor of a folder beneath, by which its items are named; -1 with errno. It holds until
  /// the next call.
  [[nodiscard]] int folder(std::string_view path);
  /// A descriptor of the folder that an item stands in.
  [[nodiscard]] int folderOf(std::string_view item) { return folder(folderOfPath(item)); }
  /// Must follow a change that puts another folder, or none, at a path.
  void forgetLastFolder() noexcept { last_ = OpenFile(); }
  /// Of the item itself, of a link too. false with errno.
  [[nodiscard]] bool status(std::string_view item, struct stat& status);
  /// Opens an item, links not.
  [[nodiscard]] OpenFile open(std::string_view item, int flags, mode_t mode = 0);
  /// What stands in a folder, in the order of the names' bytes; nil with errno.
  [[nodiscard]] std::optional<std::vector<FolderEntry>> list(std::string_view folder);

 private:
  bool appendEntries(int folder, std::vector<FolderEntry>& entries);

  FileCalls& calls_;
  OpenFile root_;
  std::string path_;
  // The folder that was asked for last: items are worked on one folder after the other.
  OpenFile last_;
  std::string lastPath_;
};

}  // namespace ORLFoundation::internal::files
