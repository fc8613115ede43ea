/// The wrapper of compressed blocks: "pbz", the letter of the algorithm, the size of a full block,
/// and blocks of two sizes and their bytes up to the end of the stream.
#pragma once

#include <ORLFoundation/platform/compression/LZFSE.h>
#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/container/internal/HeaderFields.h>
#include <ORLFoundation/platform/container/internal/Pieces.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace ORLFoundation::internal::container {

inline constexpr std::string_view kBlockMagic = "pbz";
inline constexpr std::size_t kBlockStartBytes = 12, kBlockHeaderBytes = 16;

class BlockWriter final : public ArchiveByteStream {
 public:
  BlockWriter(ArchiveCompression compression, ArchiveByteStream& to, std::size_t blockSize);

  void write(std::span<const std::uint8_t> bytes) override { blocks_.write(bytes); }
  void close() override { blocks_.close(); }

 private:
  struct Block {
    Bytes raw;
    Bytes stored;
    bool isStored = false;
    compression::LZFSEEncoder encoder;
  };

  void writeBlock(const Block& block);

  ArchiveByteStream& to_;
  PieceCutter<Block> blocks_;
};

class BlockReader final : public ArchiveByteStream {
 public:
  explicit BlockReader(ArchiveByteStream& from);

  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) override {
    return blocks_.read(bytes);
  }

 private:
  struct Block {
    Bytes raw;
    Bytes stored;
    compression::LZFSEDecoder decoder;
  };

  static void unpack(Block& block);
  [[nodiscard]] std::size_t readStart();
  [[nodiscard]] bool readBlock(Block& block);

  ArchiveByteStream& from_;
  std::uint64_t left_;
  const std::size_t blockSize_;
  bool isLast_ = false;
  PieceJoiner<Block> blocks_;
};

}  // namespace ORLFoundation::internal::container
