/// Streams in memory, scripted random bytes, and trees of files, for tests of archives.
#pragma once

#include <ORLFoundation/platform/base/Digest_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/container/ArchiveStream.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orlftest {

/// Bytes in memory that are read, and written at any place.
class MemoryByteStream final : public ORLFoundation::ArchiveByteStream {
 public:
  explicit MemoryByteStream(Bytes bytes = {}) : bytes_(std::move(bytes)) {}

  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) override {
    const std::size_t count = std::min(bytes.size(), bytes_.size() - at_);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at_), count, bytes.begin());
    at_ += count;
    return count;
  }
  void write(std::span<const std::uint8_t> bytes) override {
    writeAt(at_, bytes);
    at_ += bytes.size();
  }
  void writeAt(std::uint64_t place, std::span<const std::uint8_t> bytes) override {
    bytes_.resize(std::max<std::size_t>(bytes_.size(), place + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(place));
  }
  [[nodiscard]] std::uint64_t length() const override { return bytes_.size(); }
  [[nodiscard]] const Bytes& bytes() const { return bytes_; }

 private:
  Bytes bytes_;
  std::size_t at_ = 0;
};

/// All that a stream gives, read in pieces of a size.
inline Bytes readAll(ORLFoundation::ArchiveByteStream& stream, std::size_t pieceBytes = 1000) {
  Bytes all, piece(pieceBytes);
  while (const std::size_t count = stream.read(piece))
    all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
  return all;
}

/// Random bytes that a test foretells: each call is answered by the next script, and fails behind
/// the last.
class ScriptedRandomBytes {
 public:
  using Script = std::function<std::uint8_t(std::size_t index)>;
  explicit ScriptedRandomBytes(std::deque<Script> scripts)
      : source_(ORLFoundation::SecSetRandomSource, std::make_shared<Source>(std::move(scripts))) {}

  static Script all(std::uint8_t byte) {
    return [byte](std::size_t) { return byte; };
  }
  static Script from(std::uint8_t first) {
    return [first](std::size_t index) { return static_cast<std::uint8_t>(first + index); };
  }

 private:
  class Source final : public ORLFoundation::SecRandomSource {
   public:
    explicit Source(std::deque<Script> scripts) : scripts_(std::move(scripts)) {}
    bool copyBytes(std::span<std::uint8_t> bytes) override {
      if (scripts_.empty()) {
        errno = EIO;
        return false;
      }
      for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = scripts_.front()(i);
      scripts_.pop_front();
      return true;
    }

   private:
    std::deque<Script> scripts_;
  };

  ORLFoundation::Replaced<std::shared_ptr<ORLFoundation::SecRandomSource>> source_;
};

// A folder, "a.txt" with "hello\n" and a link to it.
inline constexpr const char* kArchiveExample =
    "414130313700545950314450415450000055494432f50147494431144d4f4432ed01464c4731004d544d5400"
    "f153650000000015cd5b074141303142005459503146504154500500612e74787455494432f5014749443114"
    "4d4f4432a401464c4731004d544d5400f153650000000015cd5b0744415441060068656c6c6f0a4141303143"
    "00545950314c5041545001006c4c4e4b500500612e74787455494432f50147494431144d4f4432ed01464c47"
    "31004d544d5400f153650000000015cd5b07";

/// An entry, and the bytes of its blobs.
struct ArchiveEntry {
  using Field = ORLFoundation::ArchiveHeader::Field;

  static Field type(char letter) { return Field::uint("TYP", static_cast<std::uint8_t>(letter)); }
  static ArchiveEntry folder(const std::string& path, std::uint64_t mode = 0755) {
    return {{type('D'), Field::string("PAT", path), Field::uint("MOD", mode)}, ""};
  }
  static ArchiveEntry file(const std::string& path, const std::string& data,
                           std::uint64_t mode = 0644) {
    return {{type('F'), Field::string("PAT", path), Field::uint("MOD", mode),
             Field::blob("DAT", data.size())},
            data};
  }
  static ArchiveEntry link(const std::string& path, const std::string& target) {
    return {{type('L'), Field::string("PAT", path), Field::string("LNK", target)}, ""};
  }

  std::vector<Field> fields;
  std::string data;
};

inline Bytes archiveOf(const std::vector<ArchiveEntry>& entries) {
  Bytes bytes;
  for (const ArchiveEntry& entry : entries) {
    ORLFoundation::ArchiveHeader header;
    for (const ArchiveEntry::Field& field : entry.fields) header.append(field);
    const Bytes start = header.encodedData();
    bytes.insert(bytes.end(), start.begin(), start.end());
    bytes.insert(bytes.end(), entry.data.begin(), entry.data.end());
  }
  return bytes;
}

/// The code of `ArchiveErrorDomain` that work throws; 0 where it throws nothing.
template <class Work>
ORLFoundation::NSInteger archiveErrorOf(const Work& work) {
  try {
    work();
  } catch (const ORLFoundation::ArchiveError& failure) {
    EXPECT_EQ(failure.error()->domain(), ORLFoundation::ArchiveErrorDomain) << failure.what();
    return failure.error()->code();
  }
  return 0;
}

/// Archives that are packed and extracted in a folder of the test's own.
class ArchiveFolderTest : public TemporaryFolderTest {
 protected:
  /// Extracts into a new folder "to".
  void extract(const Bytes& archive,
               const ORLFoundation::ArchiveStream::ExtractionOptions& options = {}) {
    std::filesystem::remove_all(folder_ / "to");
    std::filesystem::create_directory(folder_ / "to");
    MemoryByteStream memory(archive);
    const auto target = ORLFoundation::ArchiveStream::extractStream(path("to"), options);
    const auto entries = ORLFoundation::ArchiveStream::decodeStream(memory);
    ORLFoundation::ArchiveStream::process(*entries, *target, options);
    target->close();
  }
  ORLFoundation::NSInteger codeOf(
      const Bytes& archive, const ORLFoundation::ArchiveStream::ExtractionOptions& options = {}) {
    return archiveErrorOf([&] { extract(archive, options); });
  }
  [[nodiscard]] Bytes packed(
      const std::string& name,
      const ORLFoundation::ArchiveStream::PackingOptions& options = {}) const {
    MemoryByteStream memory;
    const auto entries = ORLFoundation::ArchiveStream::encodeStream(memory);
    entries->writeDirectoryContents(
        path(name), ORLFoundation::ArchiveHeader::FieldKeySet("TYP,PAT,DAT,UID,GID,MOD"), options);
    entries->close();
    return memory.bytes();
  }
};

}  // namespace orlftest
