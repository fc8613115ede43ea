/// Where a start tag begins. libxml2 tells of a tag when it has read all of it, and knows its own
/// place alone.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <string_view>

namespace ORLFoundation::internal::xml {

/// Lines and columns begin at 1.
struct TagPlace {
  NSInteger line = 0;
  NSInteger column = 0;
};

/// `read` ends before the ">" or "/>" of a tag whose end stands at `end`; it may have lost what
/// lies before the tag, unless it is `whole` from the document's first byte. No value of an
/// attribute holds a "<", so the tag begins at the last one. Answers `end` where `read` ends with a
/// reference to an entity, in whose text the tag stands.
[[nodiscard]] TagPlace beginningOfTag(std::string_view read, bool whole, TagPlace end) noexcept;

}  // namespace ORLFoundation::internal::xml
