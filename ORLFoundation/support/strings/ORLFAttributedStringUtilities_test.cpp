
#include <ORLFoundation/support/strings/ORLFAttributedStringUtilities.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

/// The values of an attribute, a letter for each unit; "." where it has none.
std::string valuesOf(const NSAttributedString& text, std::string_view name) {
  std::string values;
  for (NSUInteger at = 0; at < text.length(); ++at)
    values += text.attribute(name, at).as<std::string>().value_or(".");
  return values;
}

TEST(ORLFAttributedStringUtilities, FillsOnlyWhatIsMissing) {
  NSMutableAttributedString text("abcdefgh");
  text.addAttribute("color", "r", {2, 2});
  text.addAttribute("color", "b", {5, 1});
  orlfApplyMissingAttributes(text,
                             *NSDictionary::dictionaryWithEntries({{"color", "k"}, {"font", "f"}}));
  EXPECT_EQ(valuesOf(text, "color"), "kkrrkbkk");
  EXPECT_EQ(valuesOf(text, "font"), "ffffffff");
}

TEST(ORLFAttributedStringUtilities, StaysInsideTheRange) {
  NSMutableAttributedString text("abcdefgh");
  text.addAttribute("color", "r", {2, 2});
  orlfApplyMissingAttributes(text, *NSDictionary::dictionaryWithEntries({{"color", "k"}}), {1, 4});
  EXPECT_EQ(valuesOf(text, "color"), ".krrk...");
}

TEST(ORLFAttributedStringUtilities, LeavesEmptyTextsAndRangesAlone) {
  const auto attributes = NSDictionary::dictionaryWithEntries({{"color", "k"}});
  NSMutableAttributedString empty("");
  orlfApplyMissingAttributes(empty, *attributes);
  EXPECT_EQ(empty.length(), 0U);
  NSMutableAttributedString text("ab");
  orlfApplyMissingAttributes(text, *attributes, {2, 0});
  EXPECT_EQ(valuesOf(text, "color"), "..");
}

TEST(ORLFAttributedStringUtilities, RaisesForWhatItCannotDo) {
  NSMutableAttributedString text("ab");
  EXPECT_THROW(orlfApplyMissingAttributes(
                   text, *NSDictionary::dictionaryWithEntries({{"color", "k"}}), {1, 2}),
               NSException);
  EXPECT_THROW(orlfApplyMissingAttributes(text, *NSDictionary::dictionaryWithEntries({{1, "k"}})),
               NSException);
}

}  // namespace
}  // namespace ORLFoundation
