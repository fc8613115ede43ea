#include <ORLFoundation/platform/container/ArchiveByteStream.h>

#include <ORLFoundation/platform/container/Archive_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::archiveErrorOf;
using orlftest::Bytes;
using orlftest::bytesOf;
using orlftest::bytesOfHex;
using orlftest::hexOf;
using orlftest::MemoryByteStream;

class ArchiveByteStreams : public orlftest::ArchiveFolderTest {};

TEST_F(ArchiveByteStreams, WrapTheExampleInBlocks) {
  Bytes wrapped = bytesOfHex(
      "70627a65 0000000000400000 00000000000000c2 0000000000000088"
      "6276786ec200000078000000e020414130313700545950314450415450000055494432f50147494431144d4f4432"
      "ed"
      "01464c4731004d544d5400f15365000001e415cd5b07083756424e46e70500612e747874383cf56ea4feec444154"
      "41"
      "060068656c6c6f0a084856434e4ce601006c4c4e4b384ffd388bfbe25b07060000000000000062767824");
  ASSERT_EQ(wrapped.size(), 164U);
  EXPECT_EQ(orlftest::sha256Of(wrapped),
            "275cdaca145bf948fb70ba8e7e64cd05e3fe7f404cdd571d0db28649adcad7c3");
  MemoryByteStream memory(wrapped);
  EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(memory)),
            bytesOfHex(orlftest::kArchiveExample));
  MemoryByteStream ours;
  const auto stream = ArchiveByteStream::compressionStream(ArchiveCompression::lzfse, ours);
  stream->write(bytesOfHex(orlftest::kArchiveExample));
  stream->close();
  EXPECT_TRUE(std::equal(wrapped.begin(), wrapped.begin() + 20, ours.bytes().begin()));
  EXPECT_LE(ours.bytes().size() * 10, wrapped.size() * 11);
  MemoryByteStream again(ours.bytes());
  EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(again)),
            bytesOfHex(orlftest::kArchiveExample));
}

TEST_F(ArchiveByteStreams, StoreBlocksThatDoNotShrink) {
  MemoryByteStream memory;
  const auto stream = ArchiveByteStream::compressionStream(ArchiveCompression::lzfse, memory);
  stream->write(bytesOf("abc"));
  stream->close();
  EXPECT_EQ(hexOf(memory.bytes()),
            "70627a650000000000400000"
            "00000000000000030000000000000003616263");
  MemoryByteStream back(memory.bytes());
  EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(back)), bytesOf("abc"));
}

TEST_F(ArchiveByteStreams, CutBlocksOfTheSizeThatIsAskedFor) {
  for (const std::size_t count : {0U, 1U, 999U, 1000U, 1001U, 5000U}) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(i * i / 7);
    MemoryByteStream memory;
    const auto stream =
        ArchiveByteStream::compressionStream(ArchiveCompression::none, memory, 1000);
    for (std::size_t at = 0; at < count; at += 7)
      stream->write(std::span(bytes).subspan(at, std::min<std::size_t>(7, count - at)));
    stream->close();
    EXPECT_EQ(memory.bytes().size(), 12 + count + 16 * ((count + 999) / 1000));
    MemoryByteStream back(memory.bytes());
    EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(back), 13), bytes);
    Bytes withEmptyBlock = memory.bytes();
    withEmptyBlock.resize(withEmptyBlock.size() + 16);
    MemoryByteStream empty(withEmptyBlock);
    EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(empty)), bytes);
  }
}

TEST_F(ArchiveByteStreams, RefuseDamagedBlocks) {
  const std::vector<std::tuple<const char*, std::string, NSInteger>> rows{
      {"nothing", "", ArchiveErrorDamaged},
      {"another magic", "70627b65 0000000000400000", ArchiveErrorDamaged},
      {"zlib", "70627a7a 0000000000400000", ArchiveErrorUnsupported},
      {"no block size", "70627a65 0000000000000000", ArchiveErrorDamaged},
      {"blocks of 4 GB", "70627a65 0000000100000000", ArchiveErrorDamaged},
      {"blocks of 128 MB", "70627a65 0000000008000000", ArchiveErrorTooLarge},
      {"sizes cut off", "70627a65 0000000000400000 0000000000000003 00000000000003",
       ArchiveErrorDamaged},
      {"bytes cut off", "70627a65 0000000000400000 0000000000000003 0000000000000003 6162",
       ArchiveErrorDamaged},
      {"more stored than there is",
       "70627a65 0000000000400000 0000000000000003 0000000000000004 61626364", ArchiveErrorDamaged},
      {"more than a block", "70627a65 0000000000000002 0000000000000003 0000000000000003 616263",
       ArchiveErrorDamaged},
      {"nothing stored", "70627a65 0000000000400000 0000000000000003 0000000000000000",
       ArchiveErrorDamaged},
      {"a block behind the last",
       "70627a65 0000000000400000 0000000000000001 0000000000000001 61 0000000000000001 "
       "0000000000000001 61",
       ArchiveErrorDamaged},
      {"no LZFSE", "70627a65 0000000000400000 0000000000000003 0000000000000002 6162",
       ArchiveErrorDamaged},
  };
  for (const auto& [name, hex, code] : rows) {
    MemoryByteStream memory(bytesOfHex(hex));
    EXPECT_EQ(
        archiveErrorOf([&] {
          static_cast<void>(orlftest::readAll(*ArchiveByteStream::decompressionStream(memory)));
        }),
        code)
        << name;
  }
}

/// Takes so many bytes, as a disk does.
class SmallByteStream final : public ArchiveByteStream {
 public:
  explicit SmallByteStream(std::size_t room) : room_(room) {}
  void write(std::span<const std::uint8_t> bytes) override {
    if (bytes.size() > room_) throw ArchiveError(ArchiveErrorTooLarge, "It is full.");
    room_ -= bytes.size();
  }

 private:
  std::size_t room_;
};

TEST_F(ArchiveByteStreams, DoNotEndWellAfterAFailure) {
  SmallByteStream disk(3000);
  const auto stream = ArchiveByteStream::compressionStream(ArchiveCompression::none, disk, 1000);
  const Bytes bytes(500);
  NSInteger code = 0;
  for (int piece = 0; piece < 100 && code == 0; ++piece)
    code = archiveErrorOf([&] { stream->write(bytes); });
  EXPECT_EQ(code, ArchiveErrorTooLarge);
  EXPECT_EQ(archiveErrorOf([&] { stream->write(bytes); }), ArchiveErrorTooLarge);
  EXPECT_EQ(archiveErrorOf([&] { stream->close(); }), ArchiveErrorTooLarge);
}

TEST_F(ArchiveByteStreams, OpenFilesOrTellWhyNot) {
  std::shared_ptr<const NSError> error;
  using Mode = ArchiveByteStream::FileMode;
  EXPECT_EQ(ArchiveByteStream::fileStream(path("missing"), Mode::readOnly, &error), nullptr);
  EXPECT_EQ(error->code(), 260);
  write("there", "1");
  EXPECT_EQ(ArchiveByteStream::fileStream(path("there"), Mode::createNew, &error), nullptr);
  EXPECT_EQ(error->code(), 516);
  // A mode that is none makes nothing.
  EXPECT_EQ(ArchiveByteStream::fileStream(path("missing"), static_cast<Mode>(2)), nullptr);
  EXPECT_FALSE(std::filesystem::exists(path("missing")));
  EXPECT_EQ(ArchiveStream::extractStream(path("missing"), {}, &error), nullptr);
  EXPECT_EQ(error->code(), 4);
  const auto made = ArchiveByteStream::fileStream(path("new"), Mode::createNew);
  made->write(bytesOf("abc"));
  made->writeAt(1, bytesOf("X"));
  made->close();
  EXPECT_EQ(read("new"), "aXc");
  const auto back = ArchiveByteStream::fileStream(path("new"), Mode::readOnly);
  EXPECT_EQ(back->length(), 3U);
  EXPECT_EQ(orlftest::readAll(*back, 2), bytesOf("aXc"));
  EXPECT_THROW(static_cast<void>(ArchiveByteStream::fileStream(path("."), Mode::readOnly)),
               ArchiveError);
}

}  // namespace
}  // namespace ORLFoundation
