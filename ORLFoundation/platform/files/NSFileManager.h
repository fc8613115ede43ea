/// Files and folders by path and address: asked about, made, copied, put in place of each other,
/// removed. Failures are errors of `NSCocoaErrorDomain` (NSFileErrors.h) that name the path.
///
///     const auto manager = NSFileManager::defaultManager();
///     if (!manager->copyItemAtURL(book, backup, &error)) show(error->localizedDescription());
///
/// Links are items of their own: none is followed at the end of a path. A manager keeps nothing
/// between two calls and serves any thread.
#pragma once

#include <ORLFoundation/platform/files/NSDirectoryEnumerator.h>
#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation {

// Keys of an item's attributes.
inline constexpr std::string_view NSFileSystemNumber = "NSFileSystemNumber";
inline constexpr std::string_view NSFileSystemFileNumber = "NSFileSystemFileNumber";
inline constexpr std::string_view NSFileSize = "NSFileSize";
inline constexpr std::string_view NSFileModificationDate = "NSFileModificationDate";
inline constexpr std::string_view NSFilePosixPermissions = "NSFilePosixPermissions";

enum NSSearchPathDirectory : NSUInteger { NSItemReplacementDirectory = 99 };
enum NSSearchPathDomainMask : NSUInteger { NSUserDomainMask = 1 };

enum NSFileManagerItemReplacementOptions : NSUInteger {
  /// The new item keeps what belongs to it. It does here in any case.
  NSFileManagerItemReplacementUsingNewMetadataOnly = 1,
  NSFileManagerItemReplacementWithoutDeletingBackupItem = 2,
};

/// The arguments of `replaceItemAtURL`, by their labels.
struct NSItemReplacement {
  const NSURL& replaceItemAtURL;
  const NSURL& withItemAtURL;
  std::optional<std::string> backupItemName = std::nullopt;
  NSUInteger options = 0;
};

class NSFileManager : public NSObject {
 public:
  NSFileManager();
  /// One that works through calls of its own.
  explicit NSFileManager(std::shared_ptr<internal::files::FileCalls> calls);
  ~NSFileManager() override;
  /// `defaultManager`  One object for the process.
  [[nodiscard]] static const std::shared_ptr<NSFileManager>& defaultManager();

  /// `fileExistsAtPath:`  Whether something stands there, behind links too.
  [[nodiscard]] virtual bool fileExistsAtPath(const std::string& path) const;
  /// `attributesOfItemAtPath:error:`  The attributes under the keys above; of a link, its own. null
  /// where it cannot be asked.
  [[nodiscard]] virtual std::shared_ptr<NSDictionary> attributesOfItemAtPath(
      const std::string& path, NSErrorSlot error = nullptr) const;
  /// `createFileAtPath:contents:attributes:`  Writes a file whole, in place of another one too: who
  /// opens it finds the old bytes or the new ones. nil writes an empty one. Of the attributes, the
  /// permissions are used.
  [[nodiscard]] virtual bool createFileAtPath(
      const std::string& path, const std::optional<NSData>& contents,
      const std::shared_ptr<NSDictionary>& attributes = nullptr);
  /// The same where nothing stands at the path, not even a link; false for what does. A failure
  /// leaves nothing.
  [[nodiscard]] virtual bool createNewFileAtPath(
      const std::string& path, const std::optional<NSData>& contents,
      const std::shared_ptr<NSDictionary>& attributes = nullptr);
  /// `removeItemAtURL:error:`  A folder goes with all that it holds. Code 4 for what is absent.
  [[nodiscard]] virtual bool removeItemAtURL(const NSURL& url, NSErrorSlot error = nullptr);
  /// `copyItemAtURL:toURL:error:`  A copy with mode, times, extended attributes and holes; links
  /// stay links; pipes, sockets and devices are errors. Code 516 where something stands at the new
  /// address. A failure leaves nothing there.
  [[nodiscard]] bool copyItemAtURL(const NSURL& url, const NSURL& toURL,
                                   NSErrorSlot error = nullptr);
  /// `replaceItemAtURL:withItemAtURL:backupItemName:options:resultingItemURL:error:`  Puts an item
  /// in the place of another one, or where nothing stands, in one step: whoever looks finds one of
  /// them, whole. The one that is replaced is removed, or, with option 2 and a name, kept beside
  /// the new one. Both must be on one file system. An item does not replace itself.
  [[nodiscard]] bool replaceItemAtURL(const NSItemReplacement& replacement,
                                      std::optional<NSURL>* resultingItemURL = nullptr,
                                      NSErrorSlot error = nullptr);
  /// `URLForDirectory:inDomain:appropriateForURL:create:error:`  A new folder for the user alone,
  /// on the file system of an item: in it where it is a folder, else beside it. No other directory
  /// than 99 and no other domain than 1 is known; it is made in any case.
  [[nodiscard]] std::optional<NSURL> URLForDirectory(NSUInteger directory, NSUInteger inDomain,
                                                     const NSURL& appropriateForURL, bool create,
                                                     NSErrorSlot error = nullptr);
  /// `enumeratorAtURL:includingPropertiesForKeys:options:errorHandler:`  Keys are a wish: values
  /// are read when they are asked for. Without a handler the walk goes on past what it cannot list.
  [[nodiscard]] std::shared_ptr<NSDirectoryEnumerator> enumeratorAtURL(
      const NSURL& url, const std::vector<std::string_view>& includingPropertiesForKeys,
      NSUInteger options, NSDirectoryEnumerationErrorHandler errorHandler = nullptr) const;

  /// Whether what is copied is brought to the disk before it counts as copied. false at first.
  [[nodiscard]] bool bringsCopiesToDisk() const noexcept { return bringsCopiesToDisk_; }
  void setBringsCopiesToDisk(bool value) noexcept { bringsCopiesToDisk_ = value; }
  /// Told of the path of each file, folder and link before it is copied, those inside of folders
  /// too, on the thread that copies. Empty at first.
  using CopyNotice = std::function<void(const std::string& path)>;
  [[nodiscard]] const CopyNotice& copyNotice() const noexcept { return copyNotice_; }
  void setCopyNotice(CopyNotice notice) { copyNotice_ = std::move(notice); }

  [[nodiscard]] std::string className() const override { return "NSFileManager"; }
  /// For the house.
  [[nodiscard]] const std::shared_ptr<internal::files::FileCalls>& calls() const noexcept {
    return calls_;
  }

 private:
  const std::shared_ptr<internal::files::FileCalls> calls_;
  bool bringsCopiesToDisk_ = false;
  CopyNotice copyNotice_;
};

/// `fileSystemNumber`, `fileSystemFileNumber`  Of a dictionary of attributes; 0 where it has none.
[[nodiscard]] NSUInteger fileSystemNumber(const NSDictionary& attributes);
[[nodiscard]] NSUInteger fileSystemFileNumber(const NSDictionary& attributes);

}  // namespace ORLFoundation
