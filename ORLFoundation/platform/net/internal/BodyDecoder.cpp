#include <ORLFoundation/platform/net/internal/BodyDecoder.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/net/internal/ContentFacts.h>

#include <algorithm>

namespace ORLFoundation::internal::net {
namespace {

constexpr int kWindow = 15;
constexpr int kGzip = kWindow + 16;
constexpr std::uint8_t kFirstOfGzip = 0x1F;

/// Some servers leave the wrapping of deflate away. A stream without it never begins so: the bits
/// would be those of a stored block whose filling is not zero.
bool beginsWrapping(std::uint8_t first) noexcept { return (first & 0x8F) == 0x08; }

}  // namespace

BodyEncoding bodyEncodingIn(std::string_view contentEncoding) {
  struct Row {
    std::string_view name;
    BodyEncoding encoding;
  };
  constexpr Row kRows[] = {{"", BodyEncoding::None},
                           {"identity", BodyEncoding::None},
                           {"gzip", BodyEncoding::Gzip},
                           {"x-gzip", BodyEncoding::Gzip},
                           {"deflate", BodyEncoding::Deflate}};
  const std::string_view name = trimmed(contentEncoding);
  for (const Row& row : kRows)
    if (base::equalsLower(name, row.name)) return row.encoding;
  return BodyEncoding::Unknown;
}

BodyDecoder::~BodyDecoder() {
  if (isInitialized_) inflateEnd(&stream_);
}

BodyDecoder::Outcome BodyDecoder::decode(std::span<const std::uint8_t> bytes,
                                         const Receiver& receive) {
  bytes = bytes.subspan(std::min(read_, bytes.size()));
  while (true) {
    if (!decoded_.empty() && !receive(decoded_)) return Outcome::Held;
    decoded_ = {};
    if (bytes.empty() && !hasMore_) break;
    if (!step(bytes)) return Outcome::Broken;
  }
  read_ = 0;
  return Outcome::Read;
}

/// Begins a stream, the first one or one that follows another.
bool BodyDecoder::begin(std::uint8_t first) noexcept {
  const bool isFirst = state_ == State::New;
  state_ = State::Open;
  if (!isFirst)
    return encoding_ == BodyEncoding::Gzip && first == kFirstOfGzip &&
           inflateReset(&stream_) == Z_OK;
  const int deflate = beginsWrapping(first) ? kWindow : -kWindow;
  isInitialized_ =
      inflateInit2(&stream_, encoding_ == BodyEncoding::Gzip ? kGzip : deflate) == Z_OK;
  return isInitialized_;
}

bool BodyDecoder::step(std::span<const std::uint8_t>& bytes) noexcept {
  if (state_ != State::Open && !begin(bytes.front())) return false;
  stream_.next_in = const_cast<Bytef*>(bytes.data());
  stream_.avail_in = static_cast<uInt>(bytes.size());
  stream_.next_out = buffer_.data();
  stream_.avail_out = static_cast<uInt>(buffer_.size());
  const int result = inflate(&stream_, Z_NO_FLUSH);
  const std::size_t count = bytes.size() - stream_.avail_in;
  bytes = bytes.subspan(count);
  read_ += count;
  decoded_ = std::span<const std::uint8_t>(buffer_).first(buffer_.size() - stream_.avail_out);
  hasMore_ = result == Z_OK && stream_.avail_out == 0;
  if (result == Z_STREAM_END) state_ = State::Ended;
  // Z_BUF_ERROR: there was nothing left to decode.
  return result == Z_OK || result == Z_STREAM_END || result == Z_BUF_ERROR;
}

}  // namespace ORLFoundation::internal::net
