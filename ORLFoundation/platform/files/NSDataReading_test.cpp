#include <ORLFoundation/platform/files/NSDataReading.h>

#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <fstream>

namespace ORLFoundation {
namespace {

std::shared_ptr<const NSError> errorOfReading(const NSURL& url) {
  std::shared_ptr<const NSError> error;
  EXPECT_EQ(dataWithContentsOfURL(url, NSDataReadingMappedIfSafe, &error), std::nullopt);
  EXPECT_EQ(dataWithContentsOfURL(url, 0), std::nullopt);
  return error;
}

TEST(NSDataReading, GivesAllBytes) {
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.path() / "a b.bin";
  const std::string text = std::string(200'000, 'x') + std::string("\0end", 4);
  std::ofstream(path, std::ios::binary) << text;
  std::shared_ptr<const NSError> error;
  const auto data = dataWithContentsOfURL(NSURL::fileURLWithPath(path), 1, &error);
  ASSERT_TRUE(data.has_value());
  EXPECT_EQ(data->text(), text);
  EXPECT_EQ(error, nullptr);
  std::ofstream(path, std::ios::binary | std::ios::trunc).close();
  EXPECT_EQ(dataWithContentsOfURL(NSURL::fileURLWithPath(path), 1)->length(), 0U);
}

TEST(NSDataReading, TellsWhatCannotBeRead) {
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.path() / "nothing";
  const auto error = errorOfReading(NSURL::fileURLWithPath(path));
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
  EXPECT_EQ(error->userInfo()->objectForKey(NSFilePathErrorKey), id(path));
  const auto cause = error->userInfo()->objectForKey(NSUnderlyingErrorKey).as<NSError>();
  ASSERT_NE(cause, nullptr);
  EXPECT_EQ(cause->domain(), NSPOSIXErrorDomain);
  EXPECT_EQ(cause->code(), ENOENT);
  EXPECT_EQ(errorOfReading(NSURL::fileURLWithPath(folder.path().string()))->code(),
            NSFileReadUnknownError);
  EXPECT_EQ(errorOfReading(NSURL::fileURLWithPath(path + "/below"))->code(),
            NSFileReadNoSuchFileError);
}

TEST(NSDataReading, StopsAtAFileWithoutEnd) {
  EXPECT_EQ(errorOfReading(NSURL::fileURLWithPath("/dev/zero"))->code(), NSFileReadTooLargeError);
}

TEST(NSDataReading, ReadsFilesAlone) {
  const auto error = errorOfReading(*NSURL::URLWithString("https://example.com/a.xml"));
  EXPECT_EQ(error->code(), NSFileReadUnsupportedSchemeError);
  EXPECT_NE(error->localizedDescription().find("example.com"), std::string::npos);
}

}  // namespace
}  // namespace ORLFoundation
