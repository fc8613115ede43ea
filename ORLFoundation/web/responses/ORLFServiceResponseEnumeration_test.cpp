
#include <ORLFoundation/web/responses/ORLFServiceResponseEnumeration.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<NSDictionary> yesAndNo() {
  return NSDictionary::dictionaryWithEntries({{"Yes", 1}, {"No", 0}});
}

TEST(ORLFServiceResponseEnumeration, TakesTextsInAnyCase) {
  const ORLFServiceResponseEnumeration answers(yesAndNo(), false, NSNumber(-1));
  EXPECT_EQ(answers.enumerationValueForString("YES"), NSNumber(1));
  EXPECT_EQ(answers.enumerationValueForString("no"), NSNumber(0));
  EXPECT_EQ(answers.enumerationValueForString("maybe"), NSNumber(-1));
  EXPECT_EQ(answers.enumerationValueForString(std::nullopt), NSNumber(-1));
  EXPECT_TRUE(answers.validEnumerationString("yEs"));
  EXPECT_FALSE(answers.validEnumerationString("maybe"));
  EXPECT_FALSE(answers.validEnumerationString(std::nullopt));
  EXPECT_EQ(answers.stringForEnumerationValue(NSNumber(1)), "Yes");
  EXPECT_FALSE(answers.caseSensitive());
}

TEST(ORLFServiceResponseEnumeration, TakesTextsAsTheyAreWhereCaseCounts) {
  const ORLFServiceResponseEnumeration answers(yesAndNo(), true, NSNumber(-1));
  EXPECT_EQ(answers.enumerationValueForString("YES"), NSNumber(-1));
  EXPECT_FALSE(answers.validEnumerationString("YES"));
  EXPECT_EQ(answers.enumerationValueForString("Yes"), NSNumber(1));
  EXPECT_TRUE(answers.caseSensitive());
}

TEST(ORLFServiceResponseEnumeration, LowersTextsByTheFullMappings) {
  const ORLFServiceResponseEnumeration answers(
      NSDictionary::dictionaryWithEntries({{"ÄRGER ΟΔΟΣ", 1}}), false, std::nullopt);
  EXPECT_EQ(answers.enumerationValueForString("ärger οδος"), NSNumber(1));
}

TEST(ORLFServiceResponseEnumeration, MarksNilAndUnknownTextsApart) {
  const ORLFServiceResponseEnumeration both(yesAndNo(), false, NSNumber(-1), NSNumber(9));
  EXPECT_EQ(both.enumerationValueForString(std::nullopt), NSNumber(9));
  EXPECT_EQ(both.enumerationValueForString("maybe"), NSNumber(-1));
  EXPECT_EQ(both.unknownValue(), NSNumber(-1));
  EXPECT_EQ(both.nilValue(), NSNumber(9));
  const ORLFServiceResponseEnumeration none(yesAndNo(), false, std::nullopt);
  EXPECT_EQ(none.enumerationValueForString(std::nullopt), std::nullopt);
  EXPECT_EQ(none.enumerationValueForString("maybe"), std::nullopt);
  const ORLFServiceResponseEnumeration onlyNil(yesAndNo(), false, std::nullopt, NSNumber(9));
  EXPECT_EQ(onlyNil.enumerationValueForString("maybe"), std::nullopt);
  EXPECT_FALSE(onlyNil.validEnumerationString(std::nullopt));
}

TEST(ORLFServiceResponseEnumeration, GivesAListOfNumbers) {
  const std::vector<std::string> strings = {"YES", "x", "No", ""};
  const ORLFServiceResponseEnumeration marked(yesAndNo(), false, NSNumber(-1), NSNumber(9));
  EXPECT_THAT(marked.enumerationValuesForStrings(strings),
              ElementsAre(NSNumber(1), NSNumber(-1), NSNumber(0), NSNumber(-1)));
  const ORLFServiceResponseEnumeration unmarked(yesAndNo(), false, std::nullopt, NSNumber(9));
  EXPECT_THAT(unmarked.enumerationValuesForStrings({"Yes", "x", "No"}),
              ElementsAre(NSNumber(1), NSNumber(0)));
  EXPECT_THAT(marked.enumerationValuesForStrings({}), IsEmpty());
}

TEST(ORLFServiceResponseEnumeration, ListsTextsThatAreNotInTheMapAsTheyAre) {
  const ORLFServiceResponseEnumeration answers(yesAndNo(), false, NSNumber(-1));
  EXPECT_THAT(answers.invalidEnumerationStringsForStrings({"Maybe", "yes", "X", "Maybe"}),
              ElementsAre("Maybe", "X", "Maybe"));
}

TEST(ORLFServiceResponseEnumeration, KnowsNoTextOfOtherNumbers) {
  const ORLFServiceResponseEnumeration answers(yesAndNo(), false, NSNumber(-1), NSNumber(9));
  EXPECT_EQ(answers.stringForEnumerationValue(NSNumber(1.0)), "Yes");
  EXPECT_EQ(answers.stringForEnumerationValue(NSNumber(-1)), std::nullopt);
  EXPECT_EQ(answers.stringForEnumerationValue(NSNumber(9)), std::nullopt);
  EXPECT_EQ(answers.stringForEnumerationValue(std::nullopt), std::nullopt);
}

TEST(ORLFServiceResponseEnumeration, TakesTheLaterOfTwo) {
  const ORLFServiceResponseEnumeration answers(
      NSDictionary::dictionaryWithEntries({{"a", 1}, {"A", 2}, {"b", 3}, {"c", 3}}), false,
      std::nullopt);
  EXPECT_EQ(answers.enumerationValueForString("a"), NSNumber(2));
  EXPECT_EQ(answers.stringForEnumerationValue(NSNumber(1)), "a");
  EXPECT_EQ(answers.stringForEnumerationValue(NSNumber(3)), "c");
  EXPECT_EQ(answers.canonicalMap()->count(), 3U);
  EXPECT_EQ(answers.inverseMap()->count(), 3U);
}

TEST(ORLFServiceResponseEnumeration, KeepsItsOwnCopyOfTheMap) {
  const auto map = std::make_shared<NSMutableDictionary>();
  map->setObject(1, "Yes");
  const ORLFServiceResponseEnumeration sensitive(map, true, std::nullopt);
  map->setObject(2, "Yes");
  EXPECT_EQ(sensitive.enumerationValueForString("Yes"), NSNumber(1));
  EXPECT_EQ(sensitive.stringForEnumerationValue(NSNumber(2)), std::nullopt);
}

TEST(ORLFServiceResponseEnumeration, TakesMapsOfOtherThingsAndNone) {
  const ORLFServiceResponseEnumeration odd(
      NSDictionary::dictionaryWithEntries({{1, "Yes"}, {"a", "b"}}), false, NSNumber(-1));
  EXPECT_EQ(odd.enumerationValueForString("a"), NSNumber(-1));
  EXPECT_FALSE(odd.validEnumerationString("a"));
  EXPECT_EQ(odd.stringForEnumerationValue(NSNumber(1)), std::nullopt);
  const ORLFServiceResponseEnumeration none(nullptr, false, NSNumber(-1));
  EXPECT_EQ(none.enumerationValueForString("a"), NSNumber(-1));
}

}  // namespace
}  // namespace ORLFoundation
