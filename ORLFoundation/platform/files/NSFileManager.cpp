#include <ORLFoundation/platform/files/NSFileManager.h>

#include <ORLFoundation/platform/files/FileFailure.h>
#include <ORLFoundation/platform/files/HeldFolder.h>
#include <ORLFoundation/platform/files/ItemChange.h>
#include <ORLFoundation/platform/files/ItemCopy.h>
#include <ORLFoundation/platform/files/ResolvedPath.h>
#include <ORLFoundation/platform/files/WholeFile.h>
#include <ORLFoundation/platform/value/NSUUID.h>

#include <cerrno>
#include <cstdio>
#include <span>
#include <utility>

namespace ORLFoundation {
namespace {

using namespace internal::files;

constexpr mode_t kPermissionBits = 07777;
constexpr mode_t kSharedFile = 0666;  // of which the process's mask takes away
constexpr mode_t kUnsharedFile = 0600, kTemporaryFolder = 0700;

/// An item by the folder that it stands in, which is held open, and its name there.
struct Place {
  HeldFolder holder;
  std::string name;
};

std::string holderOf(const std::string& path) {
  std::string folder = folderOfPath(path);
  if (!folder.empty()) return folder;
  return path.starts_with('/') ? "/" : ".";
}

std::optional<Place> placeOf(FileCalls& calls, const NSURL& url, FileWork work, NSErrorSlot error) {
  const auto path = pathOfFileURL(url, work, error);
  if (!path) return std::nullopt;
  Place place{HeldFolder(calls, holderOf(*path)), nameOfPath(*path)};
  if (place.holder.isOpen() && !place.name.empty()) return place;
  fillErrorSlot(error, {work, place.name.empty() ? EBUSY : errno, *path});
  return std::nullopt;
}

std::optional<mode_t> permissionsIn(const std::shared_ptr<NSDictionary>& attributes) {
  if (!attributes) return std::nullopt;
  const auto mode = attributes->objectForKey(NSFilePosixPermissions).as<NSUInteger>();
  return mode ? std::optional<mode_t>(static_cast<mode_t>(*mode) & kPermissionBits) : std::nullopt;
}

std::string_view textOf(const std::optional<NSData>& contents) {
  return contents ? contents->text() : std::string_view();
}

bool isNameOfFile(const std::string& path) { return !path.empty() && path.find('\0') == path.npos; }

bool isNameInFolder(const std::string& name) {
  return isNameOfFile(name) && name.find('/') == name.npos && name != "." && name != "..";
}

/// Whether two folders are one.
bool isSameFolder(HeldFolder& first, HeldFolder& second) {
  struct stat one {
  }, other{};
  return first.status("", one) && second.status("", other) && one.st_dev == other.st_dev &&
         one.st_ino == other.st_ino;
}

bool isInside(const std::string& path, const std::string& folder) {
  return path == folder || path.starts_with(joinedPath(folder, ""));
}

/// Whether a copy would be made inside of what is copied.
bool isIntoItself(FileCalls& calls, const NSURL& url, const NSURL& toURL) {
  const auto from = resolvedPath(calls, holderOf(url.path()));
  const auto to = resolvedPath(calls, holderOf(toURL.path()));
  return from && to && isInside(*to, joinedPath(*from, nameOfPath(url.path())));
}

bool writeNew(FileCalls& calls, OpenFile file, std::string_view bytes,
              const std::optional<mode_t>& mode) {
  return calls.write(file.number(), std::as_bytes(std::span(bytes)), 0) &&
         (!mode || calls.setMode(file.number(), *mode)) && file.close();
}

/// Puts the new item in place and keeps the old one under a name beside it, or removes it.
FileOutcome replaceAt(Place& from, Place& to, const std::optional<std::string>& backup) {
  auto failure = backup ? moveItem(from.holder, from.name, to.holder, to.name, RENAME_EXCHANGE)
                        : putInPlace(from.holder, from.name, to.holder, to.name);
  if (failure) return failure;
  const bool isFromBackup = backup && from.name == *backup && isSameFolder(from.holder, to.holder);
  if (isFromBackup) return std::nullopt;
  if (backup) failure = putInPlace(from.holder, from.name, to.holder, *backup);
  // What was replaced stands there now, where it is not gone already.
  if (!failure) static_cast<void>(removeItem(from.holder, from.name, RemoveByForce::Yes));
  return failure;
}

}  // namespace

NSFileManager::NSFileManager() : NSFileManager(FileCalls::system()) {}

NSFileManager::NSFileManager(std::shared_ptr<FileCalls> calls) : calls_(std::move(calls)) {}

NSFileManager::~NSFileManager() = default;

const std::shared_ptr<NSFileManager>& NSFileManager::defaultManager() {
  static const auto* const manager =
      new std::shared_ptr<NSFileManager>(std::make_shared<NSFileManager>());
  return *manager;
}

bool NSFileManager::fileExistsAtPath(const std::string& path) const {
  return isNameOfFile(path) && OpenFile(*calls_, calls_->open(AT_FDCWD, path, O_PATH)).isOpen();
}

std::shared_ptr<NSDictionary> NSFileManager::attributesOfItemAtPath(const std::string& path,
                                                                    NSErrorSlot error) const {
  struct stat status {};
  const bool isName = isNameOfFile(path);
  if (!isName || !calls_->status(AT_FDCWD, path, status)) {
    fillErrorSlot(error, {FileWork::Read, isName ? errno : ENOENT, path});
    return nullptr;
  }
  const auto date =
      NSDate::dateWithTimeIntervalSince1970(static_cast<double>(status.st_mtim.tv_sec) +
                                            static_cast<double>(status.st_mtim.tv_nsec) / 1e9);
  return NSDictionary::dictionaryWithEntries(
      {{NSFileSystemNumber, std::uint64_t{status.st_dev}},
       {NSFileSystemFileNumber, std::uint64_t{status.st_ino}},
       {NSFileSize, std::int64_t{status.st_size}},
       {NSFileModificationDate, date},
       {NSFilePosixPermissions, std::uint64_t{status.st_mode & kPermissionBits}}});
}

bool NSFileManager::createFileAtPath(const std::string& path, const std::optional<NSData>& contents,
                                     const std::shared_ptr<NSDictionary>& attributes) {
  if (!isNameOfFile(path)) return false;
  const auto mode = permissionsIn(attributes);
  const auto rights = mode ? NewFileRights::Private : NewFileRights::Shared;
  if (!replaceFile(path, textOf(contents), rights, nullptr)) return false;
  if (!mode) return true;
  const OpenFile file(*calls_, calls_->open(AT_FDCWD, path, O_RDONLY));
  return file.isOpen() && calls_->setMode(file.number(), *mode);
}

bool NSFileManager::createNewFileAtPath(const std::string& path,
                                        const std::optional<NSData>& contents,
                                        const std::shared_ptr<NSDictionary>& attributes) {
  if (!isNameOfFile(path)) return false;
  const auto mode = permissionsIn(attributes);
  OpenFile file(*calls_, calls_->open(AT_FDCWD, path, O_WRONLY | O_CREAT | O_EXCL,
                                      mode ? kUnsharedFile : kSharedFile));
  if (!file.isOpen()) return false;
  if (writeNew(*calls_, std::move(file), textOf(contents), mode)) return true;
  static_cast<void>(calls_->remove(AT_FDCWD, path));
  return false;
}

bool NSFileManager::removeItemAtURL(const NSURL& url, NSErrorSlot error) {
  auto place = placeOf(*calls_, url, FileWork::Remove, error);
  if (!place) return false;
  const auto failure = removeItem(place->holder, place->name, RemoveByForce::No);
  return !failure || fillErrorSlot(error, *failure);
}

bool NSFileManager::copyItemAtURL(const NSURL& url, const NSURL& toURL, NSErrorSlot error) {
  auto from = placeOf(*calls_, url, FileWork::Read, error);
  if (!from) return false;
  auto to = placeOf(*calls_, toURL, FileWork::Write, error);
  if (!to) return false;
  struct stat status {};
  if (to->holder.status(to->name, status))
    return fillErrorSlot(error, {FileWork::Write, EEXIST, toURL.path()});
  if (isIntoItself(*calls_, url, toURL))
    return fillErrorSlot(error,
                         {FileWork::Write, EINVAL, toURL.path(), "it is inside of its original"});
  const auto toDisk = bringsCopiesToDisk_ ? CopyToDisk::Yes : CopyToDisk::No;
  const auto failure =
      ItemCopy(from->holder, to->holder, toDisk, copyNotice_).copy(from->name, to->name);
  if (!failure) return true;
  if (failure->number != EEXIST)
    static_cast<void>(removeItem(to->holder, to->name, RemoveByForce::Yes));
  return fillErrorSlot(error, *failure);
}

bool NSFileManager::replaceItemAtURL(const NSItemReplacement& replacement,
                                     std::optional<NSURL>* resultingItemURL, NSErrorSlot error) {
  auto to = placeOf(*calls_, replacement.replaceItemAtURL, FileWork::Write, error);
  if (!to) return false;
  auto from = placeOf(*calls_, replacement.withItemAtURL, FileWork::Write, error);
  if (!from) return false;
  if (from->name == to->name && isSameFolder(from->holder, to->holder))
    return fillErrorSlot(
        error, {FileWork::Write, EINVAL, to->holder.pathOf(to->name), "it would replace itself"});
  auto backup = replacement.backupItemName;
  if ((replacement.options & NSFileManagerItemReplacementWithoutDeletingBackupItem) == 0)
    backup.reset();
  if (backup && (!isNameInFolder(*backup) || *backup == to->name))
    return fillErrorSlot(error, {FileWork::Write, EINVAL, *backup, "it is no name for a backup"});
  struct stat status {};
  if (!to->holder.status(to->name, status)) backup.reset();
  if (const auto failure = replaceAt(*from, *to, backup)) return fillErrorSlot(error, *failure);
  if (resultingItemURL != nullptr) *resultingItemURL = replacement.replaceItemAtURL;
  return true;
}

std::optional<NSURL> NSFileManager::URLForDirectory(NSUInteger directory, NSUInteger inDomain,
                                                    const NSURL& appropriateForURL, bool,
                                                    NSErrorSlot error) {
  const auto path = pathOfFileURL(appropriateForURL, FileWork::Write, error);
  if (!path) return std::nullopt;
  const bool isKnown = directory == NSItemReplacementDirectory && inDomain == NSUserDomainMask;
  struct stat status {};
  const bool isFolder =
      calls_->status(AT_FDCWD, joinedPath(*path, ""), status) && S_ISDIR(status.st_mode);
  const std::string made = joinedPath(isFolder ? *path : holderOf(*path),
                                      ".orlf-temporary-" + NSUUID::UUID().UUIDString());
  errno = EINVAL;
  if (isKnown && calls_->makeFolder(AT_FDCWD, made, kTemporaryFolder))
    return NSURL::fileURLWithPath(made);
  fillErrorSlot(error, {FileWork::Write, errno, made});
  return std::nullopt;
}

std::shared_ptr<NSDirectoryEnumerator> NSFileManager::enumeratorAtURL(
    const NSURL& url, const std::vector<std::string_view>&, NSUInteger options,
    NSDirectoryEnumerationErrorHandler errorHandler) const {
  return std::make_shared<NSDirectoryEnumerator>(calls_, url, options, std::move(errorHandler));
}

NSUInteger fileSystemNumber(const NSDictionary& attributes) {
  return attributes.objectForKey(NSFileSystemNumber).as<NSUInteger>().value_or(0);
}

NSUInteger fileSystemFileNumber(const NSDictionary& attributes) {
  return attributes.objectForKey(NSFileSystemFileNumber).as<NSUInteger>().value_or(0);
}

}  // namespace ORLFoundation
