/// The records of the system's failures that streams keep.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace ORLFoundation::internal::stream {

/// A record in `NSPOSIXErrorDomain` of a code of `errno`, with its words and, where there is one,
/// the path.
[[nodiscard]] inline std::shared_ptr<const NSError> posixError(int code,
                                                               std::string_view path = {}) {
  const auto information = std::make_shared<NSMutableDictionary>();
  information->setObject(std::generic_category().message(code), NSLocalizedDescriptionKey);
  if (!path.empty()) information->setObject(path, NSFilePathErrorKey);
  return NSError::errorWithDomain(NSPOSIXErrorDomain, code, information);
}

}  // namespace ORLFoundation::internal::stream
