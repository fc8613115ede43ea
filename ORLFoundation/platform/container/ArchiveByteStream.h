/// Streams of bytes from which archives are read and to which they are written, one laid over the
/// other: a file, the compressing or the sealing stream over it.
///
///     using Mode = ArchiveByteStream::FileMode;
///     const auto file = ArchiveByteStream::fileStream(path, Mode::createNew);
///     const auto packed =
///         ArchiveByteStream::compressionStream(ArchiveCompression::lzfse, *file);
///     packed->write(bytes);
///     packed->close();
///     file->close();
///
/// A stream over another one must go before it; closing it leaves the other one open. Failures are
/// thrown as `ArchiveError`. A stream serves one thread; those that compress and seal have others
/// work for them.
#pragma once

#include <ORLFoundation/platform/container/ArchiveError.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace ORLFoundation {

class ArchiveEncryptionContext;

/// How blocks are compressed. A block that does not shrink is stored in any case.
enum class ArchiveCompression : std::uint8_t { none, lzfse };

class ArchiveByteStream {
 public:
  enum class FileMode : std::uint8_t { readOnly, createNew };
  /// 4 MiB, as the platform's own tool takes them for archives.
  static constexpr std::size_t kBlockBytes = std::size_t{4} << 20;
  /// Blocks and segments above 64 MiB are not read: each takes its memory twice.
  static constexpr std::size_t kMostBlockBytes = std::size_t{64} << 20;

  ArchiveByteStream() = default;
  virtual ~ArchiveByteStream() = default;
  ArchiveByteStream(const ArchiveByteStream&) = delete;
  ArchiveByteStream& operator=(const ArchiveByteStream&) = delete;

  /// `fileStream(path:mode:)`  A file that is read, or one that must not be there yet and is made,
  /// readable and writable as the process's mask allows. Null, and an error, where it cannot be
  /// opened.
  [[nodiscard]] static std::shared_ptr<ArchiveByteStream> fileStream(const std::string& path,
                                                                     FileMode mode,
                                                                     NSErrorSlot error = nullptr);
  /// `compressionStream(using:writingTo:blockSize:)`  Blocks, each compressed for itself on one of
  /// several threads.
  [[nodiscard]] static std::shared_ptr<ArchiveByteStream> compressionStream(
      ArchiveCompression compression, ArchiveByteStream& writingTo,
      std::size_t blockSize = kBlockBytes);
  /// `decompressionStream(readingFrom:)`  What a compressing stream wrote.
  [[nodiscard]] static std::shared_ptr<ArchiveByteStream> decompressionStream(
      ArchiveByteStream& readingFrom);
  /// `encryptionStream(writingTo:encryptionContext:)`  Null for a context without the key that its
  /// profile needs. The stream below has to take bytes at any place; the container is whole once
  /// this one is closed.
  [[nodiscard]] static std::shared_ptr<ArchiveByteStream> encryptionStream(
      ArchiveByteStream& writingTo, const ArchiveEncryptionContext& encryptionContext);
  /// `decryptionStream(readingFrom:encryptionContext:)`  Of a context that was made from the same
  /// stream. Null without the key that its profile needs; throws `ArchiveErrorWrongKey` where the
  /// container was not sealed with it.
  [[nodiscard]] static std::shared_ptr<ArchiveByteStream> decryptionStream(
      ArchiveByteStream& readingFrom, const ArchiveEncryptionContext& encryptionContext);

  /// Fills the bytes; fewer, 0 too, at the end alone.
  [[nodiscard]] virtual std::size_t read(std::span<std::uint8_t> bytes);
  /// Appends the bytes.
  virtual void write(std::span<const std::uint8_t> bytes);
  /// Writes at a place, beyond the end too, and leaves the end for `write` where it is.
  virtual void writeAt(std::uint64_t place, std::span<const std::uint8_t> bytes);
  /// Bytes that can be read in all, where the stream knows it.
  [[nodiscard]] virtual std::uint64_t length() const { return UINT64_MAX; }
  /// `close`  Finishes what is written. A stream that goes without it leaves a torn archive.
  virtual void close() {}
};

}  // namespace ORLFoundation
