#include <ORLFoundation/web/session/internal/DownloadFiles.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/files/NSFileManager.h>
#include <ORLFoundation/platform/files/NSURLResourceValues.h>
#include <ORLFoundation/platform/object/Id.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace ORLFoundation::internal::session {
namespace {

constinit base::Replaceable<DownloadFiles> doors([]() -> std::shared_ptr<DownloadFiles> {
  return std::make_shared<DownloadFiles>();
});

NSURL fileIn(const NSURL& folder) {
  return NSURL::fileURLWithPath(folder.path() + "/" + NSUUID::UUID().UUIDString());
}

bool isFolder(const NSURL& url) {
  id value;
  return getResourceValue(url, value, NSURLIsDirectoryKey) && value.as<bool>().value_or(false);
}

/// By way of a copy on the destination's file system.
std::optional<NSURL> placeCopy(DownloadFiles& files, const NSURL& location,
                               const NSURL& destination, NSErrorSlot error) {
  const auto folder =
      files.temporaryFolder(NSItemReplacementDirectory, NSUserDomainMask, destination, true, error);
  if (!folder) return std::nullopt;
  const NSURL copy = fileIn(*folder);
  if (!files.copy(location, copy, error)) return std::nullopt;
  auto placed = files.replace(destination, copy, error);
  // The folder alone, which is empty now; what others put there keeps it.
  std::error_code ignored;
  if (placed) std::filesystem::remove(folder->path(), ignored);
  return placed;
}

}  // namespace

std::optional<NSURL> DownloadFiles::replace(const NSURL& item, const NSURL& with,
                                            NSErrorSlot error) {
  std::optional<NSURL> resulting;
  if (!NSFileManager::defaultManager()->replaceItemAtURL(
          {.replaceItemAtURL = item, .withItemAtURL = with}, &resulting, error))
    return std::nullopt;
  return resulting;
}

std::optional<NSURL> DownloadFiles::temporaryFolder(NSUInteger directory, NSUInteger inDomain,
                                                    const NSURL& appropriateFor, bool create,
                                                    NSErrorSlot error) {
  return NSFileManager::defaultManager()->URLForDirectory(directory, inDomain, appropriateFor,
                                                          create, error);
}

bool DownloadFiles::copy(const NSURL& item, const NSURL& to, NSErrorSlot error) {
  return NSFileManager::defaultManager()->copyItemAtURL(item, to, error);
}

std::shared_ptr<DownloadFiles> exchangeDownloadFiles(std::shared_ptr<DownloadFiles> files) {
  return doors.exchange(std::move(files));
}

std::optional<NSURL> placeDownload(const NSURL& location, const std::optional<NSURL>& destination,
                                   NSErrorSlot error) {
  if (!destination) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSFileNoSuchFileError,
                    "The download has no destination.");
    return std::nullopt;
  }
  // It would be replaced with all that it holds.
  if (isFolder(*destination)) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSFileWriteFileExistsError,
                    "A folder stands at the destination of the download.");
    return std::nullopt;
  }
  const auto files = doors.current();
  if (auto placed = files->replace(*destination, location, nullptr)) return placed;
  return placeCopy(*files, location, *destination, error);
}

void removeDownload(const std::optional<NSURL>& destination) {
  if (!destination || isFolder(*destination)) return;
  static_cast<void>(NSFileManager::defaultManager()->removeItemAtURL(*destination));
}

}  // namespace ORLFoundation::internal::session
