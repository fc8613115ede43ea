/// A file of records, there whole or not at all.
#pragma once

#include <ORLFoundation/platform/stream/NSOutputStream.h>

#include <functional>
#include <memory>
#include <string>

namespace orlftool {

/// Gives `write` an open stream and puts what it takes in the place of the file when `write`
/// returns; where it throws, the file stays as it was. Writes are gathered. Throws JobFailure for a
/// file that cannot be written.
void writeRecordFile(
    const std::string& path,
    const std::function<void(const std::shared_ptr<ORLFoundation::NSOutputStream>&)>& write);

}  // namespace orlftool
