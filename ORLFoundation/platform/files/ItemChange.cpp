#include <ORLFoundation/platform/files/ItemChange.h>

#include <ORLFoundation/platform/value/NSUUID.h>

#include <cerrno>
#include <cstdio>
#include <optional>

namespace ORLFoundation::internal::files {
namespace {

constexpr mode_t kModeOfFolder = 07777;
constexpr mode_t kOwnerWrites = 0200, kOwnerAll = 0700;

FileOutcome failedAt(FileWork work, const HeldFolder& root, const std::string& item) {
  return FileFailure{work, errno, root.pathOf(item)};
}

/// Brings a folder whose path has grown too long to the root, where it has a short one.
FileOutcome removeDeep(HeldFolder& root, const std::string& item) {
  const std::string name = ".deep-" + NSUUID::UUID().UUIDString();
  if (auto failure = moveItem(root, item, root, name, 0)) return failure;
  return removeItem(root, name, RemoveByForce::Yes);
}

FileOutcome removeFolder(HeldFolder& root, const std::string& item, RemoveByForce force) {
  const int holder = root.folderOf(item);
  if (holder < 0) return failedAt(FileWork::Remove, root, item);
  if (force == RemoveByForce::Yes && !root.calls().setMode(holder, nameOfPath(item), kOwnerAll))
    return failedAt(FileWork::Remove, root, item);
  const auto entries = root.list(item);
  if (!entries && errno == ENAMETOOLONG && force == RemoveByForce::Yes)
    return removeDeep(root, item);
  if (!entries) return failedAt(FileWork::Remove, root, item);
  for (const FolderEntry& entry : *entries)
    if (auto failure = removeItem(root, joinedPath(item, entry.name), force)) return failure;
  root.forgetLastFolder();
  const int emptied = root.folderOf(item);
  if (emptied >= 0 && root.calls().remove(emptied, nameOfPath(item), AT_REMOVEDIR))
    return std::nullopt;
  return failedAt(FileWork::Remove, root, item);
}

/// Lets the owner write to a folder for as long as it is moved.
class OpenedUp {
 public:
  OpenedUp(HeldFolder& root, const std::string& item) : root_(root), item_(item) {
    struct stat status {};
    if (!root.status(item, status) || !S_ISDIR(status.st_mode)) return;
    mode_ = status.st_mode & kModeOfFolder;
    isDone_ = (mode_ & kOwnerWrites) == 0 && set(root, item, mode_ | kOwnerWrites);
  }
  [[nodiscard]] bool isDone() const noexcept { return isDone_; }
  void undo() { undoAt(root_, item_); }
  /// The same where the folder stands now.
  void undoAt(HeldFolder& root, const std::string& item) {
    if (isDone_) static_cast<void>(set(root, item, mode_));
  }

 private:
  static bool set(HeldFolder& root, const std::string& item, mode_t mode) {
    const int holder = root.folderOf(item);
    return holder >= 0 && root.calls().setMode(holder, nameOfPath(item), mode);
  }

  HeldFolder& root_;
  const std::string& item_;
  mode_t mode_ = 0;
  bool isDone_ = false;
};

bool renameItem(HeldFolder& from, const std::string& item, HeldFolder& to,
                const std::string& toItem, unsigned flags) {
  const int source = from.folderOf(item);
  const int target = source < 0 ? -1 : to.folderOf(toItem);
  if (target < 0) return false;
  const bool isDone =
      from.calls().rename(source, nameOfPath(item), target, nameOfPath(toItem), flags);
  const int number = errno;
  from.forgetLastFolder();
  to.forgetLastFolder();
  errno = number;
  return isDone;
}

}  // namespace

FileOutcome removeItem(HeldFolder& root, const std::string& item, RemoveByForce force) {
  const int holder = root.folderOf(item);
  if (holder < 0) return failedAt(FileWork::Remove, root, item);
  if (root.calls().remove(holder, nameOfPath(item))) return std::nullopt;
  if (errno == EISDIR) return removeFolder(root, item, force);
  return failedAt(FileWork::Remove, root, item);
}

FileOutcome moveItem(HeldFolder& from, const std::string& item, HeldFolder& to,
                     const std::string& toItem, unsigned flags) {
  if (renameItem(from, item, to, toItem, flags)) return std::nullopt;
  if (errno != EACCES) return failedAt(FileWork::Write, to, toItem);
  auto refusal = failedAt(FileWork::Write, to, toItem);
  OpenedUp moved(from, item), displaced(to, toItem);
  if (!moved.isDone() && !displaced.isDone()) return refusal;
  if (renameItem(from, item, to, toItem, flags)) {
    moved.undoAt(to, toItem);
    if ((flags & RENAME_EXCHANGE) != 0) displaced.undoAt(from, item);
    return std::nullopt;
  }
  auto failure = failedAt(FileWork::Write, to, toItem);
  moved.undo();
  displaced.undo();
  return failure;
}

FileOutcome putInPlace(HeldFolder& from, const std::string& item, HeldFolder& to,
                       const std::string& toItem) {
  auto failure = moveItem(from, item, to, toItem, 0);
  if (!failure) return std::nullopt;
  const int number = failure->number;
  const bool isFolderInTheWay =
      number == EISDIR || number == ENOTDIR || number == ENOTEMPTY || number == EEXIST;
  if (!isFolderInTheWay) return failure;
  return moveItem(from, item, to, toItem, RENAME_EXCHANGE);
}

}  // namespace ORLFoundation::internal::files
