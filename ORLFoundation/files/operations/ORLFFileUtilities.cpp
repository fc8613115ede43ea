#include <ORLFoundation/files/operations/ORLFFileUtilities.h>

#include <cstdint>
#include <string_view>
#include <utility>

namespace ORLFoundation {
namespace {

/// The path without its last name, slashes at its end passed over: "/a" of "/a/b/"; "" where only
/// the root or nothing is left.
std::string withoutLastComponent(std::string_view path) {
  const std::size_t nameEnd = path.find_last_not_of('/');
  const std::size_t slash = path.rfind('/', nameEnd);
  if (slash == path.npos) return {};
  const std::size_t folderEnd = path.find_last_not_of('/', slash);
  return folderEnd == path.npos ? "" : std::string(path.substr(0, folderEnd + 1));
}

/// A path cut before the point of its extension; the extension is "" for none. A name that begins
/// with its only point has none.
std::pair<std::string, std::string> cutAtExtension(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  const std::size_t slash = path.rfind('/');
  const std::size_t name = slash == path.npos ? 0 : slash + 1;
  const std::size_t point = path.rfind('.');
  const bool hasExtension = point != path.npos && point > name && point + 1 < path.size();
  if (!hasExtension) return {path, ""};
  return {path.substr(0, point), path.substr(point + 1)};
}

std::shared_ptr<NSDictionary> attributesOf(const NSFileManager& manager, const std::string& path,
                                           NSErrorSlot error) {
  std::shared_ptr<const NSError> failure;
  auto attributes = manager.attributesOfItemAtPath(path, &failure);
  if (failure != nullptr && error != nullptr) *error = failure;
  return attributes;
}

}  // namespace

bool orlfIsPathEquivalentToPath(const NSFileManager& manager, const std::string& path,
                                const std::string& equivalentToPath, NSErrorSlot error) {
  const auto second = attributesOf(manager, equivalentToPath, error);
  const auto first = attributesOf(manager, path, error);
  return first && second && fileSystemNumber(*first) == fileSystemNumber(*second) &&
         fileSystemFileNumber(*first) == fileSystemFileNumber(*second);
}

bool orlfIsPathAnsestorOfPath(const NSFileManager& manager, const std::string& path,
                              const std::string& ansestorOfPath, NSErrorSlot error) {
  std::string candidate = ansestorOfPath;
  while (!candidate.empty() && candidate != "/") {
    if (orlfIsPathEquivalentToPath(manager, path, candidate)) {
      if (error != nullptr) *error = nullptr;
      return true;
    }
    candidate = withoutLastComponent(candidate);
  }
  return false;
}

std::string createUniqueFileAtPath(NSFileManager& manager, const std::string& path,
                                   const std::optional<NSData>& contents,
                                   const std::shared_ptr<NSDictionary>& attributes) {
  const auto [stem, extension] = cutAtExtension(path);
  std::string candidate = path;
  for (std::uint64_t n = 1;; ++n) {
    if (!manager.fileExistsAtPath(candidate) &&
        manager.createNewFileAtPath(candidate, contents, attributes))
      return candidate;
    candidate = stem + "-" + std::to_string(n) + (extension.empty() ? "" : "." + extension);
  }
}

bool orlfRemoveItemAtURL(NSFileManager& manager, const NSURL& url,
                         NSErrorSlot ignoringFileNotFoundError) {
  std::shared_ptr<const NSError> error;
  if (manager.removeItemAtURL(url, &error)) return true;
  const bool isAbsent =
      error && error->domain() == NSCocoaErrorDomain && error->code() == NSFileNoSuchFileError;
  return isAbsent || NSFillErrorSlot(ignoringFileNotFoundError, error);
}

}  // namespace ORLFoundation
