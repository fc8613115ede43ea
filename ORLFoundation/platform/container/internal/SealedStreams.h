/// A container of sealed segments, in clusters whose headers are sealed in their turn.
#pragma once

#include <ORLFoundation/platform/compression/LZFSE.h>
#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/container/internal/OrderedWork.h>
#include <ORLFoundation/platform/container/internal/SealedPrologue.h>

#include <cstddef>
#include <cstdint>
#include <deque>
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

  static void seal(Segment& segment, const SealedRoot& root);
  void finishSegment();
  void writeFirst();
  [[nodiscard]] Tag writeClusterHeaders(const Bytes& padding);
  void writeRoot(const Tag& firstClusterTag);

  ArchiveByteStream& to_;
  SealedPrologue prologue_;
  ChainKey mainKey_;
  const std::size_t mostSegments_;
  std::uint64_t place_;
  std::uint64_t begunSegments_ = 0;
  std::shared_ptr<const ChainKey> clusterKey_;
  std::vector<Cluster> clusters_;
  std::unique_ptr<Segment> segment_;
  std::vector<std::unique_ptr<Segment>> spare_;
  std::deque<std::unique_ptr<Segment>> begun_;
  OrderedWork work_;
};

class SealedReader final : public ArchiveByteStream {
 public:
  /// Throws `ArchiveErrorWrongKey` where the root header does not open.
  SealedReader(ArchiveByteStream& from, const ArchiveEncryptionContext& context);

  /// Gives nothing of a segment whose tag was not checked. At the end everything behind the last
  /// segment has been checked too.
  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) override;
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
  void readExactly(std::span<std::uint8_t> bytes);
  void readClusterHeader();
  [[nodiscard]] bool beginSegment();
  [[nodiscard]] bool nextSegment();
  void checkEnd();

  ArchiveByteStream& from_;
  ChainKey mainKey_;
  SealedRoot root_;
  std::size_t mostSegments_ = 1;
  std::uint64_t readBytes_ = 0;
  std::uint64_t begunBytes_ = 0;
  std::uint32_t clusterIndex_ = 0;
  std::size_t segmentIndex_ = 0;
  Tag nextClusterTag_{};
  std::shared_ptr<const ChainKey> clusterKey_;
  Bytes headers_, tags_;
  bool isEndChecked_ = false;
  std::unique_ptr<Segment> segment_;
  std::size_t given_ = 0;
  std::vector<std::unique_ptr<Segment>> spare_;
  std::deque<std::unique_ptr<Segment>> begun_;
  OrderedWork work_;
};

}  // namespace ORLFoundation::internal::container
