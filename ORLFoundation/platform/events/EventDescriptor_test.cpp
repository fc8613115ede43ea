#include <ORLFoundation/platform/events/EventDescriptor.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <thread>

namespace ORLFoundation::internal::events {
namespace {

namespace fs = std::filesystem;

class EventDescriptor : public orlftest::TemporaryFolderTest {
 protected:
  ~EventDescriptor() override {
    for (const int descriptor : open_) ::close(descriptor);
  }
  /// As the kernel writes it.
  [[nodiscard]] std::string path(const std::string& name) const { return real_ / name; }
  int open(const std::string& path) {
    const int descriptor = openForEvents(path);
    if (descriptor >= 0) open_.push_back(descriptor);
    return descriptor;
  }

  const fs::path real_ = fs::canonical(folder_);
  std::vector<int> open_;
};

TEST_F(EventDescriptor, FollowsAFileThroughItsMoves) {
  const int file = open(write("a", "text"));
  EXPECT_EQ(pathOfDescriptor(file), path("a"));
  fs::create_directories(path("in/side"));
  fs::rename(path("a"), path("in/side/b"));
  EXPECT_EQ(pathOfDescriptor(file), path("in/side/b"));
  fs::rename(path("in"), path("out"));
  EXPECT_EQ(pathOfDescriptor(file), path("out/side/b"));
  fs::remove(path("out/side/b"));
  EXPECT_EQ(pathOfDescriptor(file), std::nullopt);
}

TEST_F(EventDescriptor, TakesNamesThatLookDeleted) {
  const int odd = open(write("a (deleted)", "odd"));
  EXPECT_EQ(pathOfDescriptor(odd), path("a (deleted)"));
  const int file = open(write("a", "text"));
  fs::remove(path("a"));
  EXPECT_EQ(pathOfDescriptor(file), std::nullopt) << "the other file's name is not its own";
  EXPECT_EQ(pathOfDescriptor(odd), path("a (deleted)"));
  write("a", "another");
  EXPECT_EQ(pathOfDescriptor(file), std::nullopt);
}

TEST_F(EventDescriptor, TellsOfTwoNamesTheOneThatWasOpened) {
  const int first = open(write("a", "text"));
  fs::create_hard_link(path("a"), path("b"));
  const int second = open(path("b"));
  EXPECT_EQ(pathOfDescriptor(first), path("a"));
  EXPECT_EQ(pathOfDescriptor(second), path("b"));
  fs::remove(path("a"));
  EXPECT_EQ(pathOfDescriptor(first), std::nullopt);
  fs::create_hard_link(path("b"), path("a"));
  EXPECT_EQ(pathOfDescriptor(first), path("a")) << "the name was given to it again";
}

TEST_F(EventDescriptor, FollowsLinksAndTakesAnyBytesAsNames) {
  write("a\xff\n", "text");
  fs::create_symlink(path("a\xff\n"), path("link"));
  EXPECT_EQ(pathOfDescriptor(open(path("link"))), path("a\xff\n"));
  EXPECT_EQ(pathOfDescriptor(open(folder_)), real_.string());
}

TEST_F(EventDescriptor, NeedsNoRightToTheContents) {
  const int file = open(write("a", "text"));
  std::array<char, 1> byte{};
  EXPECT_EQ(::read(file, byte.data(), byte.size()), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST_F(EventDescriptor, TellsWhatCannotBeOpened) {
  const auto errorOf = [&](const std::string& path) { return open(path) < 0 ? errno : 0; };
  EXPECT_EQ(errorOf(path("nothing")), ENOENT);
  EXPECT_EQ(errorOf(""), ENOENT);
  EXPECT_EQ(errorOf(write("a", "") + std::string("\0b", 2)), ENOENT);
  EXPECT_EQ(errorOf(write("file", "") + "/below"), ENOTDIR);
  EXPECT_EQ(errorOf(path(std::string(256, 'a'))), ENAMETOOLONG);
  EXPECT_EQ(errorOf("/" + std::string(4096, 'a')), ENAMETOOLONG);
  fs::create_symlink(path("round"), path("round"));
  EXPECT_EQ(errorOf(path("round")), ELOOP);
}

TEST_F(EventDescriptor, IsNotOfAFileWithoutAName) {
  const int file = open(write("a", "text"));
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  EXPECT_GE(open(link), 0);
  fs::remove(path("a"));
  EXPECT_EQ(open(link), -1);
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(EventDescriptor, IsFoundHoweverOftenItIsReplaced) {
  constexpr int kOpenings = 10'000;
  write("a", "text");
  std::atomic<bool> isEnding{false};
  std::thread replacing([&] {
    while (!isEnding) fs::rename(write("new", "text"), path("a"));
  });
  int found = 0;
  for (int opening = 0; opening < kOpenings; ++opening) {
    const int descriptor = openForEvents(path("a"));
    if (descriptor >= 0) ++found;
    ::close(descriptor);
  }
  isEnding = true;
  replacing.join();
  EXPECT_EQ(found, kOpenings);
}

TEST_F(EventDescriptor, LeavesNothingBehindWhereItWaits) {
  waitForChangesAround(write("a", "text"));
  waitForChangesAround(path("nothing/a"));
  waitForChangesAround("/a");
  waitForChangesAround("");
  EXPECT_EQ(names(), std::vector<std::string>{"a"});
}

TEST_F(EventDescriptor, HasNoPathWhereThereIsNone) {
  EXPECT_EQ(pathOfDescriptor(-1), std::nullopt);
  EXPECT_EQ(pathOfDescriptor(1'000'000), std::nullopt);
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  EXPECT_EQ(pathOfDescriptor(pipe[0]), std::nullopt);
  ::close(pipe[0]);
  ::close(pipe[1]);
}

TEST_F(EventDescriptor, HasNoPathThatIsTooLongForTheKernel) {
  const std::string name(255, 'd');
  int folder = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (int depth = 0; depth < 17; ++depth) {
    ASSERT_EQ(::mkdirat(folder, name.c_str(), 0700), 0);
    const int inside = ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ::close(folder);
    folder = inside;
  }
  EXPECT_EQ(pathOfDescriptor(folder), std::nullopt);
  ::close(folder);
}

}  // namespace
}  // namespace ORLFoundation::internal::events
