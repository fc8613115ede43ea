#include <ORLFoundation/platform/container/ArchiveByteStream.h>

#include <ORLFoundation/platform/container/FileByteStream.h>
#include <ORLFoundation/platform/container/internal/BlockStreams.h>
#include <ORLFoundation/platform/container/internal/HeaderFields.h>
#include <ORLFoundation/platform/container/internal/SealedStreams.h>

namespace ORLFoundation {

using namespace internal::container;
using internal::files::FileCalls;
using internal::files::FileFailure;
using internal::files::FileWork;
using internal::files::OpenFile;

std::shared_ptr<ArchiveByteStream> ArchiveByteStream::fileStream(const std::string& path,
                                                                 FileMode mode, NSErrorSlot error) {
  constexpr mode_t kNewFile = 0666;  // of which the process's mask takes away
  FileCalls& calls = *FileCalls::system();
  const bool reads = mode != FileMode::createNew;
  OpenFile file(calls,
                calls.open(AT_FDCWD, path, reads ? O_RDONLY : O_RDWR | O_CREAT | O_EXCL, kNewFile));
  if (file.isOpen()) return std::make_shared<FileByteStream>(calls, std::move(file), path);
  const FileFailure failure{reads ? FileWork::Read : FileWork::Write, errno, path};
  NSFillErrorSlot(error, internal::files::errorOf(failure));
  return nullptr;
}

std::shared_ptr<ArchiveByteStream> ArchiveByteStream::compressionStream(
    ArchiveCompression compression, ArchiveByteStream& writingTo, std::size_t blockSize) {
  return std::make_shared<BlockWriter>(compression, writingTo, blockSize);
}

std::shared_ptr<ArchiveByteStream> ArchiveByteStream::decompressionStream(
    ArchiveByteStream& readingFrom) {
  return std::make_shared<BlockReader>(readingFrom);
}

std::shared_ptr<ArchiveByteStream> ArchiveByteStream::encryptionStream(
    ArchiveByteStream& writingTo, const ArchiveEncryptionContext& encryptionContext) {
  if (!encryptionContext.hasKey()) return nullptr;
  return std::make_shared<SealedWriter>(writingTo, encryptionContext);
}

std::shared_ptr<ArchiveByteStream> ArchiveByteStream::decryptionStream(
    ArchiveByteStream& readingFrom, const ArchiveEncryptionContext& encryptionContext) {
  if (!encryptionContext.hasKey()) return nullptr;
  return std::make_shared<SealedReader>(readingFrom, encryptionContext);
}

std::size_t ArchiveByteStream::read(std::span<std::uint8_t>) {
  throw ArchiveError(ArchiveErrorUnsupported, "The stream cannot be read.");
}

void ArchiveByteStream::write(std::span<const std::uint8_t>) {
  throw ArchiveError(ArchiveErrorUnsupported, "The stream cannot be written to.");
}

void ArchiveByteStream::writeAt(std::uint64_t, std::span<const std::uint8_t>) {
  throw ArchiveError(ArchiveErrorUnsupported, "The stream cannot be written to at any place.");
}

}  // namespace ORLFoundation
