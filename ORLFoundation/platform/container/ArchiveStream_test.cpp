#include <ORLFoundation/platform/container/ArchiveStream.h>

#include <ORLFoundation/platform/container/Archive_testing.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <filesystem>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::archiveErrorOf;
using orlftest::hexOfOctets;
using orlftest::MemoryByteStream;
using orlftest::Octets;
using orlftest::octets;
using orlftest::octetsOfHex;
using testing::ElementsAre;
using testing::HasSubstr;
using Field = ArchiveHeader::Field;

// A folder, "a.txt" with "hello\n" and a link to it.
constexpr const char* kExample =
    "414130313700545950314450415450000055494432f50147494431144d4f4432ed01464c4731004d544d5400"
    "f153650000000015cd5b074141303142005459503146504154500500612e74787455494432f5014749443114"
    "4d4f4432a401464c4731004d544d5400f153650000000015cd5b0744415441060068656c6c6f0a4141303143"
    "00545950314c5041545001006c4c4e4b500500612e74787455494432f50147494431144d4f4432ed01464c47"
    "31004d544d5400f153650000000015cd5b07";

struct Entry {
  std::vector<Field> fields;
  std::string data;
};

Field type(char letter) { return Field::uint("TYP", static_cast<std::uint8_t>(letter)); }
Entry folder(const std::string& path, std::uint64_t mode = 0755) {
  return {{type('D'), Field::string("PAT", path), Field::uint("MOD", mode)}, ""};
}
Entry file(const std::string& path, const std::string& data, std::uint64_t mode = 0644) {
  return {{type('F'), Field::string("PAT", path), Field::uint("MOD", mode),
           Field::blob("DAT", data.size())},
          data};
}
Entry link(const std::string& path, const std::string& target) {
  return {{type('L'), Field::string("PAT", path), Field::string("LNK", target)}, ""};
}

Octets archiveOf(const std::vector<Entry>& entries) {
  Octets bytes;
  for (const Entry& entry : entries) {
    ArchiveHeader header;
    for (const Field& field : entry.fields) header.append(field);
    const Octets start = header.encodedData();
    bytes.insert(bytes.end(), start.begin(), start.end());
    bytes.insert(bytes.end(), entry.data.begin(), entry.data.end());
  }
  return bytes;
}

class ArchiveStreams : public orlftest::TemporaryFolderTest {
 protected:
  /// Extracts into a new folder "to".
  void extract(const Octets& archive, const ArchiveStream::ExtractionOptions& options = {}) {
    fs::remove_all(folder_ / "to");
    fs::create_directory(folder_ / "to");
    MemoryByteStream memory(archive);
    const auto target = ArchiveStream::extractStream(path("to"), options);
    const auto entries = ArchiveStream::decodeStream(memory);
    ArchiveStream::process(*entries, *target, options);
    target->close();
  }
  NSInteger codeOf(const Octets& archive, const ArchiveStream::ExtractionOptions& options = {}) {
    return archiveErrorOf([&] { extract(archive, options); });
  }
  [[nodiscard]] mode_t modeOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(::lstat(path(name).c_str(), &status), 0) << name;
    return status.st_mode & 07777;
  }
  [[nodiscard]] Octets packed(const std::string& name,
                              const ArchiveStream::PackingOptions& options = {}) const {
    MemoryByteStream memory;
    const auto entries = ArchiveStream::encodeStream(memory);
    entries->writeDirectoryContents(path(name),
                                    ArchiveHeader::FieldKeySet("TYP,PAT,DAT,UID,GID,MOD"), options);
    entries->close();
    return memory.bytes();
  }
};

TEST_F(ArchiveStreams, ReadTheExample) {
  const Octets archive = octetsOfHex(kExample);
  ASSERT_EQ(archive.size(), 194U);
  EXPECT_EQ(orlftest::sha256OfOctets(archive),
            "57b01a578c32b366b3a39f364ad88bc0b0c4f83e02fd6ad8fefdff41a1fa673c");
  extract(archive);
  EXPECT_EQ(read("to/a.txt"), "hello\n");
  EXPECT_EQ(fs::read_symlink(folder_ / "to/l"), "a.txt");
  EXPECT_EQ(modeOf("to"), 0755U);
  EXPECT_EQ(modeOf("to/a.txt"), 0644U);
}

TEST_F(ArchiveStreams, WriteTheExampleToTheByte) {
  MemoryByteStream source(octetsOfHex(kExample)), target;
  const auto from = ArchiveStream::decodeStream(source), to = ArchiveStream::encodeStream(target);
  ArchiveStream::process(*from, *to, {});
  to->close();
  EXPECT_EQ(hexOfOctets(target.bytes()), hexOfOctets(source.bytes()));
}

TEST_F(ArchiveStreams, WrapTheExampleInBlocks) {
  Octets wrapped = octetsOfHex(
      "70627a65 0000000000400000 00000000000000c2 0000000000000088"
      "6276786ec200000078000000e020414130313700545950314450415450000055494432f50147494431144d4f4432"
      "ed"
      "01464c4731004d544d5400f15365000001e415cd5b07083756424e46e70500612e747874383cf56ea4feec444154"
      "41"
      "060068656c6c6f0a084856434e4ce601006c4c4e4b384ffd388bfbe25b07060000000000000062767824");
  ASSERT_EQ(wrapped.size(), 164U);
  EXPECT_EQ(orlftest::sha256OfOctets(wrapped),
            "275cdaca145bf948fb70ba8e7e64cd05e3fe7f404cdd571d0db28649adcad7c3");
  MemoryByteStream memory(wrapped);
  EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(memory)),
            octetsOfHex(kExample));
  MemoryByteStream ours;
  const auto stream = ArchiveByteStream::compressionStream(ArchiveCompression::lzfse, ours);
  stream->write(octetsOfHex(kExample));
  stream->close();
  EXPECT_TRUE(std::equal(wrapped.begin(), wrapped.begin() + 20, ours.bytes().begin()));
  EXPECT_LE(ours.bytes().size() * 10, wrapped.size() * 11);
  MemoryByteStream again(ours.bytes());
  EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(again)),
            octetsOfHex(kExample));
}

TEST_F(ArchiveStreams, StoreBlocksThatDoNotShrink) {
  MemoryByteStream memory;
  const auto stream = ArchiveByteStream::compressionStream(ArchiveCompression::lzfse, memory);
  stream->write(octets("abc"));
  stream->close();
  EXPECT_EQ(hexOfOctets(memory.bytes()),
            "70627a650000000000400000"
            "00000000000000030000000000000003616263");
  MemoryByteStream back(memory.bytes());
  EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(back)), octets("abc"));
}

TEST_F(ArchiveStreams, CutBlocksOfTheSizeThatIsAskedFor) {
  for (const std::size_t count : {0U, 1U, 999U, 1000U, 1001U, 5000U}) {
    Octets bytes(count);
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
    Octets withEmptyBlock = memory.bytes();
    withEmptyBlock.resize(withEmptyBlock.size() + 16);
    MemoryByteStream empty(withEmptyBlock);
    EXPECT_EQ(orlftest::readAll(*ArchiveByteStream::decompressionStream(empty)), bytes);
  }
}

TEST_F(ArchiveStreams, RefuseDamagedBlocks) {
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
    MemoryByteStream memory(octetsOfHex(hex));
    EXPECT_EQ(
        archiveErrorOf([&] {
          static_cast<void>(orlftest::readAll(*ArchiveByteStream::decompressionStream(memory)));
        }),
        code)
        << name;
  }
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
    expected.append(type(row.letter));
    expected.append(Field::string("PAT", row.path));
    if (row.target) expected.append(Field::string("LNK", *row.target));
    owners(expected);
    expected.append(Field::uint("MOD", row.mode));
    if (row.data) expected.append(Field::blob("DAT", row.data->size()));
    const auto header = entries->readHeader();
    ASSERT_TRUE(header) << row.path;
    EXPECT_EQ(*header, expected) << row.path;
    Octets data(100);
    const std::size_t count = entries->readBlob(data);
    EXPECT_EQ(std::string(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(count)),
              row.data.value_or(""));
  }
  EXPECT_EQ(entries->readHeader(), std::nullopt);
}

TEST_F(ArchiveStreams, LeaveOutWhatIsNoFileAndSaySo) {
  write("from/a", "1");
  ASSERT_EQ(::mkfifo(path("from/pipe").c_str(), 0600), 0);
  std::string log;
  const auto before = NSSetLogSink([&](std::string_view line) { log += line; });
  const Octets archive = packed("from");
  extract(archiveOf({folder(""), {{type('P'), Field::string("PAT", "pipe")}, ""}, file("a", "1")}));
  NSSetLogSink(before);
  EXPECT_THAT(log, HasSubstr("from/pipe"));
  EXPECT_THAT(log, HasSubstr("extracted, since it is no file, folder or link: pipe"));
  EXPECT_THAT(names("to"), ElementsAre("a"));
  extract(archive);
  EXPECT_THAT(names("to"), ElementsAre("a"));
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

TEST_F(ArchiveStreams, KeepModesAndLayDownRightsToRunAsOthers) {
  const Octets archive = archiveOf({folder("", 01750), folder("d", 0500), file("d/f", "1", 06741),
                                    file("g", "", 0), folder("d/e", 03777)});
  extract(archive);
  EXPECT_EQ(modeOf("to"), 0750U);
  EXPECT_EQ(modeOf("to/d"), 0500U);
  EXPECT_EQ(modeOf("to/d/f"), 0741U);
  EXPECT_EQ(modeOf("to/g"), 0U);
  EXPECT_EQ(modeOf("to/d/e"), 0777U);
  ::chmod(path("to/d").c_str(), 0700);
  extract(archive, {.keepsSetIDBits = true});
  EXPECT_EQ(modeOf("to"), 01750U);
  EXPECT_EQ(modeOf("to/d/f"), 06741U);
  EXPECT_EQ(modeOf("to/d/e"), 03777U);
  ::chmod(path("to/d").c_str(), 0700);
}

TEST_F(ArchiveStreams, GiveFilesAwayOnRequestAlone) {
  if (::geteuid() != 0) return;  // only the superuser may
  std::vector<Entry> entries{folder("d"), file("d/f", "1", 04755), link("d/l", "f")};
  for (Entry& entry : entries) {
    entry.fields.push_back(Field::uint("UID", 1234));
    entry.fields.push_back(Field::uint("GID", 5678));
  }
  const auto ownerOf = [this](const std::string& name) {
    struct stat status {};
    EXPECT_EQ(::lstat(path(name).c_str(), &status), 0);
    return std::pair(status.st_uid, status.st_gid);
  };
  extract(archiveOf(entries));
  EXPECT_EQ(ownerOf("to/d/f"), std::pair(::geteuid(), ::getegid()));
  extract(archiveOf(entries), {.keepsOwners = true, .keepsSetIDBits = true});
  for (const char* name : {"to/d", "to/d/f", "to/d/l"})
    EXPECT_EQ(ownerOf(name), (std::pair<uid_t, gid_t>(1234, 5678))) << name;
  EXPECT_EQ(modeOf("to/d/f"), 04755U);
  entries[0].fields[3] = Field::uint("UID", UINT32_MAX);
  EXPECT_EQ(codeOf(archiveOf(entries), {.keepsOwners = true}), ArchiveErrorDamaged);
}

TEST_F(ArchiveStreams, RefuseNamesThatLeadOut) {
  for (const std::string& name : std::vector<std::string>{
           "/etc/x", "..", "../x", "a/../b", "a/..", "./a", "a/.", "a//b", "a/", "//", "..//x"})
    for (const Entry& entry : {file(name, "1"), folder(name), link(name, "x")})
      EXPECT_EQ(codeOf(archiveOf({entry})), ArchiveErrorUnsafeName) << name;
  EXPECT_EQ(codeOf(archiveOf({file(std::string("a\0b", 3), "1")})), ArchiveErrorUnsafeName);
  EXPECT_EQ(codeOf(archiveOf({file("", "1")})), ArchiveErrorUnsafeName);
  EXPECT_EQ(codeOf(archiveOf({link("", "x")})), ArchiveErrorUnsafeName);
  EXPECT_EQ(codeOf(archiveOf({file(std::string(5000, 'a'), "1")})), ArchiveErrorUnsafeName);
  EXPECT_THAT(names(), ElementsAre("to"));
}

TEST_F(ArchiveStreams, RefuseNamesThatComeTwice) {
  const std::vector<std::vector<Entry>> archives{
      {file("a", "1"), file("a", "2")}, {folder("a"), folder("a")},
      {folder("a"), file("a", "1")},    {file("a", "1"), folder("a")},
      {link("a", "x"), link("a", "y")}, {file("a", "1"), link("a", "x")},
      {link("a", "x"), file("a", "1")}, {folder(""), folder("")},
      {link("a", "x"), folder("a")},    {file("d/a", "1"), folder("d"), folder("d")}};
  for (std::size_t i = 0; i < archives.size(); ++i)
    EXPECT_EQ(codeOf(archiveOf(archives[i])), ArchiveErrorUnsafeName) << i;
}

TEST_F(ArchiveStreams, NeverWriteThroughALink) {
  fs::create_directory(folder_ / "outside");
  for (const std::string& target : {path("outside"), std::string("../outside"), std::string(".")}) {
    const NSInteger code = codeOf(archiveOf({link("l", target), file("l/x", "1")}));
    EXPECT_EQ(code, ArchiveErrorUnsafeName) << target;
    EXPECT_THAT(names("outside"), ElementsAre());
  }
  // A link that leads out stays as it is and is followed by nothing.
  extract(
      archiveOf({folder(""), link("l", "../outside"), folder("d"), link("d/m", "/etc/passwd")}));
  EXPECT_EQ(fs::read_symlink(folder_ / "to/l"), "../outside");
  EXPECT_EQ(fs::read_symlink(folder_ / "to/d/m"), "/etc/passwd");
  EXPECT_THAT(names("outside"), ElementsAre());
}

TEST_F(ArchiveStreams, MakeFoldersThatNoEntryTellsOf) {
  extract(archiveOf({file("a/b/c", "1"), folder("a", 0700), link("x/y", "z")}));
  EXPECT_EQ(read("to/a/b/c"), "1");
  EXPECT_EQ(modeOf("to/a"), 0700U);
  EXPECT_EQ(modeOf("to/a/b"), 0755U);
  EXPECT_TRUE(fs::is_symlink(folder_ / "to/x/y"));
}

TEST_F(ArchiveStreams, PassOverFieldsAndBlobsThatTheyDoNotKnow) {
  Entry entry = file("a", "12345");
  entry.fields.push_back(Field::blob("XAT", 3));
  entry.fields.push_back(Field::flag("YOP"));
  entry.fields.push_back(Field::blob("DAT", 2));
  entry.fields.insert(entry.fields.begin(), Field::blob("ACL", 2));
  entry.data = "zz12345abc99";
  extract(archiveOf({{{type('M'), Field::string("PAT", ""), Field::blob("YAF", 3)}, "a,b"},
                     entry,
                     file("b", "after")}));
  EXPECT_EQ(read("to/a"), "12345");
  EXPECT_EQ(read("to/b"), "after");
}

TEST_F(ArchiveStreams, RefuseEntriesThatAreNone) {
  const std::vector<std::pair<Entry, NSInteger>> rows{
      {{{type('F')}, ""}, ArchiveErrorDamaged},
      {{{Field::string("PAT", "a")}, ""}, ArchiveErrorDamaged},
      {{{Field::string("TYP", "F"), Field::string("PAT", "a")}, ""}, ArchiveErrorDamaged},
      {{{type('L'), Field::string("PAT", "a")}, ""}, ArchiveErrorDamaged},
      {link("a", ""), ArchiveErrorDamaged},
      {link("a", std::string("b\0c", 3)), ArchiveErrorDamaged},
      {{{type('F'), Field::string("PAT", "a"), Field::uint("SIZ", 5)}, ""},
       ArchiveErrorUnsupported},
      {{{type('F'), Field::string("PAT", "a"), Field::blob("DAT", 5)}, "1234"},
       ArchiveErrorDamaged},
      {{{type('F'), Field::string("PAT", "a"), Field::uint("SIZ", 0)}, ""}, 0},
      {{{type('F'), Field::string("PAT", "a")}, ""}, 0},
  };
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_EQ(codeOf(archiveOf({rows[i].first})), rows[i].second) << i;
}

TEST_F(ArchiveStreams, BoundEntriesAndBytes) {
  const Octets archive = archiveOf({folder(""), file("a", "123"), file("b", "45")});
  EXPECT_EQ(codeOf(archive, {.mostEntries = 3, .mostBytes = 5}), 0);
  EXPECT_EQ(codeOf(archive, {.mostEntries = 2}), ArchiveErrorTooLarge);
  EXPECT_EQ(codeOf(archive, {.mostBytes = 4}), ArchiveErrorTooLarge);
  const Entry huge{{type('F'), Field::string("PAT", "a"), Field::blob("DAT", UINT64_MAX),
                    Field::blob("XAT", UINT64_MAX)},
                   "1"};
  EXPECT_EQ(codeOf(archiveOf({huge})), ArchiveErrorTooLarge);
}

TEST_F(ArchiveStreams, KeepBlobsInTheirTurn) {
  MemoryByteStream memory;
  const auto entries = ArchiveStream::encodeStream(memory);
  ArchiveHeader header;
  header.append(Field::blob("DAT", 3));
  header.append(Field::blob("XAT", 1));
  entries->writeHeader(header);
  EXPECT_EQ(archiveErrorOf([&] { entries->writeBlob("XAT", octets("1")); }),
            ArchiveErrorUnsupported);
  EXPECT_EQ(archiveErrorOf([&] { entries->writeBlob("DAT", octets("1234")); }),
            ArchiveErrorUnsupported);
  entries->writeBlob("DAT", octets("12"));
  EXPECT_EQ(archiveErrorOf([&] { entries->writeHeader(header); }), ArchiveErrorUnsupported);
  EXPECT_EQ(archiveErrorOf([&] { entries->close(); }), ArchiveErrorUnsupported);
  entries->writeBlob("DAT", octets("3"));
  entries->writeBlob("XAT", octets("x"));
  entries->close();
  EXPECT_EQ(archiveErrorOf([&] { static_cast<void>(entries->readHeader()); }),
            ArchiveErrorUnsupported);
}

TEST_F(ArchiveStreams, OpenFilesOrTellWhyNot) {
  std::shared_ptr<const NSError> error;
  using Mode = ArchiveByteStream::FileMode;
  EXPECT_EQ(ArchiveByteStream::fileStream(path("missing"), Mode::readOnly, &error), nullptr);
  EXPECT_EQ(error->code(), 260);
  write("there", "1");
  EXPECT_EQ(ArchiveByteStream::fileStream(path("there"), Mode::createNew, &error), nullptr);
  EXPECT_EQ(error->code(), 516);
  EXPECT_EQ(ArchiveStream::extractStream(path("missing"), {}, &error), nullptr);
  EXPECT_EQ(error->code(), 4);
  const auto made = ArchiveByteStream::fileStream(path("new"), Mode::createNew);
  made->write(octets("abc"));
  made->writeAt(1, octets("X"));
  made->close();
  EXPECT_EQ(read("new"), "aXc");
  const auto back = ArchiveByteStream::fileStream(path("new"), Mode::readOnly);
  EXPECT_EQ(back->length(), 3U);
  EXPECT_EQ(orlftest::readAll(*back, 2), octets("aXc"));
  EXPECT_THROW(static_cast<void>(ArchiveByteStream::fileStream(path("."), Mode::readOnly)),
               ArchiveError);
}

}  // namespace
}  // namespace ORLFoundation
