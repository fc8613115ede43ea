#include <ORLFoundation/platform/container/internal/BlockStreams.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace ORLFoundation::internal::container {
namespace {

constexpr std::size_t kMostAtHand = std::size_t{128} << 20;
constexpr char kLZFSELetter = 'e';

template <class Piece>
std::unique_ptr<Piece> spareOrNew(std::vector<std::unique_ptr<Piece>>& spare) {
  if (spare.empty()) return std::make_unique<Piece>();
  std::unique_ptr<Piece> piece = std::move(spare.back());
  spare.pop_back();
  return piece;
}

}  // namespace

std::size_t mostPiecesOf(std::size_t bytes) {
  return std::clamp<std::size_t>(kMostAtHand / (2 * bytes), 1, std::size_t{2} * threadsForWork());
}

BlockWriter::BlockWriter(ArchiveCompression compression, ArchiveByteStream& to,
                         std::size_t blockSize)
    : compression_(compression),
      to_(to),
      blockSize_(std::clamp<std::size_t>(blockSize, 1, kMostBlockBytes)),
      mostBlocks_(mostPiecesOf(blockSize_)) {
  Bytes start(kBlockMagic.begin(), kBlockMagic.end());
  start.push_back(static_cast<std::uint8_t>(kLZFSELetter));
  appendBig(start, blockSize_, 8);
  to_.write(start);
}

void BlockWriter::write(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    if (!block_) {
      block_ = spareOrNew(spare_);
      block_->raw.clear();
      block_->raw.reserve(blockSize_);
    }
    const std::size_t count = std::min(bytes.size(), blockSize_ - block_->raw.size());
    appendBytes(block_->raw, bytes.first(count));
    bytes = bytes.subspan(count);
    if (block_->raw.size() == blockSize_) finishBlock();
  }
}

void BlockWriter::finishBlock() {
  if (work_.count() == mostBlocks_) writeFirst();
  begun_.push_back(std::move(block_));
  work_.add([block = begun_.back().get(), packs = compression_ == ArchiveCompression::lzfse] {
    block->stored.clear();
    if (packs) block->encoder.append(block->raw, block->stored);
    block->isStored = !packs || block->stored.size() >= block->raw.size();
  });
}

void BlockWriter::writeFirst() {
  work_.takeFirst();
  std::unique_ptr<Block> block = std::move(begun_.front());
  begun_.pop_front();
  const Bytes& bytes = block->isStored ? block->raw : block->stored;
  Bytes header;
  appendBig(header, block->raw.size(), 8);
  appendBig(header, bytes.size(), 8);
  to_.write(header);
  to_.write(bytes);
  spare_.push_back(std::move(block));
}

void BlockWriter::close() {
  if (block_) finishBlock();
  while (!begun_.empty()) writeFirst();
}

BlockReader::BlockReader(ArchiveByteStream& from) : from_(from), left_(from.length()) {
  std::array<std::uint8_t, kBlockStartBytes> start{};
  if (from_.read(start) != start.size() || !beginsWith(start, kBlockMagic))
    throwDamaged("it ends within its first bytes");
  if (start[3] != static_cast<std::uint8_t>(kLZFSELetter))
    throwUnsupported("its blocks are compressed in another way than LZFSE");
  const std::uint64_t size = bigAt(start, 4, 8);
  if (size == 0 || size > std::uint64_t{1} << 31)
    throwDamaged("its blocks have an impossible size");
  if (size > kMostBlockBytes)
    throw ArchiveError(ArchiveErrorTooLarge, "The archive's blocks are larger than 64 MiB.");
  blockSize_ = size;
  mostBlocks_ = mostPiecesOf(blockSize_);
  left_ -= std::min<std::uint64_t>(left_, start.size());
}

/// Has a thread unpack the next block; false at the end.
bool BlockReader::beginBlock() {
  std::array<std::uint8_t, kBlockHeaderBytes> header{};
  const std::size_t count = from_.read(header);
  if (count == 0) return false;
  if (count != header.size()) throwDamaged("it ends within a block's sizes");
  const std::uint64_t raw = bigAt(header, 0, 8), stored = bigAt(header, 8, 8);
  left_ -= std::min<std::uint64_t>(left_, header.size());
  if (raw > blockSize_ || stored > raw || (stored == 0 && raw != 0))
    throwDamaged("a block has impossible sizes");
  if (isLast_ && raw != 0) throwDamaged("a block follows the last one");
  isLast_ = raw < blockSize_;
  if (stored > left_) throwDamaged("it ends within a block");
  left_ -= stored;
  std::unique_ptr<Block> block = spareOrNew(spare_);
  block->raw.resize(raw);
  block->stored.resize(stored);
  Bytes& bytes = stored == raw ? block->raw : block->stored;
  if (from_.read(bytes) != bytes.size()) throwDamaged("it ends within a block");
  begun_.push_back(std::move(block));
  work_.add([one = begun_.back().get()] {
    const bool isPacked = one->stored.size() != one->raw.size();
    if (isPacked && !one->decoder.decode(one->stored, one->raw))
      throwDamaged("a block does not unpack");
  });
  return true;
}

bool BlockReader::nextBlock() {
  while (work_.count() < mostBlocks_ && beginBlock()) {
  }
  if (begun_.empty()) return false;
  if (block_) spare_.push_back(std::move(block_));
  work_.takeFirst();
  block_ = std::move(begun_.front());
  begun_.pop_front();
  given_ = 0;
  return true;
}

std::size_t BlockReader::read(std::span<std::uint8_t> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    if (!block_ || given_ == block_->raw.size()) {
      if (!nextBlock()) break;
      continue;
    }
    const std::size_t count = std::min(bytes.size() - done, block_->raw.size() - given_);
    std::memcpy(bytes.data() + done, block_->raw.data() + given_, count);
    given_ += count;
    done += count;
  }
  return done;
}

}  // namespace ORLFoundation::internal::container
