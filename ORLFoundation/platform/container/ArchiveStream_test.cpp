#include <ORLFoundation/platform/container/ArchiveStream.h>

#include <ORLFoundation/platform/container/Archive_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::archiveErrorOf;
using orlftest::archiveOf;
using orlftest::Bytes;
using orlftest::bytesOf;
using orlftest::bytesOfHex;
using orlftest::hexOf;
using orlftest::MemoryByteStream;
using testing::ElementsAre;
using testing::HasSubstr;
using Entry = orlftest::ArchiveEntry;
using Field = ArchiveHeader::Field;

class ArchiveStreams : public orlftest::ArchiveFolderTest {};

TEST_F(ArchiveStreams, ReadTheExample) {
  const Bytes archive = bytesOfHex(orlftest::kArchiveExample);
  ASSERT_EQ(archive.size(), 194U);
  EXPECT_EQ(orlftest::sha256Of(archive),
            "57b01a578c32b366b3a39f364ad88bc0b0c4f83e02fd6ad8fefdff41a1fa673c");
  extract(archive);
  EXPECT_EQ(read("to/a.txt"), "hello\n");
  EXPECT_EQ(fs::read_symlink(folder_ / "to/l"), "a.txt");
  EXPECT_EQ(modeOf("to"), 0755U);
  EXPECT_EQ(modeOf("to/a.txt"), 0644U);
}

TEST_F(ArchiveStreams, WriteTheExampleToTheByte) {
  MemoryByteStream source(bytesOfHex(orlftest::kArchiveExample)), target;
  const auto from = ArchiveStream::decodeStream(source), to = ArchiveStream::encodeStream(target);
  ArchiveStream::process(*from, *to, {});
  to->close();
  EXPECT_EQ(hexOf(target.bytes()), hexOf(source.bytes()));
}

TEST_F(ArchiveStreams, PackAFolderInOrder) {
  write("from/b/c", "1");
  write("from/a", "22");
  write("from/b.txt", "");
  fs::create_symlink("../elsewhere", folder_ / "from/z");
  fs::create_directory(folder_ / "from/empty");
  ::chmod(path("from/a").c_str(), 04751);
  ::chmod(path("from").c_str(), 0700);
  const auto owners = [&](ArchiveHeader& header) {
    struct stat status {};
    ASSERT_EQ(::lstat(path("from").c_str(), &status), 0);
    header.append(Field::uint("UID", status.st_uid));
    header.append(Field::uint("GID", status.st_gid));
  };
  struct Expected {
    char letter;
    const char* path;
    std::uint64_t mode;
    std::optional<std::string> data, target;
  };
  const Expected rows[] = {{'D', "", 0700, {}, {}},
                           {'F', "a", 04751, "22", {}},
                           {'D', "b", 0755, {}, {}},
                           {'F', "b/c", 0644, "1", {}},
                           {'F', "b.txt", 0644, "", {}},
                           {'D', "empty", 0755, {}, {}},
                           {'L', "z", 0777, {}, "../elsewhere"}};
  ::chmod(path("from/b").c_str(), 0755);
  ::chmod(path("from/empty").c_str(), 0755);
  ::chmod(path("from/b/c").c_str(), 0644);
  ::chmod(path("from/b.txt").c_str(), 0644);
  MemoryByteStream memory(packed("from"));
  const auto entries = ArchiveStream::decodeStream(memory);
  for (const Expected& row : rows) {
    ArchiveHeader expected;
    expected.append(Entry::type(row.letter));
    expected.append(Field::string("PAT", row.path));
    if (row.target) expected.append(Field::string("LNK", *row.target));
    owners(expected);
    expected.append(Field::uint("MOD", row.mode));
    if (row.data) expected.append(Field::blob("DAT", row.data->size()));
    const auto header = entries->readHeader();
    ASSERT_TRUE(header) << row.path;
    EXPECT_EQ(*header, expected) << row.path;
    Bytes data(100);
    const std::size_t count = entries->readBlob(data);
    EXPECT_EQ(std::string(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(count)),
              row.data.value_or(""));
  }
  EXPECT_EQ(entries->readHeader(), std::nullopt);
}

TEST_F(ArchiveStreams, LeaveOutTheArchiveItself) {
  write("from/a", "1");
  write("from/self", "22");
  struct stat status {};
  ASSERT_EQ(::stat(path("from/self").c_str(), &status), 0);
  ArchiveStream::PackingOptions options;
  options.leftOut = {status.st_dev, status.st_ino};
  extract(packed("from", options));
  EXPECT_THAT(names("to"), ElementsAre("a"));
}

TEST_F(ArchiveStreams, FailForAFileThatBecomesShorter) {
  write("from/a", std::string(3000000, 'x'));
  ArchiveStream::PackingOptions options;
  options.advance = [this](std::uint64_t bytes) {
    if (bytes > 0) fs::resize_file(folder_ / "from/a", 1000);
  };
  EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(packed("from", options)); }),
            ArchiveErrorChanged);
}

TEST_F(ArchiveStreams, LeaveOutWhatIsNoFileAndSaySo) {
  write("from/a", "1");
  ASSERT_EQ(::mkfifo(path("from/pipe").c_str(), 0600), 0);
  const LogCapture log;
  const Bytes archive = packed("from");
  extract(archiveOf({Entry::folder(""),
                     {{Entry::type('P'), Field::string("PAT", "pipe")}, ""},
                     Entry::file("a", "1")}));
  EXPECT_THAT(log.lines(),
              ElementsAre(HasSubstr("from/pipe"),
                          HasSubstr("extracted, since it is no file, folder or link: pipe")));
  EXPECT_THAT(names("to"), ElementsAre("a"));
  extract(archive);
  EXPECT_THAT(names("to"), ElementsAre("a"));
}

TEST_F(ArchiveStreams, KeepBlobsInTheirTurn) {
  MemoryByteStream memory;
  const auto entries = ArchiveStream::encodeStream(memory);
  ArchiveHeader header;
  header.append(Field::blob("DAT", 3));
  header.append(Field::blob("XAT", 1));
  entries->writeHeader(header);
  EXPECT_EQ(archiveErrorOf([&] { entries->writeBlob("XAT", bytesOf("1")); }),
            ArchiveErrorUnsupported);
  EXPECT_EQ(archiveErrorOf([&] { entries->writeBlob("DAT", bytesOf("1234")); }),
            ArchiveErrorUnsupported);
  entries->writeBlob("DAT", bytesOf("12"));
  EXPECT_EQ(archiveErrorOf([&] { entries->writeHeader(header); }), ArchiveErrorUnsupported);
  EXPECT_EQ(archiveErrorOf([&] { entries->close(); }), ArchiveErrorUnsupported);
  entries->writeBlob("DAT", bytesOf("3"));
  entries->writeBlob("XAT", bytesOf("x"));
  entries->close();
  EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(entries->readHeader()); }),
            ArchiveErrorUnsupported);
}

}  // namespace
}  // namespace ORLFoundation
