/// Walks the items of a folder, each before what it holds, in the order of the names' bytes. Links
/// are items and are not followed.
///
///     const auto items = manager.enumeratorAtURL(folder, {}, 0, onError);
///     while (const auto item = items->nextURL())
///       if (item->lastPathComponent() == "cache") items->skipDescendants();
#pragma once

#include <ORLFoundation/platform/object/NSEnumerator.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

namespace internal::files {
class FileCalls;
}  // namespace internal::files

enum NSDirectoryEnumerationOptions : NSUInteger {
  NSDirectoryEnumerationSkipsSubdirectoryDescendants = 1,
  NSDirectoryEnumerationSkipsPackageDescendants = 2,  ///< Nothing here: no folder is a package.
  /// Names that begin with a point, and what stands in such folders.
  NSDirectoryEnumerationSkipsHiddenFiles = 4,
};

/// Told of a folder that cannot be listed, and of an address that names none; whether the walk is
/// to go on behind it.
using NSDirectoryEnumerationErrorHandler =
    std::function<bool(const NSURL& url, const std::shared_ptr<const NSError>& error)>;

class NSDirectoryEnumerator final : public NSEnumerator {
 public:
  NSDirectoryEnumerator(std::shared_ptr<internal::files::FileCalls> calls, const NSURL& folder,
                        NSUInteger options, NSDirectoryEnumerationErrorHandler errorHandler);
  ~NSDirectoryEnumerator() override;

  /// The next item, nil at the end.
  [[nodiscard]] std::optional<NSURL> nextURL();
  /// `nextObject`  The same as an object.
  [[nodiscard]] id nextObject() override;
  /// `skipDescendants`  Leaves out what the last item holds. Nothing for one that is no folder.
  void skipDescendants();
  /// `level`  1 for what stands in the folder itself, 0 before the first item.
  [[nodiscard]] NSUInteger level() const noexcept;

  [[nodiscard]] std::string className() const override { return "NSDirectoryEnumerator"; }

 private:
  struct Walk;

  [[nodiscard]] bool goesOnAfterFailure(const NSURL& url,
                                        const std::shared_ptr<const NSError>& error) const;

  const NSDirectoryEnumerationErrorHandler errorHandler_;
  /// null at the end.
  std::unique_ptr<Walk> walk_;
};

}  // namespace ORLFoundation
