#include <ORLFoundation/platform/stream/NSInputStream.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/NSStream_testing.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <cerrno>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

class InputStreams : public orlftest::TemporaryFolderTest {
 protected:
  /// One of each kind over the same bytes.
  [[nodiscard]] std::vector<std::shared_ptr<NSInputStream>> over(std::string_view bytes) const {
    const std::string file = write("bytes", bytes);
    return {NSInputStream::initWithData(NSData(bytes)), NSInputStream::initWithFileAtPath(file),
            NSInputStream::initWithURL(NSURL::fileURLWithPath(file))};
  }
};

/// The bytes of one read, or "failed".
std::string take(NSInputStream& stream, std::size_t most) {
  std::string text(most, '?');
  const NSInteger count = stream.read({reinterpret_cast<std::uint8_t*>(text.data()), most});
  return count < 0 ? "failed" : text.substr(0, static_cast<std::size_t>(count));
}

TEST_F(InputStreams, GiveTheirBytesInPieces) {
  for (const auto& stream : over(std::string_view("ab\0cde", 6))) {
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusNotOpen);
    EXPECT_FALSE(stream->hasBytesAvailable());
    stream->open();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusOpen);
    EXPECT_TRUE(stream->hasBytesAvailable());
    EXPECT_EQ(take(*stream, 4), std::string("ab\0c", 4));
    EXPECT_EQ(take(*stream, 0), "");
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusOpen);
    EXPECT_EQ(take(*stream, 4), "de");
    EXPECT_EQ(take(*stream, 4), "");
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusAtEnd);
    EXPECT_FALSE(stream->hasBytesAvailable());
    EXPECT_EQ(take(*stream, 4), "");
    stream->close();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
    EXPECT_EQ(stream->streamError(), nullptr);
  }
}

TEST_F(InputStreams, FailWhileTheyAreNotOpen) {
  for (const auto& stream : over("abc")) {
    EXPECT_EQ(take(*stream, 3), "failed");
    EXPECT_EQ(orlftest::posixCodeOf(*stream), EBADF);
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusNotOpen);
    stream->open();
    EXPECT_EQ(stream->streamError(), nullptr);
    EXPECT_EQ(take(*stream, 3), "abc");
    stream->close();
    EXPECT_EQ(take(*stream, 3), "failed");
    EXPECT_EQ(orlftest::posixCodeOf(*stream), EBADF);
    stream->open();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
    EXPECT_EQ(take(*stream, 3), "failed");
  }
}

TEST_F(InputStreams, OpenAndCloseTwiceAsOnce) {
  for (const auto& stream : over("abc")) {
    stream->close();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusNotOpen);
    stream->open();
    EXPECT_EQ(take(*stream, 1), "a");
    stream->open();
    EXPECT_EQ(take(*stream, 1), "b");
    stream->close();
    stream->close();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusClosed);
  }
}

TEST_F(InputStreams, OfFilesTellWhyTheyDoNotOpen) {
  struct Row {
    std::string path;
    int code;
  };
  const Row rows[] = {{path("absent"), ENOENT},
                      {write("file", "") + "/below", ENOTDIR},
                      {std::string("file\0more", 9), EINVAL},
                      {"", ENOENT}};
  for (const Row& row : rows) {
    const auto stream = NSInputStream::initWithFileAtPath(row.path);
    EXPECT_EQ(stream->streamError(), nullptr) << row.path;
    stream->open();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusError) << row.path;
    EXPECT_EQ(orlftest::posixCodeOf(*stream), row.code) << row.path;
    EXPECT_FALSE(stream->hasBytesAvailable()) << row.path;
    stream->close();
    EXPECT_EQ(stream->streamStatus(), NSStreamStatusError) << row.path;
  }
}

TEST_F(InputStreams, OfFoldersEndWithTheFirstRead) {
  const auto stream = NSInputStream::initWithFileAtPath(folder_.string());
  stream->open();
  EXPECT_EQ(take(*stream, 8), "failed");
  EXPECT_EQ(orlftest::posixCodeOf(*stream), EISDIR);
  EXPECT_EQ(stream->streamStatus(), NSStreamStatusError);
}

TEST_F(InputStreams, AreThereForAddressesOfFilesAlone) {
  EXPECT_EQ(NSInputStream::initWithURL(*NSURL::URLWithString("https://example.com/a.xml")),
            nullptr);
}

TEST_F(InputStreams, HaveNoProperties) {
  for (const auto& stream : over("")) EXPECT_TRUE(stream->propertyForKey("any").isNil());
}

TEST_F(InputStreams, OfCallersOverrideTheRead) {
  class Letters final : public NSInputStream {
   public:
    NSInteger read(std::span<std::uint8_t> buffer) override {
      if (buffer.empty() || next_ > 'c') return 0;
      buffer[0] = next_++;
      return 1;
    }

   private:
    std::uint8_t next_ = 'a';
  };
  Letters letters;
  letters.open();
  EXPECT_EQ(take(letters, 9), "a");
  EXPECT_EQ(take(letters, 9), "b");
  EXPECT_TRUE(letters.hasBytesAvailable());
  EXPECT_EQ(letters.className(), "NSInputStream");
}

}  // namespace
}  // namespace ORLFoundation
