#include "interchange/record_file.h"

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/failure.h"

namespace orlftool {
namespace {

using ORLFoundation::NSOutputStream;

class RecordFile : public orlftest::TemporaryFolderTest {
 protected:
  static void put(NSOutputStream& stream, std::string_view text) {
    stream.write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
  }
};

TEST_F(RecordFile, HoldsWhatWasWritten) {
  const std::string file = write("out.qif", "old");
  writeRecordFile(file, [](const std::shared_ptr<NSOutputStream>& stream) {
    EXPECT_EQ(stream->streamStatus(), ORLFoundation::NSStreamStatusOpen);
    put(*stream, "one\n");
    put(*stream, std::string(100'000, 'x'));
  });
  EXPECT_EQ(read("out.qif"), "one\n" + std::string(100'000, 'x'));
  EXPECT_EQ(names(), std::vector<std::string>{"out.qif"});
}

TEST_F(RecordFile, StaysAsItWasWhereTheJobFails) {
  const std::string file = write("out.qif", "old");
  EXPECT_THROW(writeRecordFile(file,
                               [](const std::shared_ptr<NSOutputStream>& stream) {
                                 put(*stream, "new");
                                 throw JobFailure("no");
                               }),
               JobFailure);
  EXPECT_EQ(read("out.qif"), "old");
  EXPECT_EQ(names(), std::vector<std::string>{"out.qif"});
}

TEST_F(RecordFile, FailsWhereThereIsNoFolder) {
  EXPECT_THROW(writeRecordFile(path("none/out.qif"), [](const auto&) {}), JobFailure);
}

TEST_F(RecordFile, HasAName) {
  EXPECT_THROW(writeRecordFile("-", [](const auto&) { FAIL(); }), UsageFailure);
}

TEST_F(RecordFile, BeginsWithOneByteOrderMark) {
  using namespace ORLFoundation;
  const std::pair<NSUInteger, std::string_view> marks[] = {{NSUTF16StringEncoding, "\xFF\xFE"},
                                                           {NSUTF16LittleEndianStringEncoding, ""},
                                                           {NSUTF16BigEndianStringEncoding, ""},
                                                           {NSUTF8StringEncoding, ""}};
  for (const auto& [encoding, mark] : marks) {
    const auto stream = NSOutputStream::initToMemory();
    stream->open();
    EXPECT_EQ(beginText(*stream, encoding),
              encoding == NSUTF16StringEncoding ? NSUTF16LittleEndianStringEncoding : encoding);
    const id bytes = stream->propertyForKey(NSStreamDataWrittenToMemoryStreamKey);
    EXPECT_EQ(bytes.as<NSData>().value().text(), mark) << encoding;
  }
}

}  // namespace
}  // namespace orlftool
