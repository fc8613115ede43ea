#include <ORLFoundation/platform/container/internal/BlockStreams.h>

#include <algorithm>
#include <array>

namespace ORLFoundation::internal::container {
namespace {

constexpr char kLZFSELetter = 'e';

std::size_t boundedBlockSize(std::size_t asked) {
  return std::clamp<std::size_t>(asked, 1, ArchiveByteStream::kMostBlockBytes);
}

}  // namespace

BlockWriter::BlockWriter(ArchiveCompression compression, ArchiveByteStream& to,
                         std::size_t blockSize)
    : to_(to),
      blocks_(boundedBlockSize(blockSize),
              {.work =
                   [packs = compression == ArchiveCompression::lzfse](Block& block) {
                     block.stored.clear();
                     if (packs) block.encoder.append(block.raw, block.stored);
                     block.isStored = !packs || block.stored.size() >= block.raw.size();
                   },
               .finish = [this](Block& block) { writeBlock(block); }}) {
  Bytes start(kBlockMagic.begin(), kBlockMagic.end());
  start.push_back(static_cast<std::uint8_t>(kLZFSELetter));
  appendBig(start, boundedBlockSize(blockSize), 8);
  to_.write(start);
}

void BlockWriter::writeBlock(const Block& block) {
  const Bytes& bytes = block.isStored ? block.raw : block.stored;
  Bytes header;
  appendBig(header, block.raw.size(), 8);
  appendBig(header, bytes.size(), 8);
  to_.write(header);
  to_.write(bytes);
}

BlockReader::BlockReader(ArchiveByteStream& from)
    : from_(from),
      left_(from.length()),
      blockSize_(readStart()),
      blocks_(blockSize_,
              {.fetch = [this](Block& block) { return readBlock(block); }, .work = &unpack}) {}

/// The size of a full block.
std::size_t BlockReader::readStart() {
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
  left_ -= std::min<std::uint64_t>(left_, start.size());
  return size;
}

bool BlockReader::readBlock(Block& block) {
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
  block.raw.resize(raw);
  block.stored.resize(stored);
  Bytes& bytes = stored == raw ? block.raw : block.stored;
  if (from_.read(bytes) != bytes.size()) throwDamaged("it ends within a block");
  return true;
}

/// On any thread.
void BlockReader::unpack(Block& block) {
  const bool isPacked = block.stored.size() != block.raw.size();
  if (isPacked && !block.decoder.decode(block.stored, block.raw))
    throwDamaged("a block does not unpack");
}

}  // namespace ORLFoundation::internal::container
