/// Entries over streams of bytes.
#pragma once

#include <ORLFoundation/platform/container/ArchiveStream.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>

namespace ORLFoundation::internal::container {

class EntryWriter final : public ArchiveStream {
 public:
  explicit EntryWriter(ArchiveByteStream& to) : to_(to) {}

  void writeHeader(const ArchiveHeader& header) override;
  void writeBlob(ArchiveHeader::FieldKey key, std::span<const std::uint8_t> from) override;
  void close() override;

 private:
  struct Announced {
    ArchiveHeader::FieldKey key;
    std::uint64_t left;
  };

  void passEmptyBlobs();
  void checkNothingIsLeft();

  ArchiveByteStream& to_;
  std::deque<Announced> blobs_;
};

class EntryReader final : public ArchiveStream {
 public:
  explicit EntryReader(ArchiveByteStream& from) : from_(from) {}

  [[nodiscard]] std::optional<ArchiveHeader> readHeader() override;
  [[nodiscard]] std::size_t readBlob(std::span<std::uint8_t> bytes) override;

 private:
  void passOverBlobs();

  ArchiveByteStream& from_;
  std::deque<std::uint64_t> blobs_;
};

}  // namespace ORLFoundation::internal::container
