
#include <ORLFoundation/platform/text/NSStringSearch.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

constexpr NSUInteger kCase = NSCaseInsensitiveSearch;
constexpr NSUInteger kMarks = NSDiacriticInsensitiveSearch;
constexpr NSRange kNone{static_cast<NSUInteger>(NSNotFound), 0};

struct CompareCase {
  std::string_view name, left, right;
  NSUInteger options;
  NSComparisonResult result;
};
const CompareCase kCompareCases[] = {
    {"ByCodePoint", "Z", "a", 0, NSOrderedAscending},
    {"WhateverTheCase", "Z", "a", kCase, NSOrderedDescending},
    {"TheShorterFirst", "abc", "abcd", 0, NSOrderedAscending},
    {"ComposedOrNot", "é", "e\u0301", 0, NSOrderedSame},
    {"LiterallyNot", "é", "e\u0301", NSLiteralSearch, NSOrderedDescending},
    {"MarksCount", "é", "e", kCase, NSOrderedDescending},
    {"MarksPassedOver", "Résumé", "resume", kCase | kMarks, NSOrderedSame},
    {"MarksAloneDoNotPassCase", "Résumé", "resume", kMarks, NSOrderedAscending},
    {"FullFolding", "ß", "SS", kCase, NSOrderedSame},
    {"LigaturesFold", "ﬁ", "FI", kCase, NSOrderedSame},
    {"MarksOfCyrillic", "й", "и", kMarks, NSOrderedSame},
    {"VowelsOfDevanagariCount", "कि", "क", kMarks, NSOrderedDescending},
    {"DotsOfArabicShapesCount", "لَ", "ل", kMarks, NSOrderedDescending},
    {"OrderOfMarksDoesNotCount", "a\u0323\u0301", "a\u0301\u0323", 0, NSOrderedSame},
    {"AboveTheBasicPlane", "\uFFFD", "\U0001F600", 0, NSOrderedAscending},
    {"HangulComposedOrNot", "가", "\u1100\u1161", 0, NSOrderedSame},
    {"BrokenBytesAreAlike", "a\xFF", "a\xC0", 0, NSOrderedSame},
};

TEST(NSStringSearch, ComparesInBothDirections) {
  for (const CompareCase& row : kCompareCases) {
    EXPECT_EQ(compare(row.left, row.right, row.options), row.result) << row.name;
    EXPECT_EQ(compare(row.right, row.left, row.options), -row.result) << row.name;
  }
  EXPECT_EQ(caseInsensitiveCompare("a", "A"), NSOrderedSame);
}

struct SearchCase {
  std::string_view name, text, string;
  NSUInteger options;
  NSRange range;
};
const SearchCase kSearchCases[] = {
    {"First", "abcabc", "bc", 0, {1, 2}},
    {"Last", "abcabc", "bc", NSBackwardsSearch, {4, 2}},
    {"LastOfOverlapping", "aaa", "aa", NSBackwardsSearch, {1, 2}},
    {"Absent", "abc", "bd", 0, kNone},
    {"EmptyText", "abc", "", 0, kNone},
    {"EmptyTextInEmpty", "", "", NSAnchoredSearch, kNone},
    {"LongerThanTheText", "ab", "abc", NSAnchoredSearch, kNone},
    {"AtTheBeginning", "abab", "ab", NSAnchoredSearch, {0, 2}},
    {"NotAtTheBeginning", "cab", "ab", NSAnchoredSearch, kNone},
    {"AtTheEnd", "abab", "ab", NSAnchoredSearch | NSBackwardsSearch, {2, 2}},
    {"NotAtTheEnd", "abc", "ab", NSAnchoredSearch | NSBackwardsSearch, kNone},
    {"WhateverTheCase", "xABCx", "abc", kCase, {1, 3}},
    {"ALetterWithItsMark", "cafe\u0301!", "é", 0, {3, 2}},
    {"NotALetterWithoutItsMark", "cafe\u0301!", "e", 0, kNone},
    {"NotAMarkAlone", "cafe\u0301!", "\u0301", 0, kNone},
    {"LiterallyAMarkAlone", "cafe\u0301!", "\u0301", NSLiteralSearch, {4, 1}},
    {"MarksPassedOver", "Cafe\u0301!", "CAFE!", kCase | kMarks, {0, 6}},
    {"ASharpSIsTwo", "xßx", "SS", kCase, {1, 1}},
    {"NotHalfOfASharpS", "xßx", "s", kCase, kNone},
    {"TwoForASharpS", "xSSx", "ß", kCase, {1, 2}},
    {"AcrossUnitsOfOneCharacter", "a😀b😀c", "b😀", 0, {3, 3}},
    {"BrokenBytes", "a\xFF\xFFz", "\xFEz", 0, {2, 2}},
    {"BackThroughMarks", "e\u0301e\u0301", "é", NSBackwardsSearch, {2, 2}},
};

TEST(NSStringSearch, FindsPlaces) {
  for (const SearchCase& row : kSearchCases)
    EXPECT_EQ(rangeOfString(row.text, row.string, row.options), row.range) << row.name;
}

TEST(NSStringSearch, FindsPlacesInARange) {
  EXPECT_EQ(rangeOfString("abcabc", "abc", 0, NSRange{1, 5}), (NSRange{3, 3}));
  EXPECT_EQ(rangeOfString("abcabc", "abc", 0, NSRange{1, 4}), kNone);
  EXPECT_EQ(rangeOfString("abc", "c", 0, NSRange{3, 0}), kNone);
  EXPECT_THROW(static_cast<void>(rangeOfString("abc", "c", 0, NSRange{4, 0})), NSException);
  EXPECT_THROW(static_cast<void>(rangeOfString("abc", "c", 0, NSRange{1, NSUIntegerMax})),
               NSException);
}

TEST(NSStringSearch, SearchesOnFromAPlace) {
  const NSStringSearch search("e\u0301ßabe\u0301", kCase | kMarks);
  EXPECT_EQ(search.rangeOfString("e"), (NSRange{0, 2}));
  EXPECT_EQ(search.rangeOfString("e", 1), (NSRange{5, 2}));
  EXPECT_EQ(search.rangeOfString("e", 2), (NSRange{5, 2}));
  EXPECT_EQ(search.rangeOfString("ssa", 2), (NSRange{2, 2}));
  EXPECT_EQ(search.rangeOfString("ss", 3), kNone);
  EXPECT_EQ(search.rangeOfString("e", 7), kNone);
  EXPECT_EQ(search.rangeOfString("e", NSUIntegerMax), kNone);
}

TEST(NSStringSearch, TakesTimeThatGrowsWithTheSumOfTheLengths) {
  const std::string text(2000000, 'a');
  const std::string string = std::string(1000000, 'a').append("b");
  EXPECT_EQ(rangeOfString(text, string), kNone);
  EXPECT_EQ(rangeOfString(text, string, NSBackwardsSearch), kNone);
}

TEST(NSStringSearch, Folds) {
  EXPECT_EQ(stringByFoldingWithOptions("CAFE\u0301 ß", kCase), "café ss");
  EXPECT_EQ(stringByFoldingWithOptions("CAFÉ", kMarks), "CAFE");
  EXPECT_EQ(stringByFoldingWithOptions("CAFÉ", kCase | kMarks), "cafe");
  EXPECT_EQ(stringByFoldingWithOptions("ABC", kCase), "abc");
  EXPECT_EQ(stringByFoldingWithOptions("\u0301x", kMarks), "\u0301x");
}

TEST(NSStringSearch, CountsUnits) {
  EXPECT_EQ(length(""), 0U);
  EXPECT_EQ(length("abc"), 3U);
  EXPECT_EQ(length("é😀"), 3U);
  EXPECT_EQ(length("a\xF0\x9F"), 2U);
  EXPECT_EQ(wellFormedString("a\xF0\x9Fz"), "a\uFFFDz");
}

}  // namespace
}  // namespace ORLFoundation
