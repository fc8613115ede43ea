/// The wrapper of compressed blocks: "pbz", the letter of the algorithm, the size of a full block,
/// and blocks of two sizes and their bytes up to the end of the stream.
#pragma once

#include <ORLFoundation/platform/compression/LZFSE.h>
#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/container/internal/HeaderFields.h>
#include <ORLFoundation/platform/container/internal/OrderedWork.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace ORLFoundation::internal::container {

inline constexpr std::string_view kBlockMagic = "pbz";
inline constexpr std::size_t kBlockStartBytes = 12, kBlockHeaderBytes = 16;

/// How many pieces of this size may be at hand, so that all take 128 MiB at most.
[[nodiscard]] std::size_t mostPiecesOf(std::size_t bytes);

class BlockWriter final : public ArchiveByteStream {
 public:
  BlockWriter(ArchiveCompression compression, ArchiveByteStream& to, std::size_t blockSize);

  void write(std::span<const std::uint8_t> bytes) override;
  void close() override;

 private:
  struct Block {
    Bytes raw;
    Bytes stored;
    bool isStored = false;
    compression::LZFSEEncoder encoder;
  };

  void finishBlock();
  void writeFirst();

  const ArchiveCompression compression_;
  ArchiveByteStream& to_;
  const std::size_t blockSize_;
  const std::size_t mostBlocks_;
  std::unique_ptr<Block> block_;
  std::vector<std::unique_ptr<Block>> spare_;
  std::deque<std::unique_ptr<Block>> begun_;
  OrderedWork work_;
};

class BlockReader final : public ArchiveByteStream {
 public:
  explicit BlockReader(ArchiveByteStream& from);

  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) override;

 private:
  struct Block {
    Bytes raw;
    Bytes stored;
    compression::LZFSEDecoder decoder;
  };

  [[nodiscard]] bool beginBlock();
  [[nodiscard]] bool nextBlock();

  ArchiveByteStream& from_;
  std::size_t blockSize_ = 0;
  std::size_t mostBlocks_ = 1;
  std::uint64_t left_ = 0;
  bool isLast_ = false;
  std::unique_ptr<Block> block_;
  std::size_t given_ = 0;
  std::vector<std::unique_ptr<Block>> spare_;
  std::deque<std::unique_ptr<Block>> begun_;
  OrderedWork work_;
};

}  // namespace ORLFoundation::internal::container
