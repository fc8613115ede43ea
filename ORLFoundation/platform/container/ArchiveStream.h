/// Entries of an archive, written and read one after the other: a header, then the blobs that it
/// announces, in their order. Entries that are read from one stream can be processed into another,
/// which makes files of them.
///
///     const auto entries = ArchiveStream::encodeStream(*packed);
///     const ArchiveHeader::FieldKeySet keys("TYP,PAT,DAT,MOD");
///     entries->writeDirectoryContents("/home/ann/books", keys);
///     entries->close();
///
/// Failures are thrown as `ArchiveError`. A stream over another one must go before it, and serves
/// one thread.
#pragma once

#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/container/ArchiveHeader.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace ORLFoundation {

/// What packing a folder may ask for.
struct ArchivePackingOptions {
  /// Called with the bytes of files that were packed so far, now and then. What it throws ends the
  /// packing.
  std::function<void(std::uint64_t bytes)> advance = {};
  /// Device and number of a file that is left out: the archive itself, where it lies in the
  /// folder.
  std::optional<std::pair<std::uint64_t, std::uint64_t>> leftOut = {};
};

/// What extraction keeps, and what it bears.
struct ArchiveExtractionOptions {
  /// Gives files to the users and groups of the archive, which takes the right to do so.
  bool keepsOwners = false;
  /// Keeps the bits that have a program run as its owner, and the sticky one.
  bool keepsSetIDBits = false;
  std::uint64_t mostEntries = 1'000'000;
  /// Of all files together.
  std::uint64_t mostBytes = std::uint64_t{64} << 30;
  /// Called before each entry and now and then within long ones. What it throws ends the work.
  std::function<void()> advance = {};
};

class ArchiveStream {
 public:
  using PackingOptions = ArchivePackingOptions;
  using ExtractionOptions = ArchiveExtractionOptions;

  ArchiveStream() = default;
  virtual ~ArchiveStream() = default;
  ArchiveStream(const ArchiveStream&) = delete;
  ArchiveStream& operator=(const ArchiveStream&) = delete;

  /// `encodeStream(writingTo:)`
  [[nodiscard]] static std::shared_ptr<ArchiveStream> encodeStream(ArchiveByteStream& writingTo);
  /// `decodeStream(readingFrom:)`
  [[nodiscard]] static std::shared_ptr<ArchiveStream> decodeStream(ArchiveByteStream& readingFrom);
  /// `extractStream(extractingTo:)`  Makes files, folders and links in an empty folder. Nothing is
  /// made outside, through a link or in place of anything; links are made by `close`, and so are
  /// the modes of folders. Names that lead out or come twice are refused; what is no file, folder
  /// or link is left out, and the log says so. Null, and an error, where the folder cannot be
  /// opened.
  [[nodiscard]] static std::shared_ptr<ArchiveStream> extractStream(
      const std::string& extractingTo, const ExtractionOptions& options,
      NSErrorSlot error = nullptr);
  /// `process(readingFrom:writingTo:)`  Hands on every entry, within the limits of the options.
  static void process(ArchiveStream& readingFrom, ArchiveStream& writingTo,
                      const ExtractionOptions& options);

  /// `writeHeader(_:)`  Begins an entry. All blobs of the one before must have been written.
  virtual void writeHeader(const ArchiveHeader& header);
  /// `writeBlob(key:from:)`  The next piece of the blob whose turn it is.
  virtual void writeBlob(ArchiveHeader::FieldKey key, std::span<const std::uint8_t> from);
  /// The next entry; nil at the end. What was not read of the one before is passed over.
  [[nodiscard]] virtual std::optional<ArchiveHeader> readHeader();
  /// Fills the bytes from the blob whose turn it is; fewer at its end, then 0, and the next blob's
  /// turn comes.
  [[nodiscard]] virtual std::size_t readBlob(std::span<std::uint8_t> bytes);
  /// `writeDirectoryContents(archiveFrom:keySet:)`  An entry for a folder, then one for each thing
  /// in it, names in the order of their bytes, a folder before what it holds; files, folders and
  /// links are packed, links as links. Pipes, sockets and devices are left out, and the log says
  /// so. TYP and PAT are written in any case, LNK for each link; of other keys UID, GID, MOD and
  /// DAT.
  void writeDirectoryContents(const std::string& archiveFrom,
                              const ArchiveHeader::FieldKeySet& keySet,
                              const PackingOptions& options = {});
  /// `close`
  virtual void close() {}
};

}  // namespace ORLFoundation
