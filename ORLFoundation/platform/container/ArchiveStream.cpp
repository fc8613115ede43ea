#include <ORLFoundation/platform/container/ArchiveStream.h>

#include <ORLFoundation/platform/container/internal/EntryStreams.h>
#include <ORLFoundation/platform/container/internal/FolderExtraction.h>
#include <ORLFoundation/platform/container/internal/FolderPacking.h>
#include <ORLFoundation/platform/container/internal/HeaderFields.h>
#include <ORLFoundation/platform/files/FileFailure.h>

#include <cerrno>

namespace ORLFoundation {

using namespace internal::container;
using internal::files::FileCalls;
using internal::files::FileFailure;
using internal::files::FileWork;
using internal::files::HeldFolder;

namespace {

constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

[[noreturn]] void throwWrongWay() {
  throw ArchiveError(ArchiveErrorUnsupported, "The entries go the other way.");
}

[[noreturn]] void throwTooLarge(const std::string& what) {
  throw ArchiveError(ArchiveErrorTooLarge, "The archive holds more " + what + " than allowed.");
}

/// Hands on the blobs of one entry, and counts their bytes.
void processBlobs(const ArchiveHeader& header, ArchiveStream& from, ArchiveStream& to,
                  const ArchiveStream::ExtractionOptions& options, std::uint64_t& bytes,
                  std::span<std::uint8_t> piece) {
  for (const ArchiveHeader::Field& field : header.fields()) {
    const auto* const blob = std::get_if<ArchiveHeader::Blob>(&field.value);
    if (blob == nullptr) continue;
    if (blob->size > options.mostBytes - bytes) throwTooLarge("bytes");
    bytes += blob->size;
    while (const std::size_t count = from.readBlob(piece)) {
      to.writeBlob(field.key, piece.first(count));
      if (options.advance) options.advance();
    }
  }
}

}  // namespace

std::shared_ptr<ArchiveStream> ArchiveStream::encodeStream(ArchiveByteStream& writingTo) {
  return std::make_shared<EntryWriter>(writingTo);
}

std::shared_ptr<ArchiveStream> ArchiveStream::decodeStream(ArchiveByteStream& readingFrom) {
  return std::make_shared<EntryReader>(readingFrom);
}

std::shared_ptr<ArchiveStream> ArchiveStream::extractStream(const std::string& extractingTo,
                                                            const ExtractionOptions& options,
                                                            NSErrorSlot error) {
  HeldFolder folder(*FileCalls::system(), extractingTo);
  if (folder.isOpen()) return std::make_shared<FolderExtraction>(std::move(folder), options);
  const FileFailure failure{FileWork::Write, errno, extractingTo};
  NSFillErrorSlot(error, internal::files::errorOf(failure));
  return nullptr;
}

void ArchiveStream::process(ArchiveStream& readingFrom, ArchiveStream& writingTo,
                            const ExtractionOptions& options) {
  Bytes piece(kPieceBytes);
  std::uint64_t entries = 0, bytes = 0;
  while (const std::optional<ArchiveHeader> header = readingFrom.readHeader()) {
    if (options.advance) options.advance();
    if (++entries > options.mostEntries) throwTooLarge("entries");
    writingTo.writeHeader(*header);
    processBlobs(*header, readingFrom, writingTo, options, bytes, piece);
  }
}

void ArchiveStream::writeHeader(const ArchiveHeader&) { throwWrongWay(); }

void ArchiveStream::writeBlob(ArchiveHeader::FieldKey, std::span<const std::uint8_t>) {
  throwWrongWay();
}

std::optional<ArchiveHeader> ArchiveStream::readHeader() { throwWrongWay(); }

std::size_t ArchiveStream::readBlob(std::span<std::uint8_t>) { throwWrongWay(); }

void ArchiveStream::writeDirectoryContents(const std::string& archiveFrom,
                                           const ArchiveHeader::FieldKeySet& keySet,
                                           const PackingOptions& options) {
  HeldFolder folder(*FileCalls::system(), archiveFrom);
  if (!folder.isOpen()) throwFileFailure(FileWork::Read, errno, archiveFrom);
  FolderPacking(folder, keySet, options).packInto(*this);
}

}  // namespace ORLFoundation
