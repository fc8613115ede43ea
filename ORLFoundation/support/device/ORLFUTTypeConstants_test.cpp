
#include <ORLFoundation/support/device/ORLFUTTypeConstants.h>

#include <ORLFoundation/platform/base/Replaced.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

struct ConstantCase {
  const char* name;
  std::shared_ptr<UTType> constant;
  std::shared_ptr<UTType> (*property)();
  const char* identifier;
};

TEST(ORLFUTTypeConstants, AreTheClassPropertiesFilledAtLoadTime) {
  // In here: a table of this source may be filled before the constants are.
  const ConstantCase cases[] = {
      {"qif", kORLFUTTypeQIF, &_ORLFUTTypeConstants::qif, "public.qif"},
      {"qmtf", kORLFUTTypeQMTF, &_ORLFUTTypeConstants::qmtf, "public.qmtf"},
      {"ofx", kORLFUTTypeOFX, &_ORLFUTTypeConstants::ofx, "public.ofx"},
      {"qfx", kORLFUTTypeQFX, &_ORLFUTTypeConstants::qfx, "public.qfx"},
      {"csv", kORLFUTTypeCSV, &_ORLFUTTypeConstants::csv, "public.comma-separated-values-text"},
      {"txf", kORLFUTTypeTXF, &_ORLFUTTypeConstants::txf, "public.txf"},
      {"voucher", kORLFUTTypeOrrelbooksSubscriptionVoucher, &_ORLFUTTypeConstants::voucher,
       "com.orrelbooks.subscription-voucher"},
  };
  for (const ConstantCase& row : cases) {
    ASSERT_TRUE(row.constant) << row.name;
    EXPECT_EQ(row.constant->identifier(), row.identifier);
    EXPECT_TRUE(row.constant->isEqual(row.property().get())) << row.name;
  }
}

TEST(ORLFUTTypeConstants, AreFoundByTheirExtensions) {
  for (const char* extension : {"qif", "qmtf", "ofx", "qfx", "csv", "txf"})
    EXPECT_EQ(UTType::typeWithFilenameExtension(extension)->preferredFilenameExtension(),
              extension);
}

TEST(ORLFUTTypeConstants, StopTheProcessForATypeThatTheSystemDoesNotKnow) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto inAnEmptyWorld = [](std::shared_ptr<UTType> (*property)()) {
    UTType::setCatalog(std::make_shared<UTTypeTable>(std::vector<UTTypeRecord>()));
    (void)property();
  };
  EXPECT_DEATH(inAnEmptyWorld(&_ORLFUTTypeConstants::qif),
               "Fatal error: Can't find UTType with filenameExtension: qif:");
  EXPECT_DEATH(inAnEmptyWorld(&_ORLFUTTypeConstants::qmtf),
               "Fatal error: Can't find UTType with filenameExtension: qmtf:");
  EXPECT_DEATH(inAnEmptyWorld(&_ORLFUTTypeConstants::qfx),
               "Fatal error: Can't find UTType with filenameExtension: qfx:");
  EXPECT_DEATH(inAnEmptyWorld(&_ORLFUTTypeConstants::txf),
               "Fatal error: Can't find UTType with filenameExtension: txf:");
  EXPECT_DEATH(inAnEmptyWorld(&_ORLFUTTypeConstants::ofx),
               "Fatal error: Unknown UTType: public\\.ofx:");
}

TEST(ORLFUTTypeConstants, OfThePlatformAndOfTheLibraryNeedNoCatalog) {
  const Replaced empty(UTType::setCatalog,
                       std::make_shared<UTTypeTable>(std::vector<UTTypeRecord>()));
  EXPECT_TRUE(_ORLFUTTypeConstants::csv()->isEqual(kORLFUTTypeCSV.get()));
  EXPECT_TRUE(_ORLFUTTypeConstants::voucher());
}

TEST(UTTypeConforms, ToAtLeastOneOfAList) {
  const auto text = UTType::typeWithIdentifier("public.text");
  const auto image = UTType::typeWithIdentifier("public.image");
  EXPECT_TRUE(conforms(*kORLFUTTypeQFX, {image, kORLFUTTypeOFX}));
  EXPECT_TRUE(conforms(*kORLFUTTypeCSV, {text, image}));
  EXPECT_FALSE(conforms(*kORLFUTTypeCSV, {image, kORLFUTTypeQIF}));
  EXPECT_FALSE(conforms(*kORLFUTTypeCSV, {}));
  EXPECT_FALSE(conforms(*kORLFUTTypeCSV, {nullptr}));
  const std::vector<std::shared_ptr<UTType>> list{nullptr, text};
  EXPECT_TRUE(conforms(*kORLFUTTypeTXF, list));
}

}  // namespace
}  // namespace ORLFoundation
