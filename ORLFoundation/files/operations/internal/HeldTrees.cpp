#include <ORLFoundation/files/operations/internal/HeldTrees.h>

#include <ORLFoundation/platform/files/ItemChange.h>
#include <ORLFoundation/platform/files/ResolvedPath.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace ORLFoundation::internal::operations {
namespace {

using namespace files;

struct Identity {
  dev_t device = 0;
  ino_t file = 0;
  friend bool operator==(const Identity& a, const Identity& b) {
    return a.device == b.device && a.file == b.file;
  }
};

std::optional<Identity> identityOf(FileCalls& calls, int folder) {
  struct stat status {};
  if (!calls.status(folder, status)) return std::nullopt;
  return Identity{status.st_dev, status.st_ino};
}

/// Whether a folder is another one or lies in it, by climbing to the root; nil with errno.
std::optional<bool> isWithin(FileCalls& calls, const HeldFolder& inner, const Identity& outer) {
  OpenFile held;
  int at = inner.number();
  auto identity = identityOf(calls, at);
  while (identity && !(*identity == outer)) {
    OpenFile above(calls, calls.open(at, "..", O_PATH | O_DIRECTORY));
    if (!above.isOpen()) return std::nullopt;
    const auto next = identityOf(calls, above.number());
    if (next && *next == *identity) return false;  // the root lies in itself
    identity = next;
    held = std::move(above);
    at = held.number();
  }
  return identity ? std::optional<bool>(true) : std::nullopt;
}

FileFailure failed(FileWork work, const HeldFolder& root, const std::string& item = {}) {
  return {work, errno, root.pathOf(item)};
}

/// The folder at a path, with the failure where it cannot be opened.
HeldFolder opened(FileCalls& calls, const std::string& path, FileOutcome& failure) {
  const auto resolved = resolvedPath(calls, path);
  HeldFolder folder = resolved ? HeldFolder(calls, *resolved) : HeldFolder(calls, OpenFile(), path);
  if (folder.isOpen()) return folder;
  const int number = errno;
  struct stat status {};
  const bool isOther = number == ENOTDIR && calls.status(AT_FDCWD, folder.path(), status) &&
                       !S_ISDIR(status.st_mode);
  failure = isOther ? FileFailure{FileWork::Read, EINVAL, path, "it is not a folder"}
                    : FileFailure{FileWork::Read, number, path};
  return folder;
}

}  // namespace

HeldTrees::HeldTrees(const NSFileManager& manager, const std::string& destination,
                     const std::string& source)
    : calls_(*manager.calls()),
      toDisk_(manager.bringsCopiesToDisk() ? CopyToDisk::Yes : CopyToDisk::No),
      notice_(manager.copyNotice()),
      destination_(opened(calls_, destination, failureOfDestination_)),
      source_(opened(calls_, source, failureOfSource_)) {}

FileOutcome HeldTrees::check() {
  if (failureOfSource_) return failureOfSource_;
  if (failureOfDestination_) return failureOfDestination_;
  const auto source = identityOf(calls_, source_.number());
  if (!source) return failed(FileWork::Read, source_);
  const auto destination = identityOf(calls_, destination_.number());
  if (!destination) return failed(FileWork::Read, destination_);
  const auto isInner = isWithin(calls_, destination_, *source);
  if (!isInner) return failed(FileWork::Read, destination_);
  const auto isOuter = *isInner ? isInner : isWithin(calls_, source_, *destination);
  if (!isOuter) return failed(FileWork::Read, source_);
  if (!*isOuter) return std::nullopt;
  return FileFailure{FileWork::Write, EINVAL, destination_.path(),
                     "it is the folder to copy from, lies in it, or holds it"};
}

const std::string& HeldTrees::destinationPath() const noexcept { return destination_.path(); }

void HeldTrees::removeAbandoned() { ReplacementFolder::removeAbandoned(destination_); }

HeldFolder& HeldTrees::root(Side side) noexcept {
  return side == Side::Source ? source_ : destination_;
}

std::optional<HeldTrees::Entries> HeldTrees::list(Side side, const std::string& folder,
                                                  NSErrorSlot error) {
  auto entries = root(side).list(folder);
  if (!entries) fillErrorSlot(error, failed(FileWork::Read, root(side), folder));
  // What replacements work in belongs to neither tree.
  if (entries && folder.empty())
    entries->erase(std::remove_if(entries->begin(), entries->end(),
                                  [](const FolderEntry& entry) {
                                    return entry.kind == FileKind::Folder &&
                                           ReplacementFolder::isName(entry.name);
                                  }),
                   entries->end());
  return entries;
}

std::optional<std::string> HeldTrees::resolved(Side side, const std::string& item,
                                               NSErrorSlot error) {
  HeldFolder& tree = root(side);
  // Mostly there is no link on the way, and a status tells so.
  if (const int holder = tree.folderOf(item); holder >= 0) {
    last_ = {side, item, {}, 0};
    if (!calls_.status(holder, nameOfPath(item), last_.status)) last_.number = errno;
    const bool isLink = last_.number == 0 && S_ISLNK(last_.status.st_mode);
    if (!isLink && (last_.number == 0 || last_.number == ENOENT)) return item;
  }
  last_ = {};
  const auto path = resolvedPath(calls_, tree.pathOf(item));
  if (!path) {
    fillErrorSlot(error, failed(FileWork::Read, tree, item));
    return std::nullopt;
  }
  const std::string prefix = joinedPath(tree.path(), "");
  if (path->starts_with(prefix)) return path->substr(prefix.size());
  fillErrorSlot(error, {FileWork::Read, EXDEV, tree.pathOf(item),
                        "the link leads out of " + tree.path() + ", to " + *path});
  return std::nullopt;
}

std::optional<ItemValues> HeldTrees::values(Side side, const std::string& item, NSErrorSlot error) {
  Asked asked{side, item, {}, 0};
  if (!item.empty() && last_.side == side && last_.item == item) {
    asked = std::exchange(last_, {});
  } else if (!root(side).status(item, asked.status)) {
    asked.number = errno;
  }
  if (asked.number != 0) {
    fillErrorSlot(error, {FileWork::Read, asked.number, root(side).pathOf(item)});
    return std::nullopt;
  }
  const struct stat& status = asked.status;
  const bool isDirectory = S_ISDIR(status.st_mode);
  ItemValues values{.isDirectory = isDirectory};
  if (!isDirectory) values.fileSize = status.st_size;
  return values;
}

void HeldTrees::requestTemporaryFolder() {
  temporary_ = ReplacementFolder::make(destination_, failureOfTemporary_);
  if (temporary_) copies_.emplace(source_, temporary_->folder(), toDisk_, notice_);
}

bool HeldTrees::copy(const std::string& sourceItem, const std::string& destinationItem,
                     NSErrorSlot error) {
  if (!temporary_) return fillErrorSlot(error, *failureOfTemporary_);
  const FileOutcome failure = copies_->copy(sourceItem, nameOfPath(destinationItem));
  return !failure || fillErrorSlot(error, *failure);
}

bool HeldTrees::replace(const std::string& destinationItem, NSErrorSlot error) {
  const auto failure =
      putInPlace(temporary_->folder(), nameOfPath(destinationItem), destination_, destinationItem);
  if (failure) return fillErrorSlot(error, *failure);
  changedFolders_.insert(folderOfPath(destinationItem));
  return true;
}

bool HeldTrees::settle(NSErrorSlot error) {
  if (toDisk_ == CopyToDisk::No) return true;
  for (const std::string& folder : changedFolders_) {
    const OpenFile open(calls_,
                        calls_.openBeneath(destination_.number(), folder, O_RDONLY | O_DIRECTORY));
    const bool isGone = !open.isOpen() && errno == ENOENT;  // with a folder that was removed
    if (!isGone && (!open.isOpen() || !calls_.synchronize(open.number())))
      return fillErrorSlot(error, failed(FileWork::Write, destination_, folder));
  }
  return true;
}

void HeldTrees::discard(const std::string& destinationItem) {
  static_cast<void>(
      removeItem(temporary_->folder(), nameOfPath(destinationItem), RemoveByForce::Yes));
}

bool HeldTrees::remove(const std::string& destinationItem, NSErrorSlot error) {
  struct stat status {};
  FileOutcome failure;
  if (!destination_.status(destinationItem, status)) {
    failure = failed(FileWork::Remove, destination_, destinationItem);
  } else if (S_ISDIR(status.st_mode)) {
    failure = removeFolder(destinationItem);
  } else {
    failure = removeItem(destination_, destinationItem, RemoveByForce::No);
  }
  if (failure) return fillErrorSlot(error, *failure);
  changedFolders_.insert(folderOfPath(destinationItem));
  return true;
}

/// In one step, as others see it: the folder is moved away before it is taken apart, where there is
/// a place to move it to.
FileOutcome HeldTrees::removeFolder(const std::string& item) {
  if (!temporary_) return removeItem(destination_, item, RemoveByForce::No);
  const std::string name = ".removed-" + std::to_string(removedFolders_++);
  if (auto failure = moveItem(destination_, item, temporary_->folder(), name, 0)) return failure;
  static_cast<void>(removeItem(temporary_->folder(), name, RemoveByForce::Yes));
  return std::nullopt;
}

void HeldTrees::endTemporaryFolder() {
  if (temporary_) temporary_->remove();
  temporary_.reset();
}

}  // namespace ORLFoundation::internal::operations
