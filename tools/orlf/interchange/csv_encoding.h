/// The encoding of a table, as its bytes tell it.
#pragma once

#include <ORLFoundation/platform/text/NSStringEncoding.h>

#include "interchange/finding.h"
#include "io/byte_source.h"

namespace orlftool {

struct TableEncoding {
  /// Reads all bytes; where the encoding has to be asked for, a likely one.
  ORLFoundation::NSStringEncoding readAs = ORLFoundation::NSUTF8StringEncoding;
  Finding finding;
};

/// Reads the bytes once, and once more where they are more than ASCII.
[[nodiscard]] TableEncoding inferEncoding(const ReopenedBytes& bytes);

}  // namespace orlftool
