#include <ORLFoundation/platform/text/NSScanner.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <string>

namespace ORLFoundation {
namespace {

const NSCharacterSet& digits() { return *NSCharacterSet::decimalDigitCharacterSet(); }

TEST(NSScanner, SkipsWhiteSpaceAndLineEndsAtFirst) {
  NSScanner scanner(" \n\u00A0 12 apples ");
  std::string_view found;
  EXPECT_TRUE(scanner.scanCharactersFromSet(digits(), &found));
  EXPECT_EQ(found, "12");
  EXPECT_TRUE(scanner.scanString("apples", &found));
  EXPECT_EQ(found, "apples");
  EXPECT_TRUE(scanner.isAtEnd());
  EXPECT_EQ(scanner.scanLocation(), 13U);
}

TEST(NSScanner, SkipsNothingWithoutASet) {
  NSScanner scanner(" a");
  scanner.setCharactersToBeSkipped(nullptr);
  EXPECT_FALSE(scanner.scanString("a"));
  EXPECT_TRUE(scanner.scanString(" "));
  EXPECT_TRUE(scanner.scanString("a"));
  EXPECT_TRUE(scanner.isAtEnd());
}

TEST(NSScanner, SkipsTheCharactersOfItsSet) {
  NSScanner scanner("--a-");
  scanner.setCharactersToBeSkipped(NSCharacterSet::characterSetWithCharactersInString("-"));
  EXPECT_TRUE(scanner.scanString("a"));
  EXPECT_TRUE(scanner.isAtEnd());
}

TEST(NSScanner, StaysBeforeWhatItSkippedWhenItFindsNothing) {
  NSScanner scanner("  a");
  std::string_view found = "untouched";
  EXPECT_FALSE(scanner.scanString("b", &found));
  EXPECT_FALSE(scanner.scanUpToString("a", &found));
  EXPECT_FALSE(scanner.scanCharactersFromSet(digits(), &found));
  EXPECT_FALSE(scanner.scanUpToCharactersFromSet(*NSCharacterSet::letterCharacterSet(), &found));
  EXPECT_EQ(found, "untouched");
  EXPECT_EQ(scanner.scanLocation(), 0U);
}

TEST(NSScanner, ScansUpToATextOrTheEnd) {
  NSScanner scanner("ab<c");
  std::string_view found;
  EXPECT_TRUE(scanner.scanUpToString("<", &found));
  EXPECT_EQ(found, "ab");
  EXPECT_TRUE(scanner.scanString("<"));
  EXPECT_TRUE(scanner.scanUpToString("<", &found));
  EXPECT_EQ(found, "c");
  EXPECT_TRUE(scanner.isAtEnd());
  EXPECT_FALSE(scanner.scanUpToString("<"));
}

TEST(NSScanner, ScansUpToAMemberOfASet) {
  NSScanner scanner("é日1");
  std::string_view found;
  EXPECT_TRUE(scanner.scanUpToCharactersFromSet(digits(), &found));
  EXPECT_EQ(found, "é日");
}

TEST(NSScanner, TakesBrokenBytesForTheReplacementCharacterInSets) {
  NSScanner scanner(
      "\xFF\xC3"
      "1");
  std::string_view found;
  EXPECT_TRUE(scanner.scanCharactersFromSet(
      *NSCharacterSet::characterSetWithCharactersInString("\uFFFD"), &found));
  EXPECT_EQ(found, "\xFF\xC3");
}

TEST(NSScanner, TellsItsPlaceInUnitsOfUTF16) {
  NSScanner scanner("é😀x");
  EXPECT_TRUE(scanner.scanString("é😀"));
  EXPECT_EQ(scanner.scanLocation(), 3U);
  EXPECT_EQ(scanner.placeInBytes(), 6U);
  scanner.setScanLocation(1);
  EXPECT_EQ(scanner.placeInBytes(), 2U);
  scanner.setScanLocation(2);
  EXPECT_EQ(scanner.placeInBytes(), 2U);
  scanner.setScanLocation(4);
  EXPECT_TRUE(scanner.isAtEnd());
}

TEST(NSScanner, RefusesAPlaceBeyondItsEnd) {
  NSScanner scanner("é");
  EXPECT_THROW(scanner.setScanLocation(2), NSException);
  EXPECT_THROW(scanner.setPlaceInBytes(3), NSException);
  scanner.setScanLocation(1);
  EXPECT_TRUE(scanner.isAtEnd());
}

TEST(NSScanner, ComparesCaseAndAll) {
  NSScanner scanner("Ab");
  EXPECT_FALSE(scanner.scanString("ab"));
  EXPECT_TRUE(scanner.scanString("Ab"));
}

TEST(NSScanner, LooksAtATextOfItsCaller) {
  const std::string text = "long text";
  const auto scanner = NSScanner::scannerOverString(text);
  std::string_view found;
  EXPECT_TRUE(scanner->scanString("long", &found));
  EXPECT_EQ(found.data(), text.data());
}

}  // namespace
}  // namespace ORLFoundation
