#include <ORLFoundation/platform/files/NSURLRelationship.h>

#include <ORLFoundation/platform/files/internal/TrashFolders.h>

#include <cerrno>
#include <cstring>

namespace ORLFoundation {
namespace {

constexpr NSInteger kNoSuchFile = 260;
constexpr NSInteger kUnsupportedScheme = 262;
constexpr NSInteger kUnsupportedFeature = 3328;

}  // namespace

bool getRelationship(NSURLRelationship* relationship, NSUInteger ofDirectory, NSUInteger,
                     const NSURL& toItemAtURL, NSErrorSlot error) {
  const std::string path = toItemAtURL.path();
  const auto fail = [&](NSInteger code, const std::string& reason) {
    return NSFillErrorSlot(error, NSCocoaErrorDomain, code, reason);
  };
  if (ofDirectory != NSTrashDirectory)
    return fail(kUnsupportedFeature, "no directory but the Trash is known here");
  if (!toItemAtURL.isFileURL())
    return fail(kUnsupportedScheme, toItemAtURL.absoluteString() + ": not the address of a file");
  errno = ENOENT;
  if (path.find('\0') == std::string::npos)
    if (const auto found =
            internal::files::relationshipOfTrash(path, internal::files::trashPlaces())) {
      *relationship = *found;
      return true;
    }
  return fail(kNoSuchFile, path + ": " + std::strerror(errno));
}

}  // namespace ORLFoundation
