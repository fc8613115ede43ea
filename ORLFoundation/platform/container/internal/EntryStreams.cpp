#include <ORLFoundation/platform/container/internal/EntryStreams.h>

#include <ORLFoundation/platform/container/internal/HeaderFields.h>

#include <algorithm>
#include <array>

namespace ORLFoundation::internal::container {
namespace {

[[noreturn]] void throwOutOfTurn() {
  throw ArchiveError(ArchiveErrorUnsupported, "A blob of an archive's entry is out of its turn.");
}

}  // namespace

void EntryWriter::passEmptyBlobs() {
  while (!blobs_.empty() && blobs_.front().left == 0) blobs_.pop_front();
}

void EntryWriter::checkNothingIsLeft() {
  passEmptyBlobs();
  if (!blobs_.empty()) throwOutOfTurn();
}

void EntryWriter::writeHeader(const ArchiveHeader& header) {
  checkNothingIsLeft();
  to_.write(header.encodedData());
  for (const ArchiveHeader::Field& field : header.fields())
    if (const auto* const blob = std::get_if<ArchiveHeader::Blob>(&field.value))
      blobs_.push_back({field.key, blob->size});
}

void EntryWriter::writeBlob(ArchiveHeader::FieldKey key, std::span<const std::uint8_t> from) {
  if (from.empty()) return;
  passEmptyBlobs();
  if (blobs_.empty() || blobs_.front().key != key || blobs_.front().left < from.size())
    throwOutOfTurn();
  to_.write(from);
  blobs_.front().left -= from.size();
}

void EntryWriter::close() { checkNothingIsLeft(); }

std::optional<ArchiveHeader> EntryReader::readHeader() {
  passOverBlobs();
  std::array<std::uint8_t, ArchiveHeader::kStartBytes> start{};
  const std::size_t count = from_.read(start);
  if (count == 0) return std::nullopt;
  Bytes data(start.begin(), start.begin() + static_cast<std::ptrdiff_t>(count));
  data.resize(ArchiveHeader::sizeOfStart(data));
  const auto rest = std::span(data).subspan(start.size());
  if (from_.read(rest) != rest.size()) throwDamaged("it ends within a header");
  ArchiveHeader header = ArchiveHeader::headerWithData(data);
  for (const ArchiveHeader::Field& field : header.fields())
    if (const auto* const blob = std::get_if<ArchiveHeader::Blob>(&field.value))
      blobs_.push_back(blob->size);
  return header;
}

std::size_t EntryReader::readBlob(std::span<std::uint8_t> bytes) {
  if (blobs_.empty()) return 0;
  std::uint64_t& left = blobs_.front();
  if (left == 0) {
    blobs_.pop_front();
    return 0;
  }
  const std::size_t count = std::min<std::uint64_t>(bytes.size(), left);
  if (from_.read(bytes.first(count)) != count) throwDamaged("it ends within a file");
  left -= count;
  return count;
}

void EntryReader::passOverBlobs() {
  std::array<std::uint8_t, 16384> bytes{};
  while (!blobs_.empty()) static_cast<void>(readBlob(bytes));
}

}  // namespace ORLFoundation::internal::container
