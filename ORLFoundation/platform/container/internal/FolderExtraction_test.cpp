#include <ORLFoundation/platform/container/internal/FolderExtraction.h>

#include <ORLFoundation/platform/container/Archive_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::archiveErrorOf;
using orlftest::archiveOf;
using orlftest::Bytes;
using testing::ElementsAre;
using Entry = orlftest::ArchiveEntry;
using Field = ArchiveHeader::Field;

class FoldersOfArchives : public orlftest::ArchiveFolderTest {};

TEST_F(FoldersOfArchives, KeepModesAndLayDownRightsToRunAsOthers) {
  const Bytes archive =
      archiveOf({Entry::folder("", 01750), Entry::folder("d", 0500), Entry::file("d/f", "1", 06741),
                 Entry::file("g", "", 0), Entry::folder("d/e", 03777)});
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

TEST_F(FoldersOfArchives, GiveFilesAwayOnRequestAlone) {
  if (::geteuid() != 0) return;  // only the superuser may
  std::vector<Entry> entries{Entry::folder("d"), Entry::file("d/f", "1", 04755),
                             Entry::link("d/l", "f")};
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

TEST_F(FoldersOfArchives, RefuseNamesThatLeadOut) {
  for (const std::string& name : std::vector<std::string>{
           "/etc/x", "..", "../x", "a/../b", "a/..", "./a", "a/.", "a//b", "a/", "//", "..//x"})
    for (const Entry& entry : {Entry::file(name, "1"), Entry::folder(name), Entry::link(name, "x")})
      EXPECT_EQ(codeOf(archiveOf({entry})), ArchiveErrorUnsafeName) << name;
  EXPECT_EQ(codeOf(archiveOf({Entry::file(std::string("a\0b", 3), "1")})), ArchiveErrorUnsafeName);
  EXPECT_EQ(codeOf(archiveOf({Entry::file("", "1")})), ArchiveErrorUnsafeName);
  EXPECT_EQ(codeOf(archiveOf({Entry::link("", "x")})), ArchiveErrorUnsafeName);
  EXPECT_EQ(codeOf(archiveOf({Entry::file(std::string(5000, 'a'), "1")})), ArchiveErrorUnsafeName);
  EXPECT_THAT(names(), ElementsAre("to"));
}

TEST_F(FoldersOfArchives, RefuseNamesThatComeTwice) {
  const std::vector<std::vector<Entry>> archives{
      {Entry::file("a", "1"), Entry::file("a", "2")},
      {Entry::folder("a"), Entry::folder("a")},
      {Entry::folder("a"), Entry::file("a", "1")},
      {Entry::file("a", "1"), Entry::folder("a")},
      {Entry::link("a", "x"), Entry::link("a", "y")},
      {Entry::file("a", "1"), Entry::link("a", "x")},
      {Entry::link("a", "x"), Entry::file("a", "1")},
      {Entry::folder(""), Entry::folder("")},
      {Entry::link("a", "x"), Entry::folder("a")},
      {Entry::file("d/a", "1"), Entry::folder("d"), Entry::folder("d")}};
  for (std::size_t i = 0; i < archives.size(); ++i)
    EXPECT_EQ(codeOf(archiveOf(archives[i])), ArchiveErrorUnsafeName) << i;
}

TEST_F(FoldersOfArchives, NeverWriteThroughALink) {
  fs::create_directory(folder_ / "outside");
  for (const std::string& target : {path("outside"), std::string("../outside"), std::string(".")}) {
    const NSInteger code = codeOf(archiveOf({Entry::link("l", target), Entry::file("l/x", "1")}));
    EXPECT_EQ(code, ArchiveErrorUnsafeName) << target;
    EXPECT_THAT(names("outside"), ElementsAre());
  }
  // A link that leads out stays as it is and is followed by nothing.
  extract(archiveOf({Entry::folder(""), Entry::link("l", "../outside"), Entry::folder("d"),
                     Entry::link("d/m", "/etc/passwd")}));
  EXPECT_EQ(fs::read_symlink(folder_ / "to/l"), "../outside");
  EXPECT_EQ(fs::read_symlink(folder_ / "to/d/m"), "/etc/passwd");
  EXPECT_THAT(names("outside"), ElementsAre());
}

TEST_F(FoldersOfArchives, MakeFoldersThatNoEntryTellsOf) {
  extract(
      archiveOf({Entry::file("a/b/c", "1"), Entry::folder("a", 0700), Entry::link("x/y", "z")}));
  EXPECT_EQ(read("to/a/b/c"), "1");
  EXPECT_EQ(modeOf("to/a"), 0700U);
  EXPECT_EQ(modeOf("to/a/b"), 0755U);
  EXPECT_TRUE(fs::is_symlink(folder_ / "to/x/y"));
}

TEST_F(FoldersOfArchives, PassOverFieldsAndBlobsThatTheyDoNotKnow) {
  Entry entry = Entry::file("a", "12345");
  entry.fields.push_back(Field::blob("XAT", 3));
  entry.fields.push_back(Field::flag("YOP"));
  entry.fields.push_back(Field::blob("DAT", 2));
  entry.fields.insert(entry.fields.begin(), Field::blob("ACL", 2));
  entry.data = "zz12345abc99";
  extract(archiveOf({{{Entry::type('M'), Field::string("PAT", ""), Field::blob("YAF", 3)}, "a,b"},
                     entry,
                     Entry::file("b", "after")}));
  EXPECT_EQ(read("to/a"), "12345");
  EXPECT_EQ(read("to/b"), "after");
}

TEST_F(FoldersOfArchives, RefuseEntriesThatAreNone) {
  const std::vector<std::pair<Entry, NSInteger>> rows{
      {{{Entry::type('F')}, ""}, ArchiveErrorDamaged},
      {{{Field::string("PAT", "a")}, ""}, ArchiveErrorDamaged},
      {{{Field::string("TYP", "F"), Field::string("PAT", "a")}, ""}, ArchiveErrorDamaged},
      {{{Entry::type('L'), Field::string("PAT", "a")}, ""}, ArchiveErrorDamaged},
      {Entry::link("a", ""), ArchiveErrorDamaged},
      {Entry::link("a", std::string("b\0c", 3)), ArchiveErrorDamaged},
      {{{Entry::type('F'), Field::string("PAT", "a"), Field::uint("SIZ", 5)}, ""},
       ArchiveErrorUnsupported},
      {{{Entry::type('F'), Field::string("PAT", "a"), Field::blob("DAT", 5)}, "1234"},
       ArchiveErrorDamaged},
      {{{Entry::type('F'), Field::string("PAT", "a"), Field::uint("SIZ", 0)}, ""}, 0},
      {{{Entry::type('F'), Field::string("PAT", "a")}, ""}, 0},
  };
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_EQ(codeOf(archiveOf({rows[i].first})), rows[i].second) << i;
}

TEST_F(FoldersOfArchives, BoundEntriesAndBytes) {
  const Bytes archive =
      archiveOf({Entry::folder(""), Entry::file("a", "123"), Entry::file("b", "45")});
  EXPECT_EQ(codeOf(archive, {.mostEntries = 3, .mostBytes = 5}), 0);
  EXPECT_EQ(codeOf(archive, {.mostEntries = 2}), ArchiveErrorTooLarge);
  EXPECT_EQ(codeOf(archive, {.mostBytes = 4}), ArchiveErrorTooLarge);
  const Entry huge{{Entry::type('F'), Field::string("PAT", "a"), Field::blob("DAT", UINT64_MAX),
                    Field::blob("XAT", UINT64_MAX)},
                   "1"};
  EXPECT_EQ(codeOf(archiveOf({huge})), ArchiveErrorTooLarge);
}

}  // namespace
}  // namespace ORLFoundation
