/// A place in the file of a process definition.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation {

/// The first line and column are 1; both are 0 for what stands in no file. Columns count as
/// `NSXMLParser` counts them, mostly bytes.
struct ORLFProcessDefinitionPlace {
  NSInteger line = 0;
  NSInteger column = 0;

  friend bool operator==(const ORLFProcessDefinitionPlace&,
                         const ORLFProcessDefinitionPlace&) = default;
  friend bool operator<(const ORLFProcessDefinitionPlace& left,
                        const ORLFProcessDefinitionPlace& right) noexcept {
    return left.line != right.line ? left.line < right.line : left.column < right.column;
  }
};

}  // namespace ORLFoundation
