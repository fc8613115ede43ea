
#include <ORLFoundation/support/strings/ORLFPredicateUtilities.h>

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/support/strings/internal/ORLFPredicateFormat.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

TEST(ORLFPredicateUtilities, PutsTheFlagsInBrackets) {
  EXPECT_EQ(internal::strings::stringPredicateFormat("==", false, false), "%K == %@");
  EXPECT_EQ(internal::strings::stringPredicateFormat("==", true, false), "%K ==[c] %@");
  EXPECT_EQ(internal::strings::stringPredicateFormat("==", false, true), "%K ==[d] %@");
  EXPECT_EQ(internal::strings::stringPredicateFormat("MATCHES", true, true), "%K MATCHES[cd] %@");
}

TEST(ORLFPredicateUtilities, MakesPredicates) {
  EXPECT_EQ(orlfStringEqualsPredicateWithKey("payee", false, false, "x")->predicateFormat(),
            "payee == \"x\"");
  EXPECT_EQ(orlfStringMatchPredicateWithKey("payee", true, true, "x.*")->predicateFormat(),
            "payee MATCHES[cd] \"x.*\"");
  EXPECT_EQ(orlfStringPredicate({.comparisonOperator = "BEGINSWITH",
                                 .withKey = "owner.name",
                                 .caseInsensitive = true,
                                 .value = "x"})
                ->predicateFormat(),
            "owner.name BEGINSWITH[c] \"x\"");
}

TEST(ORLFPredicateUtilities, ComparesTheTextUnderTheKey) {
  const id cafe = NSDictionary::dictionaryWithEntries({{"payee", "Café"}});
  EXPECT_FALSE(
      orlfStringEqualsPredicateWithKey("payee", false, false, "cafe")->evaluateWithObject(cafe));
  EXPECT_FALSE(
      orlfStringEqualsPredicateWithKey("payee", true, false, "cafe")->evaluateWithObject(cafe));
  EXPECT_FALSE(
      orlfStringEqualsPredicateWithKey("payee", false, true, "cafe")->evaluateWithObject(cafe));
  EXPECT_TRUE(
      orlfStringEqualsPredicateWithKey("payee", true, true, "cafe")->evaluateWithObject(cafe));
  EXPECT_TRUE(
      orlfStringMatchPredicateWithKey("payee", true, true, "c.f[e]")->evaluateWithObject(cafe));
  EXPECT_FALSE(
      orlfStringEqualsPredicateWithKey("none", true, true, "cafe")->evaluateWithObject(cafe));
  EXPECT_TRUE(
      orlfStringEqualsPredicateWithKey("none", true, true, nullptr)->evaluateWithObject(cafe));
}

TEST(ORLFPredicateUtilities, RaisesForAnOperatorThatIsNone) {
  EXPECT_THROW(static_cast<void>(orlfStringPredicate(
                   {.comparisonOperator = "RESEMBLES", .withKey = "payee", .value = "x"})),
               NSException);
}

}  // namespace
}  // namespace ORLFoundation
