#include <ORLFoundation/platform/files/ItemCopy.h>

#include <ORLFoundation/platform/files/FileCalls_testing.h>
#include <ORLFoundation/platform/files/ItemChange.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/Files.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using namespace internal::files;
using testing::ElementsAre;
using testing::IsEmpty;

class Copies : public orlftest::TemporaryFolderTest {
 protected:
  /// The failure of a copy within the folder.
  FileOutcome copy(const std::string& from, const std::string& to,
                   const std::shared_ptr<FileCalls>& calls = FileCalls::system()) {
    HeldFolder source(*calls, folder_), target(*calls, folder_);
    return ItemCopy(source, target, CopyToDisk::No).copy(from, to);
  }
  [[nodiscard]] struct stat statusOf(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(::lstat(path(name).c_str(), &status), 0) << name;
    return status;
  }
  /// Changed in 2001 and read in 2002, to the nanosecond.
  void setOldTimes(const std::string& name) const {
    const std::array<timespec, 2> times{timespec{1012345678, 123456789},
                                        timespec{987654321, 987654321}};
    EXPECT_EQ(::utimensat(AT_FDCWD, path(name).c_str(), times.data(), AT_SYMLINK_NOFOLLOW), 0);
  }
  void expectOldTimes(const std::string& name) const {
    const struct stat status = statusOf(name);
    EXPECT_EQ(status.st_mtim.tv_sec, 987654321) << name;
    EXPECT_EQ(status.st_mtim.tv_nsec, 987654321) << name;
  }
};

TEST_F(Copies, OfFilesKeepBytesModeAndTimes) {
  write("a", "some bytes");
  for (const mode_t mode : {0644U, 0600U, 0444U, 0755U, 02755U, 04711U, 0000U}) {
    ASSERT_EQ(::chmod(path("a").c_str(), mode), 0);
    setOldTimes("a");
    EXPECT_FALSE(copy("a", "b"));
    EXPECT_EQ(statusOf("b").st_mode & 07777, mode);
    expectOldTimes("b");
    EXPECT_EQ(statusOf("b").st_atim.tv_sec, 1012345678);
    ::chmod(path("b").c_str(), 0600);
    EXPECT_EQ(read("b"), "some bytes");
    fs::remove(path("b"));
  }
}

TEST_F(Copies, OfLargeAndOddSizesAreWhole) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{131071},
                                 std::size_t{131073}, std::size_t{3} << 20U}) {
    std::string bytes(size, 'x');
    for (std::size_t i = 0; i < size; i += 997) bytes[i] = static_cast<char>(i % 251);
    write("a", bytes);
    EXPECT_FALSE(copy("a", "b"));
    EXPECT_EQ(read("b"), bytes) << size;
    fs::remove(path("b"));
    // Where the kernel does not copy, bytes are read and written.
    for (const int number : {EXDEV, EINVAL, ENOSYS}) {
      EXPECT_FALSE(copy("a", "b", callsThatRefuse(FileCall::CopyRange, number)));
      EXPECT_EQ(read("b"), bytes) << size;
      fs::remove(path("b"));
    }
  }
}

TEST_F(Copies, KeepHoles) {
  constexpr off_t kSize = 8 << 20;
  write("a", "begin");
  const int file = ::open(path("a").c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(::pwrite(file, "middle", 6, 4 << 20), 6);
  ASSERT_EQ(::ftruncate(file, kSize), 0);
  ::close(file);
  ASSERT_LT(statusOf("a").st_blocks * 512, kSize / 8) << "the file system keeps no holes";
  EXPECT_FALSE(copy("a", "b"));
  EXPECT_EQ(read("b"), read("a"));
  EXPECT_LE(statusOf("b").st_blocks, statusOf("a").st_blocks);
}

TEST_F(Copies, KeepExtendedAttributes) {
  write("a", "x");
  fs::create_directory(path("f"));
  const std::string value("with a zero\0 in it", 18);
  for (const char* name : {"a", "f"}) {
    ASSERT_EQ(::setxattr(path(name).c_str(), "user.orlf", value.data(), value.size(), 0), 0);
    ASSERT_EQ(::setxattr(path(name).c_str(), "user.empty", "", 0, 0), 0);
    EXPECT_FALSE(copy(name, std::string(name) + "2"));
    std::array<char, 64> found{};
    const std::string copied = path(std::string(name) + "2");
    EXPECT_EQ(::getxattr(copied.c_str(), "user.orlf", found.data(), found.size()), 18);
    EXPECT_EQ(std::string(found.data(), 18), value);
    EXPECT_EQ(::getxattr(copied.c_str(), "user.empty", found.data(), found.size()), 0);
  }
  // An attribute that cannot be kept is a failure, not a loss.
  const auto failure = copy("a", "a3", callsThatRefuse(FileCall::SetAttribute, EOPNOTSUPP));
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number, EOPNOTSUPP);
}

TEST_F(Copies, OfLinksAreLinks) {
  fs::create_symlink("../no/where", path("l"));
  setOldTimes("l");
  EXPECT_FALSE(copy("l", "m"));
  EXPECT_EQ(fs::read_symlink(path("m")), "../no/where");
  expectOldTimes("m");
}

TEST_F(Copies, OfFoldersAreWholeAndKeepTheirTimes) {
  write("f/a", "1");
  write("f/deep/er/b", "2");
  fs::create_directory(path("f/empty"));
  fs::create_symlink("a", path("f/l"));
  fs::create_hard_link(path("f/a"), path("f/same"));
  ASSERT_EQ(::chmod(path("f/deep").c_str(), 0511), 0);
  for (const char* name : {"f/deep/er", "f/deep", "f"}) setOldTimes(name);
  EXPECT_FALSE(copy("f", "g"));
  EXPECT_THAT(names("g"), ElementsAre("a", "deep", "empty", "l", "same"));
  EXPECT_EQ(read("g/deep/er/b"), "2");
  EXPECT_EQ(fs::read_symlink(path("g/l")), "a");
  EXPECT_EQ(statusOf("g/deep").st_mode & 07777, 0511U);
  EXPECT_NE(statusOf("g/a").st_ino, statusOf("g/same").st_ino);
  for (const char* name : {"g/deep/er", "g/deep", "g"}) expectOldTimes(name);
  ::chmod(path("f/deep").c_str(), 0700);
  ::chmod(path("g/deep").c_str(), 0700);
}

TEST_F(Copies, NeverOpenPipesSocketsAndDevices) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(path("socket").size(), sizeof address.sun_path);
  std::strncpy(address.sun_path, path("socket").c_str(), sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ::close(socket);
  std::vector<std::string> items{"pipe", "socket"};
  // Only the superuser makes devices.
  if (::mknod(path("device").c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0)
    items.emplace_back("device");
  std::vector<std::string> opened;
  const auto calls = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view name) {
    if (call == FileCall::Open) opened.emplace_back(name);
    return true;
  });
  for (const std::string& item : items) {
    opened.clear();
    const auto failure = copy(item, item + "2", calls);
    ASSERT_TRUE(failure) << item;
    EXPECT_EQ(failure->number, EOPNOTSUPP) << item;
    EXPECT_THAT(opened, testing::Not(testing::Contains(item)));
    EXPECT_FALSE(fs::exists(fs::symlink_status(path(item + "2"))));
  }
}

/// A pipe that takes a file's place between the look and the opening holds nobody up.
TEST_F(Copies, AreToldOfAFileThatTurnsIntoAPipe) {
  write("a", "x");
  const auto calls = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view name) {
    if (call == FileCall::Open && name == "a") {
      fs::remove(path("a"));
      static_cast<void>(::mkfifo(path("a").c_str(), 0600));
    }
    return true;
  });
  EXPECT_TRUE(copy("a", "b", calls));
  EXPECT_FALSE(fs::exists(path("b")));
}

/// Calls of which one, of a kind and a name, fails with an errno each time.
std::shared_ptr<FileCalls> callsThatRefuseAt(FileCall refused, const char* at, int number) {
  return std::make_shared<FileCallsOfTest>([=](FileCall call, std::string_view name) {
    if (call != refused || name != at) return true;
    errno = number;
    return false;
  });
}

TEST_F(Copies, TellWhatTheyFailedWith) {
  write("f/a", "x");
  auto failure = copy("f", "g", callsThatRefuseAt(FileCall::Open, "g", EMFILE));
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number, EMFILE);
  EXPECT_EQ(failure->path, path("g"));
  fs::resize_file(path("f/a"), 1 << 20);  // with a hole
  failure = copy("f/a", "h", callsThatRefuse(FileCall::Seek, EIO));
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number, EIO);
  EXPECT_EQ(failure->path, path("f/a"));
}

TEST_F(Copies, OfAFileThatIsCutMeanwhileEnd) {
  write("a", std::string(3000, 'x'));
  const auto calls = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view) {
    if (call == FileCall::Read) fs::resize_file(path("a"), 1000);
    return true;
  });
  EXPECT_FALSE(copy("a", "b", calls));
  EXPECT_EQ(read("b"), std::string(1000, 'x'));
}

TEST_F(Copies, WriteOverNothing) {
  write("a", "1");
  write("b", "2");
  const auto failure = copy("a", "b");
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number, EEXIST);
  EXPECT_EQ(failure->work, FileWork::Write);
  EXPECT_EQ(read("b"), "2");
}

TEST_F(Copies, OfOthersFilesLoseTheRightsOfIdentity) {
  write("a", "x");
  ASSERT_EQ(::chmod(path("a").c_str(), 06755), 0);
  EXPECT_EQ(
      orlftest::asOrdinaryUser(folder_,
                               [&]() -> std::string {
                                 // A set-user file of another owner, as far as calls tell.
                                 const auto calls = callsThatRefuse(FileCall::SetOwner, EPERM);
                                 if (::chmod(path("a").c_str(), 06755) != 0) return "chmod";
                                 if (copy("a", "own", calls)) return "not copied";
                                 return (statusOf("own").st_mode & 07777) == 06755 ? "" : "lost";
                               }),
      "");
  if (::geteuid() != 0) return;  // only the superuser finds files of others here
  const auto calls = callsThatRefuse(FileCall::SetOwner, EPERM);
  ASSERT_EQ(::chmod(path("a").c_str(), 06755), 0);
  EXPECT_FALSE(copy("a", "b", calls));
  EXPECT_EQ(statusOf("b").st_mode & 07777, 0755U);
  EXPECT_FALSE(copy("a", "c"));
  EXPECT_EQ(statusOf("c").st_mode & 07777, 06755U);
  EXPECT_EQ(statusOf("c").st_uid, orlftest::kNobody);
}

class Changes : public Copies {
 protected:
  HeldFolder root_{*FileCalls::system(), folder_};
};

TEST_F(Changes, PutAnItemInPlaceOfEveryKind) {
  struct {
    const char *from, *to;
  } const rows[] = {{"file", "file"},    {"file", "folder"},  {"file", "link"},
                    {"file", "nothing"}, {"folder", "file"},  {"folder", "folder"},
                    {"folder", "link"},  {"folder", "empty"}, {"folder", "nothing"},
                    {"link", "file"},    {"link", "folder"},  {"link", "link"},
                    {"link", "nothing"}};
  const auto make = [&](const std::string& name, const std::string& kind) {
    if (kind == "file") write(name, name);
    if (kind == "folder") write(name + "/in", name);
    if (kind == "empty") fs::create_directory(path(name));
    if (kind == "link") fs::create_symlink(name + " target", path(name));
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.from) + " over " + row.to);
    make("x", row.from);
    make("y", row.to);
    const ino_t inode = statusOf("x").st_ino;
    EXPECT_FALSE(putInPlace(root_, "x", root_, "y"));
    EXPECT_EQ(statusOf("y").st_ino, inode);
    // What stood there is gone, or stands where the new one was.
    static_cast<void>(removeItem(root_, "x", RemoveByForce::Yes));
    EXPECT_THAT(names(), ElementsAre("y"));
    EXPECT_FALSE(removeItem(root_, "y", RemoveByForce::No));
  }
}

TEST_F(Changes, AreNotHalfDoneWhereNamesCannotBeExchanged) {
  write("x", "new");
  write("y/in", "old");
  int renames = 0;
  const auto calls = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view) {
    errno = EINVAL;
    return call != FileCall::Rename || ++renames != 2;
  });
  HeldFolder root(*calls, folder_);
  const auto failure = putInPlace(root, "x", root, "y");
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->number, EINVAL);
  EXPECT_EQ(read("x"), "new");
  EXPECT_EQ(read("y/in"), "old");
}

TEST_F(Changes, RemoveLinksAndNotWhatTheyLeadTo) {
  write("kept/a", "x");
  write("f/a", "x");
  fs::create_directory_symlink("../kept", path("f/l"));
  fs::create_directory_symlink("kept", path("m"));
  EXPECT_FALSE(removeItem(root_, "f", RemoveByForce::Yes));
  EXPECT_FALSE(removeItem(root_, "m", RemoveByForce::Yes));
  EXPECT_EQ(read("kept/a"), "x");
  EXPECT_THAT(names(), ElementsAre("kept"));
}

TEST_F(Changes, RemoveTreesDeeperThanPathsMayBe) {
  const std::string name(250, 'd');
  ASSERT_EQ(::mkdir(path("f").c_str(), 0700), 0);
  int at = ::open(path("f").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  for (int level = 0; level < 40; ++level) {
    ASSERT_EQ(::mkdirat(at, name.c_str(), 0700), 0);
    const int next = ::openat(at, name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    ::close(at);
    at = next;
  }
  ::close(at);
  EXPECT_FALSE(removeItem(root_, "f", RemoveByForce::Yes));
  EXPECT_THAT(names(), IsEmpty());
}

}  // namespace
}  // namespace ORLFoundation
