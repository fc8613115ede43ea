// What the kernel's events are told as, for a file and for the folder around it.
#include <ORLFoundation/platform/events/NodeWatcher_testing.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace ORLFoundation::internal::events {
namespace {

namespace fs = std::filesystem;
using orlftest::WatchedNode;

struct FlagCase {
  std::string name;
  std::function<void(const fs::path& folder)> act;
  std::uint64_t file;    // the flags of the file "a"
  std::uint64_t folder;  // the flags of the folder that holds it
};

const FlagCase kFlagCases[] = {
    {"Append", [](const fs::path& at) { orlftest::appendToNode(at / "a"); },
     kNodeWrite | kNodeExtend, 0},
    {"Overwrite",
     [](const fs::path& at) { std::fstream(at / "a", std::ios::in | std::ios::out) << "T"; },
     kNodeWrite, 0},
    {"Truncate", [](const fs::path& at) { fs::resize_file(at / "a", 1); }, kNodeWrite, 0},
    {"TruncateToItsSize", [](const fs::path& at) { std::ofstream(at / "a", std::ios::trunc); },
     kNodeWrite, 0},
    {"Read",
     [](const fs::path& at) {
       std::string text;
       std::ifstream(at / "a") >> text;
       EXPECT_EQ(text, "text");
     },
     0, 0},
    {"Rights", [](const fs::path& at) { fs::permissions(at / "a", fs::perms::owner_read); },
     kNodeAttribute, 0},
    {"Times",
     [](const fs::path& at) {
       const std::array<timespec, 2> times{{{1, 0}, {1, 0}}};
       ASSERT_EQ(::utimensat(AT_FDCWD, (at / "a").c_str(), times.data(), 0), 0);
     },
     kNodeAttribute, 0},
    // To the kernel the time of writing alone is set by writing.
    {"TimeOfWriting",
     [](const fs::path& at) {
       fs::last_write_time(at / "a", fs::file_time_type::clock::now() - std::chrono::hours(1));
     },
     kNodeWrite, 0},
    {"ExtendedAttribute",
     [](const fs::path& at) {
       ASSERT_EQ(::setxattr((at / "a").c_str(), "user.mark", "1", 1, 0), 0);
     },
     kNodeAttribute, 0},
    {"SecondName", [](const fs::path& at) { fs::create_hard_link(at / "a", at / "b"); }, kNodeLink,
     kNodeWrite},
    {"RightsAndSecondName",
     [](const fs::path& at) {
       fs::permissions(at / "a", fs::perms::owner_read);
       fs::create_hard_link(at / "a", at / "b");
     },
     kNodeLink | kNodeAttribute, kNodeWrite},
    {"Rename", [](const fs::path& at) { fs::rename(at / "a", at / "b"); }, kNodeRename, kNodeWrite},
    {"RenameAndBack",
     [](const fs::path& at) {
       fs::rename(at / "a", at / "b");
       fs::rename(at / "b", at / "a");
     },
     kNodeRename, kNodeWrite},
    {"MoveIntoFolder", [](const fs::path& at) { fs::rename(at / "a", at / "d/a"); }, kNodeRename,
     kNodeWrite},
    {"Delete", [](const fs::path& at) { fs::remove(at / "a"); }, kNodeDelete | kNodeLink,
     kNodeWrite},
    {"AtomicSave",
     [](const fs::path& at) {
       orlftest::appendToNode(at / "new");
       fs::rename(at / "new", at / "a");
     },
     kNodeDelete | kNodeLink, kNodeWrite},
    {"Exchange",
     [](const fs::path& at) {
       orlftest::appendToNode(at / "new");
       ASSERT_EQ(::renameat2(AT_FDCWD, (at / "a").c_str(), AT_FDCWD, (at / "new").c_str(),
                             RENAME_EXCHANGE),
                 0);
     },
     kNodeRename, kNodeWrite},
    {"WriteThenDelete",
     [](const fs::path& at) {
       fs::resize_file(at / "a", 2);
       fs::remove(at / "a");
     },
     kNodeWrite | kNodeDelete | kNodeLink, kNodeWrite},
    {"OtherFile", [](const fs::path& at) { orlftest::appendToNode(at / "other"); }, 0, kNodeWrite},
    {"FolderAround",
     [](const fs::path& at) {
       fs::rename(at, at.string() + "x");
       fs::rename(at.string() + "x", at);
     },
     0, kNodeRename},
    {"SubfolderIsMade", [](const fs::path& at) { fs::create_directory(at / "e"); }, 0,
     kNodeWrite | kNodeLink},
};

class NodeFlags : public orlftest::NodeWatcherTest, public testing::WithParamInterface<FlagCase> {};

TEST_P(NodeFlags, TellTheFileAndTheFolderThatHoldsIt) {
  WatchedNode file(watcher_, path("a"));
  WatchedNode folder(watcher_, folder_);
  GetParam().act(folder_);
  EXPECT_EQ(flagsAfterPump(file), GetParam().file);
  // Whether a folder grows by a name is the file system's matter.
  EXPECT_EQ(folder.flags() & ~std::uint64_t{kNodeExtend}, GetParam().folder);
  EXPECT_EQ(flagsAfterPump(file), 0U) << "told once";
}

INSTANTIATE_TEST_SUITE_P(Acts, NodeFlags, testing::ValuesIn(kFlagCases),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace ORLFoundation::internal::events
