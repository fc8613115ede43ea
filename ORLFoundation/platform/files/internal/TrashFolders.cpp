#include <ORLFoundation/platform/files/internal/TrashFolders.h>

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace ORLFoundation::internal::files {
namespace {

namespace fs = std::filesystem;

struct Identity {
  dev_t device;
  ino_t number;
  friend bool operator==(const Identity& left, const Identity& right) {
    return left.device == right.device && left.number == right.number;
  }
};

struct Found {
  Identity identity;
  mode_t mode;
};

/// Of the item itself, also of a link.
std::optional<Found> find(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
  return Found{{status.st_dev, status.st_ino}, status.st_mode};
}

std::optional<Identity> folderAt(const std::string& path) {
  const auto found = find(path);
  if (!found || !S_ISDIR(found->mode)) return std::nullopt;
  return found->identity;
}

/// A folder for all users is one only where none may remove what is another's.
std::optional<Identity> sharedTrash(const std::string& top, uid_t user) {
  const auto shared = find(top + "/.Trash");
  if (!shared || !S_ISDIR(shared->mode) || (shared->mode & S_ISVTX) == 0) return std::nullopt;
  return folderAt(top + "/.Trash/" + std::to_string(user));
}

std::vector<Identity> trashes(const std::string& top, const TrashPlaces& places) {
  std::vector<Identity> found;
  const auto add = [&found](const std::optional<Identity>& identity) {
    if (identity) found.push_back(*identity);
  };
  std::error_code code;
  // The user may have put his own elsewhere by a link.
  if (!places.home.empty()) add(folderAt(fs::canonical(places.home, code).string()));
  add(sharedTrash(top, places.user));
  add(folderAt(top + "/.Trash-" + std::to_string(places.user)));
  return found;
}

bool isMountTop(const std::string& folder) {
  struct statx status {};
  if (::statx(AT_FDCWD, folder.c_str(), AT_SYMLINK_NOFOLLOW, 0, &status) != 0) return false;
  return (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

std::string homeOfUser() {
  const char* const home = std::getenv("HOME");
  if (home != nullptr && *home == '/') return home;
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found == nullptr ? "" : found->pw_dir;
}

std::string homeTrash() {
  const char* const data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && *data == '/') return std::string(data) + "/Trash";
  const std::string home = homeOfUser();
  return home.empty() ? "" : home + "/.local/share/Trash";
}

}  // namespace

TrashPlaces trashPlaces() { return {homeTrash(), ::getuid(), isMountTop}; }

std::optional<NSURLRelationship> relationshipOfTrash(const std::string& item,
                                                     const TrashPlaces& places) {
  fs::path plain(item);
  if (!plain.has_filename()) plain = plain.parent_path();
  const auto found = find(plain);
  if (!found) return std::nullopt;
  std::error_code code;
  fs::path folder = fs::canonical(plain.parent_path(), code);
  if (code) {
    errno = code.value();
    return std::nullopt;
  }

  std::vector<Identity> above;
  std::string top;
  for (bool isRoot = false; !isRoot; folder = folder.parent_path()) {
    if (const auto identity = folderAt(folder)) above.push_back(*identity);
    isRoot = folder == folder.parent_path();
    if (top.empty() && (isRoot || places.isTop(folder))) top = isRoot ? "/" : folder.string();
  }

  for (const Identity& trash : trashes(top, places)) {
    if (trash == found->identity) return NSURLRelationshipSame;
    if (std::find(above.begin(), above.end(), trash) != above.end())
      return NSURLRelationshipContains;
  }
  return NSURLRelationshipOther;
}

}  // namespace ORLFoundation::internal::files
