/// How a download comes to its place. The calls by which files are changed are a door, behind which
/// tests refuse some of them.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <memory>
#include <optional>

namespace ORLFoundation::internal::session {

class DownloadFiles {
 public:
  DownloadFiles() = default;
  virtual ~DownloadFiles() = default;
  DownloadFiles(const DownloadFiles&) = delete;
  DownloadFiles& operator=(const DownloadFiles&) = delete;

  /// `replaceItemAtURL:withItemAtURL:backupItemName:options:resultingItemURL:error:` without a
  /// backup and options; the resulting address.
  [[nodiscard]] virtual std::optional<NSURL> replace(const NSURL& item, const NSURL& with,
                                                     NSErrorSlot error);
  /// `URLForDirectory:inDomain:appropriateForURL:create:error:`
  [[nodiscard]] virtual std::optional<NSURL> temporaryFolder(NSUInteger directory,
                                                             NSUInteger inDomain,
                                                             const NSURL& appropriateFor,
                                                             bool create, NSErrorSlot error);
  /// `copyItemAtURL:toURL:error:`
  [[nodiscard]] virtual bool copy(const NSURL& item, const NSURL& to, NSErrorSlot error);
};

/// null stands for the default file manager's.
std::shared_ptr<DownloadFiles> exchangeDownloadFiles(std::shared_ptr<DownloadFiles> files);

/// Puts the file at `location` in the place of what stands at the destination, or where nothing
/// stands: in one step where both are on one file system, else by way of a copy beside the
/// destination. Answers where it stands now. A folder at the destination is a failure. Of a failure
/// a copy may be left in a temporary folder, and the destination holds what it held.
[[nodiscard]] std::optional<NSURL> placeDownload(const NSURL& location,
                                                 const std::optional<NSURL>& destination,
                                                 NSErrorSlot error);

/// Removes the file of a download that failed, and an older one that was there; no failure of it is
/// told. A folder is left: it is no download.
void removeDownload(const std::optional<NSURL>& destination);

}  // namespace ORLFoundation::internal::session
