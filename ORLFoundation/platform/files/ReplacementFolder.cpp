#include <ORLFoundation/platform/files/ReplacementFolder.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/files/ItemChange.h>
#include <ORLFoundation/platform/value/NSUUID.h>

#include <cerrno>
#include <cstddef>
#include <utility>

namespace ORLFoundation::internal::files {
namespace {

constexpr std::string_view kPrefix = ".orlf-replacing-";
constexpr std::size_t kDigits = 8;
constexpr mode_t kOwnFolder = 0700;
constexpr int kMostTries = 8;

/// Open and locked; not open where another process holds it, or removed it.
OpenFile lockedFolder(HeldFolder& root, const std::string& name) {
  OpenFile folder = root.open(name, O_RDONLY | O_DIRECTORY);
  struct stat status {};
  const bool isOurs = folder.isOpen() && root.calls().lock(folder.number()) &&
                      root.calls().status(folder.number(), status);
  if (isOurs && status.st_nlink == 0) errno = ENOENT;
  return isOurs && status.st_nlink > 0 ? std::move(folder) : OpenFile();
}

}  // namespace

ReplacementFolder::ReplacementFolder(HeldFolder& root, std::string name, OpenFile folder)
    : root_(root),
      name_(std::move(name)),
      folder_(root.calls(), std::move(folder), root.pathOf(name_)) {}

std::unique_ptr<ReplacementFolder> ReplacementFolder::make(HeldFolder& root, FileOutcome& failure) {
  std::string name;
  // Another process may take a new folder for an abandoned one until it is locked.
  for (int tries = 0; tries < kMostTries; ++tries) {
    name = std::string(kPrefix) + NSUUID::UUID().UUIDString().substr(0, kDigits);
    if (!root.calls().makeFolder(root.number(), name, kOwnFolder)) break;
    OpenFile folder = lockedFolder(root, name);
    if (folder.isOpen())
      return std::unique_ptr<ReplacementFolder>(
          new ReplacementFolder(root, std::move(name), std::move(folder)));
    const int number = errno;
    static_cast<void>(root.calls().remove(root.number(), name, AT_REMOVEDIR));
    errno = number;
    if (number != ENOENT && number != EWOULDBLOCK) break;
  }
  failure = FileFailure{FileWork::Write, errno, root.pathOf(name)};
  return nullptr;
}

void ReplacementFolder::removeAbandoned(HeldFolder& root) {
  const auto entries = root.list("");
  if (!entries) return;
  for (const FolderEntry& entry : *entries) {
    if (entry.kind != FileKind::Folder || !isName(entry.name)) continue;
    if (lockedFolder(root, entry.name).isOpen())
      static_cast<void>(removeItem(root, entry.name, RemoveByForce::Yes));
  }
}

bool ReplacementFolder::isName(std::string_view name) noexcept {
  if (!name.starts_with(kPrefix)) return false;
  const std::string_view digits = name.substr(kPrefix.size());
  return digits.size() == kDigits &&
         digits.find_first_not_of(base::kUpperHexDigits) == std::string_view::npos;
}

void ReplacementFolder::remove() {
  static_cast<void>(removeItem(root_, name_, RemoveByForce::Yes));
}

}  // namespace ORLFoundation::internal::files
