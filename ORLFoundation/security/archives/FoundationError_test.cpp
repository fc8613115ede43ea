#include <ORLFoundation/security/archives/FoundationError.h>

#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/security/archives/ORLFSymmetricKeyText.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(FoundationErrors, HaveTheirNumbersAndTexts) {
  const std::pair<FoundationError, const char*> rows[] = {
      {FoundationError::unknown, "An unknown error occurred."},
      {FoundationError::nilUnwrappedOptional, "A stream could not be opened."},
      {FoundationError::archiveRequiresPassword, "The archive requires a password."}};
  NSInteger number = 0;
  for (const auto& [error, text] : rows) {
    EXPECT_EQ(static_cast<NSInteger>(error), number++);
    EXPECT_EQ(localizedDescription(error), text);
    const auto record = NSErrorOfFoundationError(error);
    EXPECT_EQ(record->domain(), "ORLFoundation.FoundationError");
    EXPECT_EQ(record->code(), static_cast<NSInteger>(error));
    EXPECT_EQ(record->localizedDescription(), text);
    EXPECT_TRUE(isFoundationError(*record, error));
  }
  EXPECT_EQ(localizedDescription(static_cast<FoundationError>(-7)), "An unknown error occurred.");
}

TEST(FoundationErrors, GoOnWithTheErrorUnderThem) {
  std::shared_ptr<const NSError> cause;
  NSFillErrorSlot(&cause, NSPOSIXErrorDomain, 2, "There is none.");
  const auto record = NSErrorOfFoundationError(FoundationError::nilUnwrappedOptional, cause);
  EXPECT_EQ(record->localizedDescription(), "A stream could not be opened. There is none.");
  EXPECT_NE(record->userInfo()->objectForKey(NSUnderlyingErrorKey), id());
  EXPECT_FALSE(isFoundationError(*record, FoundationError::unknown));
  EXPECT_FALSE(isFoundationError(*cause, FoundationError::archiveRequiresPassword));
}

TEST(SymmetricKeyText, GoesThereAndBack) {
  const SymmetricKey key(SymmetricKeySize::bits256);
  const auto back = initBase64EncodedString(internal::base::base64Text(data(key).text()));
  ASSERT_TRUE(back);
  EXPECT_TRUE(*back == key);
  EXPECT_EQ(data(*initBase64EncodedString("QUJD")).text(), "ABC");
}

TEST(SymmetricKeyText, IsNilForMalformedText) {
  for (const char* text : {"", "Q", "QU", "QUJ", "QUJD\n", " QUJD", "QUJ=D", "QUJDQ===", "QUI=QUJD",
                           "QUJ!", "QR==", "====", "QUJ\xc3\xa4"})
    EXPECT_FALSE(initBase64EncodedString(text)) << text;
}

}  // namespace
}  // namespace ORLFoundation
