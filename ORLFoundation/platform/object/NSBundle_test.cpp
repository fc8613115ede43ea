#include <ORLFoundation/platform/object/NSBundle.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSBundle, GivesTheKeyOrTheValueWithoutATable) {
  const NSBundle bundle;
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "week");
  EXPECT_EQ(bundle.localizedStringForKey("week", "a week", std::nullopt), "a week");
}

TEST(NSBundle, LooksInTheTableThatIsNamed) {
  NSBundle bundle;
  bundle.setLocalizedStrings("Localizable", {{"week", "Woche"}});
  bundle.setLocalizedStrings("Other", {{"week", "semaine"}});
  EXPECT_EQ(bundle.localizedStringForKey("week", "", std::nullopt), "Woche");
  EXPECT_EQ(bundle.localizedStringForKey("week", "", "Other"), "semaine");
  EXPECT_EQ(bundle.localizedStringForKey("day", "", "Other"), "day");
  EXPECT_EQ(bundle.localizedStringForKey("week", "", "Absent"), "week");
}

TEST(NSBundle, MainBundleIsOneForTheProcess) {
  EXPECT_EQ(NSBundle::mainBundle().get(), NSBundle::mainBundle().get());
}

}  // namespace
}  // namespace ORLFoundation
