
#include <ORLFoundation/platform/object/NSError.h>

#include <ORLFoundation/platform/object/NSObject_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

std::shared_ptr<NSDictionary> info(const char* text) {
  return NSDictionary::dictionaryWithEntries({{NSLocalizedDescriptionKey, text}});
}

TEST(NSError, HoldsDomainCodeAndUserInformation) {
  const auto error = NSError::errorWithDomain(ORLFErrorDomain, 1, info("It broke."));
  EXPECT_EQ(error->domain(), "ORLFErrorDomain");
  EXPECT_EQ(error->code(), 1);
  EXPECT_EQ(error->localizedDescription(), "It broke.");
  EXPECT_EQ(error->valueForKeyPath("userInfo.NSLocalizedDescription"), id("It broke."));
  EXPECT_EQ(error->description(),
            "Error Domain=ORLFErrorDomain Code=1 \"It broke.\" "
            "UserInfo={NSLocalizedDescription=It broke.}");
}

TEST(NSError, DescribesItselfWithoutUserInformation) {
  const NSError error(NSCocoaErrorDomain, 3072);
  EXPECT_EQ(error.userInfo()->count(), 0U);
  EXPECT_EQ(error.localizedDescription(),
            "The operation couldn’t be completed. (NSCocoaErrorDomain error 3072.)");
}

TEST(NSError, KeepsItsUserInformationWhenTheGivenOneChanges) {
  const auto given = std::make_shared<NSMutableDictionary>();
  const auto error = NSError::errorWithDomain(ORLFErrorDomain, 1, given);
  given->setObject(1, "a");
  EXPECT_EQ(error->userInfo()->count(), 0U);
}

TEST(NSError, EqualsByContent) {
  const auto error = NSError::errorWithDomain("d", 1, info("x"));
  EXPECT_TRUE(error->isEqual(NSError::errorWithDomain("d", 1, info("x")).get()));
  EXPECT_EQ(error->hash(), NSError::errorWithDomain("d", 1, info("x"))->hash());
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("d", 2, info("x")).get()));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("e", 1, info("x")).get()));
  EXPECT_FALSE(error->isEqual(NSError::errorWithDomain("d", 1, info("y")).get()));
  EXPECT_FALSE(error->isEqual(nullptr));
  EXPECT_EQ(error->copy(), error);
}

TEST(NSError, FillsASlotWhereThereIsOne) {
  std::shared_ptr<const NSError> slot;
  EXPECT_FALSE(NSFillErrorSlot(nullptr, ORLFErrorDomain, 1, "lost"));
  EXPECT_FALSE(NSFillErrorSlot(&slot, ORLFErrorDomain, 2, "kept"));
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(slot->code(), 2);
  EXPECT_EQ(slot->localizedDescription(), "kept");
  EXPECT_EQ(id(slot).as<NSError>(), slot);
}

TEST(NSError, CopiesOneOnTheStackToAnEqualOne) {
  NSError error("d", 7, info("x"));
  orlftest::expectEqualCopyOfUnowned(error);
}

}  // namespace
}  // namespace ORLFoundation
