/// The error of an element that nobody claims, and of content that its handler refuses.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>

#include <memory>

namespace ORLFoundation::internal::fragments {

inline constexpr NSInteger kRefusedElement = 86;

/// Without user information.
[[nodiscard]] inline std::shared_ptr<const NSError> refusedElement() {
  return NSError::errorWithDomain(NSXMLParserErrorDomain, kRefusedElement);
}

}  // namespace ORLFoundation::internal::fragments
