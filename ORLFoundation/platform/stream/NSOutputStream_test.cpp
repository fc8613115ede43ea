#include <ORLFoundation/platform/stream/NSOutputStream.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/NSOutputStream_testing.h>
#include <ORLFoundation/platform/stream/NSStream_testing.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/Bytes.h>
#include <tests/support/Files.h>
#include <tests/support/TemporaryFolder.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::spanOf;

std::optional<std::string> written(const NSOutputStream& stream) {
  const auto data = stream.propertyForKey(NSStreamDataWrittenToMemoryStreamKey).as<NSData>();
  return data ? std::optional(std::string(data->text())) : std::nullopt;
}

TEST(NSOutputStream, KeepsInMemoryWhatIsWritten) {
  const auto stream = NSOutputStream::initToMemory();
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusNotOpen);
  EXPECT_FALSE(stream->hasSpaceAvailable());
  EXPECT_EQ(written(*stream), "");
  stream->open();
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusOpen);
  EXPECT_TRUE(stream->hasSpaceAvailable());
  EXPECT_EQ(stream->write(spanOf("one")), 3);
  EXPECT_EQ(stream->write({}), 0);
  EXPECT_EQ(stream->write(spanOf(std::string_view("\0two", 4))), 4);
  EXPECT_EQ(written(*stream), std::string("one\0two", 7));
  EXPECT_EQ(stream->streamError(), nullptr);
}

TEST(NSOutputStream, GivesItsBytesAfterItIsClosedToo) {
  const auto stream = NSOutputStream::initToMemory();
  stream->open();
  stream->write(spanOf("one"));
  stream->close();
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
  EXPECT_FALSE(stream->hasSpaceAvailable());
  EXPECT_EQ(stream->write(spanOf("two")), -1);
  EXPECT_EQ(written(*stream), "one");
}

TEST(NSOutputStream, HasNoOtherProperty) {
  const auto stream = NSOutputStream::initToMemory();
  EXPECT_TRUE(stream->propertyForKey(NSStreamFileCurrentOffsetKey).isNil());
  EXPECT_TRUE(stream->propertyForKey("").isNil());
  const auto file = NSOutputStream::initToFileAtPath("unused", false);
  EXPECT_TRUE(file->propertyForKey(NSStreamDataWrittenToMemoryStreamKey).isNil());
  EXPECT_TRUE(file->propertyForKey(NSStreamFileCurrentOffsetKey).isNil());
}

TEST(NSOutputStream, RefusesBytesBeforeItIsOpenAndCanStillBeOpened) {
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.path() / "file";
  for (const auto& stream :
       {NSOutputStream::initToMemory(), NSOutputStream::initToFileAtPath(path, false)}) {
    EXPECT_EQ(stream->write(spanOf("lost")), -1);
    EXPECT_EQ(orlftest::posixCodeOf(*stream), EBADF);
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusNotOpen);
    stream->open();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusOpen);
    EXPECT_EQ(stream->streamError(), nullptr);
    EXPECT_EQ(stream->write(spanOf("kept")), 4);
  }
  EXPECT_EQ(orlftest::contentOf(path), "kept");
}

TEST(NSOutputStream, StaysClosed) {
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.path() / "file";
  for (const auto& stream :
       {NSOutputStream::initToMemory(), NSOutputStream::initToFileAtPath(path, false)}) {
    stream->close();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusNotOpen);
    stream->open();
    stream->close();
    stream->close();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
    stream->open();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
    EXPECT_EQ(stream->write(spanOf("late")), -1);
    EXPECT_EQ(orlftest::posixCodeOf(*stream), EBADF);
  }
  EXPECT_EQ(orlftest::contentOf(path), "");
}

TEST(NSOutputStream, EmptiesAFileOrAppendsToIt) {
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.path() / "file";
  struct Step {
    bool append;
    std::string_view text, contents;
  };
  const Step steps[] = {
      {true, "one", "one"}, {true, "two", "onetwo"}, {false, "x", "x"}, {true, "y", "xy"}};
  for (const Step& step : steps) {
    const auto stream = NSOutputStream::initToFileAtPath(path, step.append);
    stream->open();
    EXPECT_EQ(stream->write(spanOf(step.text)), static_cast<NSInteger>(step.text.size()));
    EXPECT_EQ(stream->propertyForKey(NSStreamFileCurrentOffsetKey).as<NSInteger>(),
              static_cast<NSInteger>(step.contents.size()));
    stream->close();
    EXPECT_EQ(orlftest::contentOf(path), step.contents);
  }
}

TEST(NSOutputStream, TouchesNoFileBeforeItIsOpened) {
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.path() / "file";
  const auto stream = NSOutputStream::initToFileAtPath(path, false);
  EXPECT_FALSE(std::filesystem::exists(path));
  stream->open();
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST(NSOutputStream, EndsWithAnErrorWhereAFileCannotBeOpened) {
  const orlftest::TemporaryFolder folder;
  struct Row {
    std::string path;
    int code;
  };
  const Row rows[] = {{folder.path() / "none" / "file", ENOENT},
                      {folder.path(), EISDIR},
                      {"", ENOENT},
                      {folder.path().string() + std::string("/a\0b", 4), EINVAL}};
  for (const Row& row : rows) {
    const auto stream = NSOutputStream::initToFileAtPath(row.path, false);
    stream->open();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusError) << row.path;
    EXPECT_EQ(orlftest::posixCodeOf(*stream), row.code) << row.path;
    EXPECT_FALSE(stream->streamError()->localizedDescription().empty());
    EXPECT_EQ(stream->write(spanOf("x")), -1);
    stream->open();
    stream->close();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusError);
  }
}

TEST(NSOutputStream, EndsWithAnErrorWhereTheDiskIsFull) {
  const auto stream = NSOutputStream::initToFileAtPath("/dev/full", true);
  stream->open();
  ASSERT_EQ(stream->streamStatus(), NSStreamStatusOpen);
  EXPECT_EQ(stream->write(spanOf("x")), -1);
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusError);
  EXPECT_EQ(orlftest::posixCodeOf(*stream), ENOSPC);
  const id path = stream->streamError()->userInfo()->objectForKey(NSFilePathErrorKey);
  EXPECT_EQ(path.as<std::string>(), "/dev/full");
}

TEST(NSOutputStream, OpensAndClosesAStreamOfTheCaller) {
  const auto stream = std::make_shared<orlftest::ScriptedOutputStream>();
  stream->open();
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusOpen);
  EXPECT_TRUE(stream->hasSpaceAvailable());
  EXPECT_EQ(stream->write(spanOf("abc")), 3);
  EXPECT_EQ(stream->calls_, std::vector<std::string>{"abc"});
  EXPECT_TRUE(stream->propertyForKey(NSStreamDataWrittenToMemoryStreamKey).isNil());
  stream->close();
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
}

}  // namespace
}  // namespace ORLFoundation
