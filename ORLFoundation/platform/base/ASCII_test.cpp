#include <ORLFoundation/platform/base/ASCII.h>

#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace ORLFoundation::internal::base {
namespace {

// The C library's classes in its "C" locale are those of ASCII.
TEST(ASCII, ClassesOfEachByteAreThoseOfTheCLocale) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    EXPECT_EQ(isDigit(c), std::isdigit(byte) != 0) << byte;
    EXPECT_EQ(isUpperLetter(c), byte < 128 && std::isupper(byte) != 0) << byte;
    EXPECT_EQ(isLowerLetter(c), byte < 128 && std::islower(byte) != 0) << byte;
    EXPECT_EQ(isLetter(c), byte < 128 && std::isalpha(byte) != 0) << byte;
    EXPECT_EQ(isLetterOrDigit(c), byte < 128 && std::isalnum(byte) != 0) << byte;
    EXPECT_EQ(isASCII(c), byte < 128) << byte;
  }
}

TEST(ASCII, ClassesTakeUnitsOfUTF16AsWell) {
  EXPECT_TRUE(isDigit(u'7'));
  EXPECT_FALSE(isDigit(u'\u0667'));   // ARABIC-INDIC DIGIT SEVEN
  EXPECT_FALSE(isLetter(U'\u0141'));  // its low byte is that of "A"
}

TEST(ASCII, CaseOfEachByteChangesForLettersAlone) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const bool isCased = byte < 128 && std::isalpha(byte) != 0;
    EXPECT_EQ(lowerASCII(c), isCased ? static_cast<char>(std::tolower(byte)) : c) << byte;
    EXPECT_EQ(upperASCII(c), isCased ? static_cast<char>(std::toupper(byte)) : c) << byte;
  }
}

TEST(ASCII, LowersTheLettersOfATextAndKeepsItsOtherBytes) {
  EXPECT_EQ(lowerASCII("MiXeD \xC3\x89 [@Z"), "mixed \xC3\x89 [@z");
  EXPECT_EQ(lowerASCII(std::string_view("A\0B", 3)), std::string("a\0b", 3));
}

TEST(ASCII, ATextIsASCIIWhenEachByteIs) {
  EXPECT_TRUE(isASCII(""));
  EXPECT_TRUE(isASCII("\x7F\t~"));
  EXPECT_FALSE(isASCII("caf\xC3\xA9"));
  EXPECT_FALSE(isASCII("\x80"));
}

TEST(ASCII, ComparesWithoutCase) {
  EXPECT_TRUE(equalsIgnoringCase("InFinity", "iNFINITY"));
  EXPECT_FALSE(equalsIgnoringCase("inf", "infinity"));
  EXPECT_FALSE(equalsIgnoringCase("@", "`"));  // apart by the bit that case is
  EXPECT_TRUE(equalsLower("UNTIL", "until"));
  EXPECT_FALSE(equalsLower("until", "UNTIL"));
}

}  // namespace
}  // namespace ORLFoundation::internal::base
