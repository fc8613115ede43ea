#include <ORLFoundation/platform/compression/LZFSE.h>

#include <ORLFoundation/platform/compression/internal/BlockDecoder.h>
#include <ORLFoundation/platform/compression/internal/BlockEncoder.h>
#include <ORLFoundation/platform/compression/internal/BlockHeader.h>
#include <ORLFoundation/platform/compression/internal/LZVN.h>
#include <ORLFoundation/platform/compression/internal/LittleEndian.h>
#include <ORLFoundation/platform/compression/internal/MatchFinder.h>

#include <cstring>
#include <limits>
#include <stdexcept>

namespace ORLFoundation::internal::compression {
namespace {

constexpr std::size_t kLeastForLZVN = 8, kLeastForTables = 4096;
constexpr std::size_t kStoredHeader = 8, kLZVNHeader = 12, kMagicBytes = 4;

void appendStored(std::span<const std::uint8_t> input, std::vector<std::uint8_t>& output) {
  append(output, kStoredBlock);
  append(output, static_cast<std::uint32_t>(input.size()));
  output.insert(output.end(), input.begin(), input.end());
}

void appendLZVNBlock(std::span<const std::uint8_t> input, std::vector<std::uint8_t>& output) {
  append(output, kLZVNBlock);
  append(output, static_cast<std::uint32_t>(input.size()));
  const std::size_t at = output.size();
  append(output, std::uint32_t{0});
  appendLZVN(input, output);
  store(output.data() + at, static_cast<std::uint32_t>(output.size() - at - kMagicBytes));
}

/// A block of a stream.
struct Block {
  std::uint32_t magic = kEndOfStream;
  std::size_t rawBytes = 0;
  std::size_t headerBytes = kMagicBytes;
  std::size_t payloadBytes = 0;
  /// For blocks with tables.
  std::optional<BlockHeader> header = {};
};

/// nil for a block whose header is damaged, whose payload is cut off, or that claims to hold more
/// than its payload can.
std::optional<Block> firstBlock(std::span<const std::uint8_t> stream) {
  if (stream.size() < kMagicBytes) return std::nullopt;
  Block block;
  block.magic = load<std::uint32_t>(stream.data());
  if (block.magic == kEndOfStream) return block;
  if (stream.size() < kLZVNHeader && block.magic != kStoredBlock) return std::nullopt;
  if (stream.size() < kStoredHeader) return std::nullopt;
  block.rawBytes = load<std::uint32_t>(stream.data() + 4);
  switch (block.magic) {
    case kStoredBlock:
      block.headerBytes = kStoredHeader;
      block.payloadBytes = block.rawBytes;
      break;
    case kLZVNBlock:
      block.headerBytes = kLZVNHeader;
      block.payloadBytes = load<std::uint32_t>(stream.data() + 8);
      if (block.rawBytes > block.payloadBytes * kMostLZVNExpansion) return std::nullopt;
      break;
    case kPlainTables:
    case kPackedTables:
      block.header = readBlockHeader(stream);
      if (!block.header) return std::nullopt;
      block.headerBytes = block.header->size;
      block.payloadBytes = block.header->payload();
      break;
    default:
      return std::nullopt;
  }
  if (block.payloadBytes > stream.size() - block.headerBytes) return std::nullopt;
  return block;
}

/// What all blocks add up to; nil unless the stream is whole and nothing follows it.
std::optional<std::size_t> rawBytesOf(std::span<const std::uint8_t> stream) {
  std::size_t sum = 0;
  while (const std::optional<Block> block = firstBlock(stream)) {
    stream = stream.subspan(block->headerBytes + block->payloadBytes);
    if (block->magic == kEndOfStream) return stream.empty() ? std::optional(sum) : std::nullopt;
    sum += block->rawBytes;
  }
  return std::nullopt;
}

}  // namespace

struct LZFSEEncoder::Tables {
  MatchFinder finder;
  BlockEncoder blocks;
};

LZFSEEncoder::LZFSEEncoder() : tables_(std::make_unique<Tables>()) {}
LZFSEEncoder::~LZFSEEncoder() = default;

void LZFSEEncoder::append(std::span<const std::uint8_t> input, std::vector<std::uint8_t>& output) {
  if (input.size() >= std::size_t{std::numeric_limits<std::int32_t>::max()})
    throw std::length_error("too much for one LZFSE stream");
  const std::size_t begin = output.size();
  if (input.size() >= kLeastForTables) {
    tables_->finder.cut(input, tables_->blocks, output);
    tables_->blocks.finishBlock(output);
  } else if (input.size() >= kLeastForLZVN) {
    appendLZVNBlock(input, output);
  }
  if (output.size() == begin || output.size() - begin >= input.size() + kStoredHeader) {
    output.resize(begin);
    appendStored(input, output);
  }
  compression::append(output, kEndOfStream);
}

struct LZFSEDecoder::Tables {
  BlockDecoder blocks;
};

LZFSEDecoder::LZFSEDecoder() : tables_(std::make_unique<Tables>()) {}
LZFSEDecoder::~LZFSEDecoder() = default;

bool LZFSEDecoder::decode(std::span<const std::uint8_t> stream, std::span<std::uint8_t> output) {
  DecodedBytes bytes{output.data(), output.data(), output.data() + output.size()};
  while (const std::optional<Block> block = firstBlock(stream)) {
    const auto payload = stream.subspan(block->headerBytes, block->payloadBytes);
    stream = stream.subspan(block->headerBytes + block->payloadBytes);
    if (block->magic == kEndOfStream) return stream.empty() && bytes.at == bytes.end;
    if (block->rawBytes > static_cast<std::size_t>(bytes.room())) return false;
    if (block->header) {
      if (!tables_->blocks.decode(*block->header, payload, bytes)) return false;
      continue;
    }
    std::uint8_t* const end = bytes.at + block->rawBytes;
    if (block->magic == kLZVNBlock) {
      if (!decodeLZVN(payload, bytes.begin, bytes.at, end)) return false;
    } else if (!payload.empty()) {
      std::memcpy(bytes.at, payload.data(), payload.size());
    }
    bytes.at = end;
  }
  return false;
}

std::optional<std::vector<std::uint8_t>> LZFSEDecoder::decoded(std::span<const std::uint8_t> stream,
                                                               std::size_t mostBytes) {
  const std::optional<std::size_t> length = rawBytesOf(stream);
  if (!length || *length > mostBytes) return std::nullopt;
  std::vector<std::uint8_t> bytes(*length);
  if (!decode(stream, bytes)) return std::nullopt;
  return bytes;
}

}  // namespace ORLFoundation::internal::compression
