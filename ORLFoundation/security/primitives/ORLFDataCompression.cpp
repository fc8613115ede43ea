#include <ORLFoundation/security/primitives/ORLFDataCompression.h>

#include <ORLFoundation/security/primitives/internal/CompressionLevel.h>
#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr std::size_t kPiece = 16384;
/// 15 bits of window; 16 more ask for gzip's wrapping, 32 more find out which one there is.
constexpr int kGzipWindow = 31, kAnyWindow = 47, kMemoryLevel = 8;

/// zlib counts in `uInt`: longer stretches go through in pieces.
uInt pieceOf(std::size_t length) {
  return static_cast<uInt>(std::min<std::size_t>(length, std::numeric_limits<uInt>::max()));
}

/// A stream between two buffers, with how far it has come in each.
struct Stream : z_stream {
  explicit Stream(std::span<const std::uint8_t> bytes) : z_stream{}, input(bytes) {}

  void point(std::vector<std::uint8_t>& output) {
    next_in = const_cast<Bytef*>(input.data() + taken);
    avail_in = pieceOf(input.size() - taken);
    next_out = output.data() + given;
    avail_out = pieceOf(output.size() - given);
  }
  void advance(const std::vector<std::uint8_t>& output) {
    taken = static_cast<std::size_t>(next_in - input.data());
    given = static_cast<std::size_t>(next_out - output.data());
  }

  std::span<const std::uint8_t> input;
  std::size_t taken = 0, given = 0;
};

}  // namespace

std::optional<NSData> gzippedDataWithCompressionLevel(const NSData& data, float level) {
  if (data.length() == 0) return std::nullopt;
  Stream stream(data.bytes());
  if (deflateInit2(&stream, internal::primitives::compressionLevel(level), Z_DEFLATED, kGzipWindow,
                   kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
    return std::nullopt;
  std::vector<std::uint8_t> output(kPiece);
  do {
    if (stream.given == output.size()) output.resize(output.size() + kPiece);
    stream.point(output);
    const bool isLast = stream.avail_in == stream.input.size() - stream.taken;
    deflate(&stream, isLast ? Z_FINISH : Z_NO_FLUSH);
    stream.advance(output);
  } while (stream.given == output.size() || stream.taken < stream.input.size());
  deflateEnd(&stream);
  output.resize(stream.given);
  return NSData(std::move(output));
}

std::optional<NSData> gzippedData(const NSData& data) {
  return gzippedDataWithCompressionLevel(data, -1.0F);
}

std::optional<NSData> gunzippedData(const NSData& data, std::size_t most, std::size_t* used) {
  const std::size_t length = data.length();
  if (length == 0) return std::nullopt;
  Stream stream(data.bytes());
  std::vector<std::uint8_t> output(length + length / 2);
  if (inflateInit2(&stream, kAnyWindow) != Z_OK) return std::nullopt;
  int status = Z_OK;
  while (status == Z_OK && stream.given <= most) {
    if (stream.given == output.size()) output.resize(output.size() + length / 2);
    stream.point(output);
    status = inflate(&stream, Z_SYNC_FLUSH);
    stream.advance(output);
  }
  if (inflateEnd(&stream) != Z_OK || status != Z_STREAM_END || stream.given > most)
    return std::nullopt;
  if (used != nullptr) *used = stream.taken;
  output.resize(stream.given);
  return NSData(std::move(output));
}

}  // namespace ORLFoundation
