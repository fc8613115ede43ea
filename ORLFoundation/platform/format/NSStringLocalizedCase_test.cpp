
#include <ORLFoundation/platform/format/NSStringLocalizedCase.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(NSStringLocalizedCase, FollowsTheLocaleGiven) {
  EXPECT_EQ(localizedCapitalizedString("istanbul", std::make_shared<NSLocale>("en_US")),
            "Istanbul");
  EXPECT_EQ(localizedCapitalizedString("istanbul", std::make_shared<NSLocale>("tr_TR")),
            "İstanbul");
}

TEST(NSStringLocalizedCase, FollowsTheCurrentLocaleOtherwise) {
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("tr"));
  EXPECT_EQ(localizedCapitalizedString("izmir"), "İzmir");
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("en"));
  EXPECT_EQ(localizedCapitalizedString("izmir"), "Izmir");
  NSLocale::setCurrentLocale(nullptr);
}

}  // namespace
}  // namespace ORLFoundation
