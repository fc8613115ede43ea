
#include <ORLFoundation/platform/files/NSFileHandle.h>

#include <ORLFoundation/platform/files/FileCalls_testing.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/TemporaryFolder.h>

#include <cerrno>
#include <csignal>

namespace ORLFoundation {
namespace {

class NSFileHandleOnDisk : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] std::shared_ptr<NSFileHandle> open(const std::string& name) const {
    return NSFileHandle::fileHandleForWritingAtPath(path(name));
  }
};

TEST_F(NSFileHandleOnDisk, OpensFilesThatAreThere) {
  write("a", "text");
  ::mkfifo(path("pipe").c_str(), 0600);
  ASSERT_NE(open("a"), nullptr);
  EXPECT_EQ(open("missing"), nullptr);
  EXPECT_EQ(open(""), nullptr);
  EXPECT_EQ(open("pipe"), nullptr);
  EXPECT_EQ(NSFileHandle::fileHandleForWritingAtPath(""), nullptr);
  EXPECT_EQ(NSFileHandle::fileHandleForWritingAtPath(path("a") + std::string("\0b", 2)), nullptr);
  EXPECT_EQ(read("a"), "text");
}

TEST_F(NSFileHandleOnDisk, WritesWhereItStands) {
  write("a", "0123456789");
  const auto handle = open("a");
  EXPECT_TRUE(handle->writeData("abc"));
  EXPECT_TRUE(handle->writeData("d"));
  EXPECT_EQ(handle->seekToEndOfFile(), 10U);
  EXPECT_TRUE(handle->writeData("end"));
  EXPECT_EQ(read("a"), "abcd456789end");
}

TEST_F(NSFileHandleOnDisk, AppendsBehindWhatOthersWrote) {
  write("a", "0");
  const auto one = open("a");
  const auto other = open("a");
  EXPECT_TRUE(one->appendData("1"));
  EXPECT_TRUE(other->appendData("22"));
  EXPECT_TRUE(one->appendData("3"));
  EXPECT_EQ(read("a"), "01223");
}

TEST_F(NSFileHandleOnDisk, FailsOnceItIsClosed) {
  write("a", "0");
  const auto handle = open("a");
  handle->closeFile();
  handle->closeFile();
  EXPECT_FALSE(handle->appendData("1"));
  EXPECT_FALSE(handle->writeData("1"));
  EXPECT_EQ(handle->seekToEndOfFile(), std::nullopt);
  EXPECT_EQ(read("a"), "0");
}

TEST_F(NSFileHandleOnDisk, LeavesTheFileWhereNothingIsTaken) {
  const std::string file = write("a", "entry");
  const auto handle = NSFileHandle::fileHandleForWritingAtPath(
      file, callsThatRefuse(internal::files::FileCall::Write, ENOSPC));
  EXPECT_FALSE(handle->appendData("more"));
  EXPECT_EQ(read("a"), "entry");
}

TEST_F(NSFileHandleOnDisk, WritesNothingWithoutTheLock) {
  const std::string file = write("a", "entry");
  const auto handle = NSFileHandle::fileHandleForWritingAtPath(
      file, callsThatRefuse(internal::files::FileCall::Lock, ENOLCK));
  EXPECT_FALSE(handle->appendData("more"));
  EXPECT_EQ(read("a"), "entry");
}

TEST_F(NSFileHandleOnDisk, CutsBackWhatWasTakenInPart) {
  const std::string file = write("a", "entry");
  const std::string told = orlftest::inChild([&]() -> std::string {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit most{7, 7};
    if (::setrlimit(RLIMIT_FSIZE, &most) != 0) return "no limit";
    const auto handle = NSFileHandle::fileHandleForWritingAtPath(file);
    if (handle->appendData("more")) return "all was taken";
    return handle->appendData("+2") ? "" : "what fits was not taken";
  });
  EXPECT_EQ(told, "");
  EXPECT_EQ(read("a"), "entry+2");
}

TEST(NSFileHandle, HasNoEndWhereThereAreNoPlaces) {
  const auto handle = NSFileHandle::fileHandleForWritingAtPath("/dev/full");
  ASSERT_NE(handle, nullptr);
  EXPECT_FALSE(handle->appendData("text"));
}

}  // namespace
}  // namespace ORLFoundation
