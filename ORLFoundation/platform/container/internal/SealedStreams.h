/// A container of sealed segments, in clusters whose headers are sealed in their turn.
#pragma once

#include <ORLFoundation/platform/compression/LZFSE.h>
#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/container/internal/Pieces.h>
#include <ORLFoundation/platform/container/internal/SealedPrologue.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace ORLFoundation::internal::container {

class SealedWriter final : public ArchiveByteStream {
 public:
  SealedWriter(ArchiveByteStream& to, const ArchiveEncryptionContext& context);

  void write(std::span<const std::uint8_t> bytes) override;
  void close() override;

 private:
  struct Segment {
    Bytes raw;
    Bytes stored;
    Bytes header;
    Tag tag{};
    std::shared_ptr<const ChainKey> clusterKey;
    std::uint32_t index = 0;
    compression::LZFSEEncoder encoder;
  };
  /// What is written once all segments are known.
  struct Cluster {
    std::uint64_t place = 0;
    Bytes headers;
    Bytes tags;
  };

  void number(Segment& segment);
  static void seal(Segment& segment, const SealedRoot& root);
  void writeSegment(const Segment& segment);
  [[nodiscard]] Tag writeClusterHeaders(const Bytes& padding);
  void writeRoot(const Tag& firstClusterTag);

  ArchiveByteStream& to_;
  SealedPrologue prologue_;
  ChainKey mainKey_;
  std::uint64_t place_;
  std::uint64_t begunSegments_ = 0;
  std::shared_ptr<const ChainKey> clusterKey_;
  std::vector<Cluster> clusters_;
  PieceCutter<Segment> segments_;
};

class SealedReader final : public ArchiveByteStream {
 public:
  /// Throws `ArchiveErrorWrongKey` where the root header does not open.
  SealedReader(ArchiveByteStream& from, const ArchiveEncryptionContext& context);

  /// Gives nothing of a segment whose tag was not checked. At the end everything behind the last
  /// segment has been checked too.
  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) override {
    return segments_.read(bytes);
  }
  [[nodiscard]] std::uint64_t length() const override { return root_.rawBytes; }

 private:
  struct Segment {
    Bytes raw;
    Bytes stored;
    Bytes checksum;
    Tag tag{};
    std::shared_ptr<const ChainKey> clusterKey;
    std::uint32_t index = 0;
    compression::LZFSEDecoder decoder;
  };

  static void open(Segment& segment, const SealedRoot& root);
  [[nodiscard]] SealedRoot openRoot(const SealedPrologue& prologue);
  void readExactly(std::span<std::uint8_t> bytes);
  void readClusterHeader();
  [[nodiscard]] bool readSegment(Segment& segment);
  void checkEnd();

  ArchiveByteStream& from_;
  ChainKey mainKey_;
  const SealedRoot root_;
  std::uint64_t readBytes_;
  std::uint64_t begunBytes_ = 0;
  std::uint32_t clusterIndex_ = 0;
  std::size_t segmentIndex_ = 0;
  Tag nextClusterTag_;
  std::shared_ptr<const ChainKey> clusterKey_;
  Bytes headers_, tags_;
  PieceJoiner<Segment> segments_;
};

}  // namespace ORLFoundation::internal::container
