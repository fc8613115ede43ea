/// Compression with gzip, on zlib.
#pragma once

#include <ORLFoundation/platform/value/NSData.h>

#include <cstddef>
#include <limits>
#include <optional>

namespace ORLFoundation {

/// `gzippedDataWithCompressionLevel:`  The bytes in gzip's wrapping. The level runs from 0.0,
/// stored, to 1.0, smallest: its ninefold, rounded to the nearest whole number, is zlib's level;
/// below 0.0 zlib chooses. nil for no bytes and for levels above zlib's, such as 1.1.
[[nodiscard]] std::optional<NSData> gzippedDataWithCompressionLevel(const NSData& data,
                                                                    float level);
/// `gzippedData`  The same with a level of -1.0.
[[nodiscard]] std::optional<NSData> gzippedData(const NSData& data);
/// `gunzippedData`  The bytes that a gzip or a zlib stream holds; what stands behind the stream is
/// passed over. nil for no bytes, and for streams that are damaged or cut off. The result is as
/// large as the stream says: up to some 1,030 times its own size. nil for more bytes than `most`,
/// of which no more are held. `used` is told how many bytes the stream takes, unless the result is
/// nil.
[[nodiscard]] std::optional<NSData> gunzippedData(
    const NSData& data, std::size_t most = std::numeric_limits<std::size_t>::max(),
    std::size_t* used = nullptr);

}  // namespace ORLFoundation
