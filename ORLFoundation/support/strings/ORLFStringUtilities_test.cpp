
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/value/NSUUID.h>
#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation {
namespace {

using Texts = std::vector<std::string>;

struct MapCase {
  std::string_view name, text, result;
};

TEST(ORLFStringUtilities, GeneratesIdentifiersThatAreNeverTheSame) {
  const std::string first = orlfGenerateUUIDString();
  EXPECT_EQ(first.size(), 36U);
  ASSERT_TRUE(NSUUID::initWithUUIDString(first));
  EXPECT_EQ(NSUUID::initWithUUIDString(first)->UUIDString(), first);
  EXPECT_NE(first, orlfGenerateUUIDString());
  EXPECT_TRUE(NSUUID::initWithUUIDString(orlfGenerateUniqueId()));
  EXPECT_NE(orlfGenerateUniqueId(), orlfGenerateUniqueId());
}

TEST(ORLFStringUtilities, WritesIntegers) {
  EXPECT_EQ(orlfStringWithInteger(0), "0");
  EXPECT_EQ(orlfStringWithInteger(NSIntegerMin), "-9223372036854775808");
  EXPECT_EQ(orlfStringWithInteger(NSIntegerMax), "9223372036854775807");
  EXPECT_EQ(orlfStringWithUnsignedInteger(NSUIntegerMax), "18446744073709551615");
  EXPECT_EQ(orlfStringWithLongLong(std::numeric_limits<long long>::min()), "-9223372036854775808");
}

struct ContainsCase {
  std::string_view name, text, string;
  bool contains;
};
const ContainsCase kContainsCases[] = {
    {"WhateverTheCase", "Grocery Store", "STORE", true},
    {"ByFullFolding", "Hauptstraße", "STRASSE", true},
    {"NotWithoutItsMarks", "Café", "cafe", false},
    {"MarksComposedOrNot", "Cafe\u0301", "CAFÉ", true},
    {"NotALetterWithoutItsMark", "e\u0301", "e", false},
    {"NotHalfOfASharpS", "ß", "s", false},
    {"EmptyTextIsInNone", "abc", "", false},
    {"NothingInTheEmptyText", "", "a", false},
    {"BrokenBytesFindEachOther", "a\xFFz", "\xC0z", true},
};

TEST(ORLFStringUtilities, ContainsString) {
  for (const ContainsCase& row : kContainsCases)
    EXPECT_EQ(orlfContainsString(row.text, row.string), row.contains) << row.name;
}

struct ComponentsCase {
  std::string_view name, text;
  Texts components;
  bool contains;
};
const ComponentsCase kComponentsCases[] = {
    {"None", "abc", {}, true},
    {"NoneInNothing", "", {}, true},
    {"AnEmptyOne", "abc", {""}, false},
    {"InOrder", "the quick brown fox", {"quick", "fox"}, true},
    {"NotInAnotherOrder", "the quick brown fox", {"fox", "quick"}, false},
    {"WhateverCaseAndMarks", "Résumé of Zoë", {"RESUME", "zoe"}, true},
    {"MarksInTheComponents", "resume", {"résumé"}, true},
    {"DoNotOverlap", "aba", {"ab", "ba"}, false},
    {"SideBySide", "abab", {"ab", "ab"}, true},
    {"BehindACharacterOfTwoUnits", "😀a😀b", {"😀", "😀b"}, true},
    {"BehindALetterThatFoldsToTwo", "ßa", {"SS", "A"}, true},
};

TEST(ORLFStringUtilities, ContainsComponents) {
  for (const ComponentsCase& row : kComponentsCases)
    EXPECT_EQ(orlfContainsComponents(row.text, row.components), row.contains) << row.name;
}

TEST(ORLFStringUtilities, ContainsManyComponentsInOnePass) {
  const std::string text(400000, 'a');
  EXPECT_TRUE(orlfContainsComponents(text, Texts(200000, "aa")));
  EXPECT_FALSE(orlfContainsComponents(text, Texts(200001, "aa")));
}

TEST(ORLFStringUtilities, ReadsDataInAStatedEncoding) {
  EXPECT_EQ(orlfStringWithData(NSData("caf\xC3\xA9"), 4), "café");
  EXPECT_EQ(orlfStringWithData(NSData("caf\xE9"), 4), std::nullopt);
  EXPECT_EQ(orlfStringWithData(NSData("caf\xE9"), 12), "café");
  EXPECT_EQ(orlfStringWithData(NSData("caf\x8E"), 30), "café");
  EXPECT_EQ(orlfStringWithData(NSData("caf\xE9"), 1), std::nullopt);
  EXPECT_EQ(orlfStringWithData(NSData("cafe"), 1), "cafe");
  EXPECT_EQ(orlfStringWithData(NSData("cafe"), 9999), std::nullopt);
}

TEST(ORLFStringUtilities, TakesBytesThatAreNotUTF8ForMacRoman) {
  std::shared_ptr<const NSError> error;
  for (int byte = 0x80; byte < 0x100; ++byte) {
    const NSData data(std::vector<std::uint8_t>{'a', static_cast<std::uint8_t>(byte)});
    NSUInteger encoding = 0;
    EXPECT_TRUE(orlfStringWithDataUsedEncoding(data, &encoding, &error)) << byte;
    EXPECT_EQ(encoding, 30U) << byte;
  }
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(orlfStringWithDataUsedEncoding(NSData("\x8E"), nullptr), "é");
}

TEST(ORLFStringUtilities, EscapesTheCharactersGiven) {
  const auto escape = orlfStringByBackslashEscapingCharactersInString;
  EXPECT_EQ(escape("a;b,c", ";,"), "a\\;b\\,c");
  EXPECT_EQ(escape("\\n", "\\"), "\\\\n");
  EXPECT_EQ(escape("😀é", "é😀"), "\\😀\\é");
  EXPECT_EQ(escape("😀", "😁"), "😀");
  EXPECT_EQ(escape("", "a"), "");
  EXPECT_EQ(escape("a", ""), "a");
  EXPECT_EQ(escape("a\xFF", "a"), "\\a\uFFFD");
}

const MapCase kPreservingCases[] = {
    {"ASingleLetterStays", "a", "a"},
    {"ASingleLetterWithAnAccentStays", "é", "é"},
    {"Empty", "", ""},
    {"TheRestStays", "mcDONALD", "McDONALD"},
    {"ALetterWithItsMark", "e\u0301a", "E\u0301a"},
    {"ALetterThatBecomesTwo", "ßa", "SSa"},
    {"ALetterOfTwoUnitsStays", "𐐨a", "𐐨a"},
    {"DigitsFirst", "3rd", "3rd"},
    {"BrokenBytes",
     "\xFF"
     "ab",
     "\uFFFD"
     "ab"},
};

TEST(ORLFStringUtilities, CapitalizesPreservingCase) {
  for (const MapCase& row : kPreservingCases)
    EXPECT_EQ(orlfCapitalizedStringPreservingCase(row.text), row.result) << row.name;
}

TEST(ORLFStringUtilities, SortsByCaseOnlyOnATie) {
  EXPECT_EQ(orlfCaseInsensitiveSortCompare("a", "B"), NSOrderedAscending);
  EXPECT_EQ(orlfCaseInsensitiveSortCompare("B", "a"), NSOrderedDescending);
  EXPECT_EQ(orlfCaseInsensitiveSortCompare("a", "A"), NSOrderedDescending);
  EXPECT_EQ(orlfCaseInsensitiveSortCompare("a", "a"), NSOrderedSame);
}

struct VersionCase {
  std::string_view text;
  NSOperatingSystemVersion version;
};
const VersionCase kVersionCases[] = {
    {"13", {13, 0, 0}},     {"13.2", {13, 2, 0}}, {"13.2.1", {13, 2, 1}},
    {"1.2.3.4", {0, 0, 0}}, {"", {0, 0, 0}},      {"13.", {13, 0, 0}},
    {"13..1", {13, 0, 1}},  {"a.b", {0, 0, 0}},   {" 13 beta.2", {13, 2, 0}},
    {"...", {0, 0, 0}},     {".5", {0, 5, 0}},    {"99999999999999999999.1", {NSIntegerMax, 1, 0}},
};

TEST(ORLFStringUtilities, ReadsVersions) {
  for (const VersionCase& row : kVersionCases)
    EXPECT_TRUE(orlfOperatingSystemVersion(row.text) == row.version) << row.text;
}

const MapCase kTitleCases[] = {
    {"Empty", "", ""},
    {"TheFirstWordIsAlwaysCapitalized", "of mice and men", "Of Mice and Men"},
    {"TheFirstOneIsLoweredToo", "AND then", "And Then"},
    {"ShortWordsStayAsTheyAre", "cash AND carry", "Cash AND Carry"},
    {"FourLettersAreCapitalized", "payment from bank with card", "Payment From Bank With Card"},
    {"ArticlesAreNoPrepositions", "rent of the house", "Rent of The House"},
    {"ParticlesStay", "pay off a loan to go", "Pay off A Loan to Go"},
    {"SpaceAtTheStartTakesTheFirstPlace", " of mice", " of Mice"},
    {"LinesAreKept", "rent\tof\r\nhouse", "Rent\tof\r\nHouse"},
    {"ContractionsAreOneWord", "don't o’connor", "Don't O’connor"},
    {"HyphensPartWords", "jean-luc in-law", "Jean-Luc in-Law"},
    {"MarksAndLettersBeyondASCII", "élan of ǆungla", "Élan of ǅungla"},
    {"NumbersKeepTheirDigits", "3rd of 12", "3Rd of 12"},
    {"OtherScripts", "日本 of 😀", "日本 of 😀"},
    {"BrokenBytes", "a\xFF of", "A\uFFFD of"},
};

TEST(ORLFStringUtilities, WritesTitles) {
  const auto locale = std::make_shared<NSLocale>("en_US");
  for (const MapCase& row : kTitleCases)
    EXPECT_EQ(orlfTitleCase(row.text, locale), row.result) << row.name;
}

TEST(ORLFStringUtilities, WritesTitlesInTheLanguageOfTheLocale) {
  EXPECT_EQ(orlfTitleCase("izmir", std::make_shared<NSLocale>("tr_TR")), "İzmir");
  const Replaced turkish(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("tr_TR"));
  EXPECT_EQ(orlfTitleCase("izmir"), "İzmir");
}

struct AddressCase {
  std::string_view text;
  bool isAddress;
};
const AddressCase kAddressCases[] = {
    {"a@example.com", true},
    {"first.last@sub.example.co.uk", true},
    {"user+tag@example.org", true},
    {"o'neil@example.org", true},
    {"A_B-C%d@EXAMPLE.ORG", true},
    {"1@2.de", true},
    {"müller@bücher.de", true},
    {"a@xn--bcher-kva.xn--p1ai", true},
    {"mailto:a@example.com", true},
    {"MAILTO:a@example.com", true},
    {"MailTo:a@example.com", true},
    {"a@b.\u00E9", false},
    {"a@b.\u00E9\u00E8", true},
    {"a@b.\U00020000", false},
    {"", false},
    {"plain", false},
    {"example.com", false},
    {"http://a@example.com", false},
    {"a@localhost", false},
    {"a@example", false},
    {"a@example.c", false},
    {"a@1.2.3.4", false},
    {"@example.com", false},
    {"a@", false},
    {"a@.com", false},
    {"a@example..com", false},
    {"a@-example.com", false},
    {"a@example-.com", false},
    {"a@example.com.", false},
    {"a@example.com ", false},
    {"\ta@example.com", false},
    {"a@@example.com", false},
    {"a@b@example.com", false},
    {"a@example.com@b", false},
    {".a@example.com", false},
    {"a.@example.com", false},
    {"a..b@example.com", false},
    {"a b@example.com", false},
    {"<a@example.com>", false},
    {"\"a b\"@example.com", false},
    {"a@example.com,b@example.com", false},
    {"a@example.com b@example.com", false},
    {"write to a@example.com today", false},
    {"a@example.com?subject=x", false},
    {"a@example.com\n", false},
    {"\xFF@example.com", false},
    {"a@example.com\xFF", false},
};

TEST(ORLFStringUtilities, KnowsAddresses) {
  for (const AddressCase& row : kAddressCases)
    EXPECT_EQ(isEmailAddress(row.text), row.isAddress) << row.text;
}

TEST(ORLFStringUtilities, KnowsHowLongAnAddressMayBe) {
  EXPECT_TRUE(isEmailAddress(std::string(64, 'a').append("@example.com")));
  EXPECT_FALSE(isEmailAddress(std::string(65, 'a').append("@example.com")));
  EXPECT_TRUE(isEmailAddress(std::string("a@").append(63, 'b').append(".com")));
  EXPECT_FALSE(isEmailAddress(std::string("a@").append(64, 'b').append(".com")));
}

TEST(ORLFStringUtilities, ReadsHostileAddressesInOnePass) {
  std::string text;
  for (int i = 0; i < 300000; ++i) text += "a@.b";
  EXPECT_FALSE(isEmailAddress(text));
  EXPECT_FALSE(isEmailAddress(std::string(1000000, '@')));
  EXPECT_FALSE(isEmailAddress(std::string("a@").append(1000000, 'b').append(".com")));
  EXPECT_FALSE(isEmailAddress(std::string("http://a").append(1000000, ')')));
}

}  // namespace
}  // namespace ORLFoundation
