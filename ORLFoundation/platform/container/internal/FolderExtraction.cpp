#include <ORLFoundation/platform/container/internal/FolderExtraction.h>

#include <ORLFoundation/platform/container/internal/HeaderFields.h>
#include <ORLFoundation/platform/log/NSLog.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string_view>

namespace ORLFoundation::internal::container {

using files::FileWork;
using files::folderOfPath;
using files::nameOfPath;

namespace {

constexpr mode_t kOwnFolder = 0700, kOwnFile = 0600, kNewFolder = 0755, kNewFile = 0644;
constexpr mode_t kRightsBits = 0777, kModeBits = 07777;
/// Names that are kept until the end.
constexpr std::uint64_t kMostHeldBytes = std::uint64_t{64} << 20;

[[noreturn]] void throwUnsafe(std::string_view path, std::string_view why) {
  throw ArchiveError(
      ArchiveErrorUnsafeName,
      "The archive was not extracted: \"" + std::string(path) + "\" " + std::string(why) + ".");
}

/// Refuses a path that is not a way down from the folder.
void checkPath(std::string_view path) {
  if (path.size() >= PATH_MAX) throwUnsafe(path.substr(0, 100), "is too long a name");
  if (path.find('\0') != path.npos) throwUnsafe(path.data(), "has a zero byte in its name");
  if (path.starts_with('/')) throwUnsafe(path, "is an absolute name");
  for (std::string_view rest = path; !rest.empty();) {
    const std::size_t slash = rest.find('/');
    const std::string_view name = rest.substr(0, slash);
    if (name.empty() || name == "." || name == "..") throwUnsafe(path, "leads out of its folder");
    if (slash == rest.npos) return;
    rest.remove_prefix(slash + 1);
    if (rest.empty()) throwUnsafe(path, "ends with a slash");
  }
}

}  // namespace

void FolderExtraction::throwUnwritable(const std::string& path) const {
  if (errno == EEXIST) throwUnsafe(path, "comes twice");
  throwFileFailure(FileWork::Write, errno, folder_.pathOf(path));
}

FolderExtraction::Traits FolderExtraction::traitsOf(const ArchiveHeader& header) const {
  Traits traits{std::nullopt, header.uintForKey("UID"), header.uintForKey("GID")};
  const mode_t kept = options_.keepsSetIDBits ? kModeBits : kRightsBits;
  if (const auto mode = header.uintForKey("MOD")) traits.mode = static_cast<mode_t>(*mode) & kept;
  return traits;
}

bool FolderExtraction::takesOwners(const Traits& traits) const {
  if (!options_.keepsOwners || !traits.user || !traits.group) return false;
  if (*traits.user >= UINT32_MAX || *traits.group >= UINT32_MAX)
    throwDamaged("an owner has an impossible number");
  return true;
}

/// Bounds the memory that hostile archives can take.
void FolderExtraction::hold(const std::string& text) {
  heldBytes_ += text.size() + sizeof(Late);
  if (heldBytes_ > kMostHeldBytes)
    throw ArchiveError(ArchiveErrorTooLarge, "The archive holds too many folders and links.");
}

void FolderExtraction::writeHeader(const ArchiveHeader& header) {
  finishFile();
  const auto type = header.uintForKey("TYP");
  const auto path = header.stringForKey("PAT");
  if (!type || !path) throwDamaged("an entry has no type or no name");
  checkPath(*path);
  path_ = *path;
  if (*type == 'D') return makeFolder(*path, traitsOf(header));
  if (*type == 'M') return;
  if (path->empty()) throwUnsafe(*path, "is no name of a file");
  if (*type == 'F') return beginFile(*path, header);
  if (*type == 'L') return noteLink(*path, header);
  NSLog("Left out of what was extracted, since it is no file, folder or link: " + *path);
}

int FolderExtraction::parentOf(const std::string& path) {
  const std::string parent = folderOfPath(path);
  if (const int folder = folder_.folder(parent); folder >= 0 || errno != ENOENT) return folder;
  const int above = parentOf(parent);
  if (above < 0) return above;
  if (!folder_.calls().makeFolder(above, nameOfPath(parent), kOwnFolder)) return -1;
  hold(parent);
  implied_.insert(parent);
  folders_.push_back({parent, {kNewFolder, std::nullopt, std::nullopt}, {}});
  return folder_.folder(parent);
}

void FolderExtraction::makeFolder(const std::string& path, const Traits& traits) {
  if (path.empty()) {
    if (std::exchange(hasRoot_, true)) throwUnsafe(path, "comes twice");
  } else if (implied_.erase(path) == 0) {
    const int folder = parentOf(path);
    if (folder < 0 || !folder_.calls().makeFolder(folder, nameOfPath(path), kOwnFolder))
      throwUnwritable(path);
  }
  hold(path);
  folders_.push_back({path, traits, {}});
}

void FolderExtraction::beginFile(const std::string& path, const ArchiveHeader& header) {
  const auto data = header.blobSizeForKey("DAT");
  if (!data && header.uintForKey("SIZ").value_or(0) != 0)
    throwUnsupported("it holds the names of files without their contents");
  if (parentOf(path) < 0) throwUnwritable(path);
  file_ = folder_.open(path, O_WRONLY | O_CREAT | O_EXCL, kOwnFile);
  if (!file_.isOpen()) throwUnwritable(path);
  fileTraits_ = traitsOf(header);
  left_ = data.value_or(0);
  place_ = 0;
}

void FolderExtraction::writeBlob(ArchiveHeader::FieldKey key, std::span<const std::uint8_t> from) {
  // Of two blobs of data the first one counts.
  if (!file_.isOpen() || key != ArchiveHeader::FieldKey("DAT") || left_ == 0) return;
  if (from.size() > left_) throwDamaged("a file is longer than its entry says");
  if (!folder_.calls().write(file_.number(), std::as_bytes(from), static_cast<off_t>(place_)))
    throwUnwritable(path_);
  left_ -= from.size();
  place_ += from.size();
}

void FolderExtraction::finishFile() {
  if (!file_.isOpen()) return;
  if (left_ > 0) throwDamaged("a file is shorter than its entry says");
  // Giving a file away takes bits of its mode, so that comes first.
  const bool isOwned =
      !takesOwners(fileTraits_) ||
      folder_.calls().setOwner(file_.number(), static_cast<uid_t>(*fileTraits_.user),
                               static_cast<gid_t>(*fileTraits_.group));
  if (!isOwned || !folder_.calls().setMode(file_.number(), fileTraits_.mode.value_or(kNewFile)) ||
      !file_.close())
    throwUnwritable(path_);
  file_ = files::OpenFile();
}

void FolderExtraction::noteLink(const std::string& path, const ArchiveHeader& header) {
  const auto target = header.stringForKey("LNK");
  if (!target || target->empty() || target->find('\0') != target->npos)
    throwDamaged("a link leads nowhere");
  hold(path);
  hold(*target);
  links_.push_back({path, traitsOf(header), *target});
}

void FolderExtraction::makeLink(const Late& link) {
  const int folder = parentOf(link.path);
  const std::string name = nameOfPath(link.path);
  if (folder < 0 || !folder_.calls().makeLink(folder, name, link.target))
    throwUnwritable(link.path);
  if (takesOwners(link.traits) &&
      !folder_.calls().setOwner(folder, name, static_cast<uid_t>(*link.traits.user),
                                static_cast<gid_t>(*link.traits.group)))
    throwUnwritable(link.path);
}

void FolderExtraction::setFolderTraits(const Late& folder) {
  const int number = folder.path.empty() ? folder_.number() : folder_.folderOf(folder.path);
  const std::string name = folder.path.empty() ? "." : nameOfPath(folder.path);
  if (number < 0) throwUnwritable(folder.path);
  if (takesOwners(folder.traits) &&
      !folder_.calls().setOwner(number, name, static_cast<uid_t>(*folder.traits.user),
                                static_cast<gid_t>(*folder.traits.group)))
    throwUnwritable(folder.path);
  if (!folder_.calls().setMode(number, name, folder.traits.mode.value_or(kNewFolder)))
    throwUnwritable(folder.path);
}

void FolderExtraction::close() {
  finishFile();
  for (const Late& link : links_) makeLink(link);
  // What a folder holds comes behind it in this order, so that its own mode locks nobody out. An
  // implied folder that an entry told of later stands here twice, the entry's last.
  std::stable_sort(folders_.begin(), folders_.end(),
                   [](const Late& a, const Late& b) { return a.path > b.path; });
  for (const Late& folder : folders_) setFolderTraits(folder);
}

}  // namespace ORLFoundation::internal::container
