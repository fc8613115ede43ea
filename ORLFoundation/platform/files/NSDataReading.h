/// The bytes of files.
///
///     std::shared_ptr<const NSError> error;
///     const auto data = dataWithContentsOfURL(url, NSDataReadingMappedIfSafe, &error);
///     if (!data) show(error->localizedDescription());
#pragma once

#include <ORLFoundation/platform/files/NSFileErrors.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <optional>

namespace ORLFoundation {

enum NSDataReadingOptions : NSUInteger {
  NSDataReadingMappedIfSafe = 1,  ///< A wish; data here holds its bytes in any case.
};

/// `dataWithContentsOfURL:options:error:`  All of a file. nil, and an error of `NSCocoaErrorDomain`
/// with the path and what lies under it (`NSPOSIXErrorDomain`), where it cannot be read, where the
/// address is none of a file, and for more than 64 MB.
[[nodiscard]] std::optional<NSData> dataWithContentsOfURL(const NSURL& url, NSUInteger options,
                                                          NSErrorSlot error = nullptr);

}  // namespace ORLFoundation
