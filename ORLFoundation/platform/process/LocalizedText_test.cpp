#include <ORLFoundation/platform/process/LocalizedText.h>

#include <gtest/gtest.h>

namespace ORLFoundation::internal::process {
namespace {

TEST(LocalizedText, IsThatOfTheMainBundlesTableElseTheTextItself) {
  const auto& bundle = NSBundle::mainBundle();
  EXPECT_EQ(localizedText("LocalizedText week"), "LocalizedText week");
  bundle->setLocalizedStrings("Localizable", {{"LocalizedText week", "Woche"}});
  bundle->setLocalizedStrings("Other", {{"LocalizedText day", "jour"}});
  EXPECT_EQ(localizedText("LocalizedText week"), "Woche");
  EXPECT_EQ(localizedText("LocalizedText day"), "LocalizedText day");
  EXPECT_EQ(localizedText(""), "");
  bundle->setLocalizedStrings("Localizable", {});
  bundle->setLocalizedStrings("Other", {});
}

}  // namespace
}  // namespace ORLFoundation::internal::process
