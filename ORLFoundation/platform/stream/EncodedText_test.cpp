#include <ORLFoundation/platform/stream/EncodedText.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/stream/NSOutputStream_testing.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ORLFoundation::internal::stream {
namespace {

using Scripted = orlftest::ScriptedOutputStream;

TEST(EncodedText, IsWrittenInOneCall) {
  Scripted stream(5);
  std::shared_ptr<const NSError> error;
  EXPECT_TRUE(writeText(stream, "a\nb€", NSWindowsCP1252StringEncoding, &error));
  EXPECT_EQ(stream.calls_, std::vector<std::string>{"a\nb\x80"});
  EXPECT_EQ(error, nullptr);
}

TEST(EncodedText, TakesShortCountsForSuccessAndWritesNoRest) {
  for (const NSInteger answer : {NSInteger{0}, NSInteger{1}, NSInteger{99}, NSInteger{-2}}) {
    Scripted stream(answer);
    std::shared_ptr<const NSError> error;
    EXPECT_TRUE(writeText(stream, "record", NSUTF8StringEncoding, &error)) << answer;
    EXPECT_EQ(stream.calls_.size(), 1U);
    EXPECT_EQ(error, nullptr);
  }
}

TEST(EncodedText, FailsWithTheStreamsErrorForMinusOneAlone) {
  Scripted stream(-1);
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(writeText(stream, "record", NSUTF8StringEncoding, &error));
  EXPECT_EQ(error, stream.failure_);
  EXPECT_FALSE(writeText(stream, "record", NSUTF8StringEncoding, nullptr));
  EXPECT_EQ(stream.calls_.size(), 2U);
}

TEST(EncodedText, NamesAnEncodingThatLacksACharacterAndWritesNothing) {
  for (const NSUInteger encoding : {NSUInteger{NSASCIIStringEncoding}, NSUInteger{9999}}) {
    Scripted stream(-1);
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(writeText(stream, "abc日", encoding, &error));
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), 517);
    EXPECT_EQ(error->userInfo()->count(), 1U);
    EXPECT_EQ(error->userInfo()->objectForKey(NSStringEncodingErrorKey).as<NSUInteger>(), encoding);
    EXPECT_FALSE(writeText(stream, "abc日", encoding, nullptr));
    EXPECT_TRUE(stream.calls_.empty());
  }
}

TEST(EncodedText, HandsOnAnEmptyText) {
  Scripted stream(0);
  EXPECT_TRUE(writeText(stream, "", NSUTF8StringEncoding, nullptr));
  EXPECT_EQ(stream.calls_, std::vector<std::string>{""});
}

}  // namespace
}  // namespace ORLFoundation::internal::stream
