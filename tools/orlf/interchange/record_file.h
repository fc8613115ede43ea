/// A file of records, there whole or not at all.
#pragma once

#include <ORLFoundation/platform/stream/NSOutputStream.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <functional>
#include <memory>
#include <string>

namespace orlftool {

/// Gives `write` an open stream and puts what it takes in the place of the file when `write`
/// returns; where it throws, the file stays as it was. Writes are gathered. Throws JobFailure for a
/// file that cannot be written, UsageFailure for "-".
void writeRecordFile(
    const std::string& path,
    const std::function<void(const std::shared_ptr<ORLFoundation::NSOutputStream>&)>& write);

/// Throws UsageFailure where a file of records would take the place of the table it is made of,
/// under whatever name.
void requireOtherFile(const std::string& output, const std::string& table);

/// Begins a text in an encoding, and gives the one for all that follows. The writers begin each
/// record in UTF-16 with a byte-order mark; a file has one at its beginning.
[[nodiscard]] ORLFoundation::NSUInteger beginText(ORLFoundation::NSOutputStream& stream,
                                                  ORLFoundation::NSUInteger encoding);

}  // namespace orlftool
