
#include <ORLFoundation/platform/format/NSStringLocalizedCase.h>

#include <ORLFoundation/platform/base/Replaced.h>

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
  const Replaced turkish(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("tr"));
  EXPECT_EQ(localizedCapitalizedString("izmir"), "İzmir");
  const Replaced english(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("en"));
  EXPECT_EQ(localizedCapitalizedString("izmir"), "Izmir");
}

}  // namespace
}  // namespace ORLFoundation
