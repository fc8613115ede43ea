
#include <ORLFoundation/platform/text/NSStringCase.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

namespace ORLFoundation {
namespace {

struct CaseCase {
  std::string_view text, upper, lower, capitalized;
};
const CaseCase kCaseCases[] = {
    {"", "", "", ""},
    {"hELLO wORLD", "HELLO WORLD", "hello world", "Hello World"},
    {"it's o’clock", "IT'S O’CLOCK", "it's o’clock", "It's O’clock"},
    {"jean-luc a.b x_y", "JEAN-LUC A.B X_Y", "jean-luc a.b x_y", "Jean-Luc A.B X_Y"},
    {"3rd ab12cd", "3RD AB12CD", "3rd ab12cd", "3Rd Ab12Cd"},
    {"straße", "STRASSE", "straße", "Straße"},
    {"ßa", "SSA", "ßa", "Ssa"},
    {"ﬁne", "FINE", "ﬁne", "Fine"},
    {"ǆ ǆ", "Ǆ Ǆ", "ǆ ǆ", "ǅ ǅ"},
    {"İstanbul", "İSTANBUL", "i̇stanbul", "İstanbul"},
    {"ΟΔΟΣ", "ΟΔΟΣ", "οδος", "Οδος"},
    {"e\u0301lan", "E\u0301LAN", "e\u0301lan", "E\u0301lan"},
    {"日本a", "日本A", "日本a", "日本A"},
    {"a\u00ADb c^d", "A\u00ADB C^D", "a\u00ADb c^d", "A\u00ADb C^d"},
    {"c^d", "C^D", "c^d", "C^d"},
    {"a\xFF"
     "b",
     "A\uFFFDB", "a\uFFFDb", "A\uFFFDB"},
};

TEST(NSStringCase, MapsCase) {
  for (const CaseCase& row : kCaseCases) {
    EXPECT_EQ(uppercaseString(row.text), row.upper);
    EXPECT_EQ(lowercaseString(row.text), row.lower);
    EXPECT_EQ(capitalizedString(row.text), row.capitalized);
  }
}

TEST(NSStringCase, FollowsALanguage) {
  EXPECT_EQ(capitalizedStringWithLocale("izmir ILICA", "tr_TR"), "İzmir Ilıca");
  EXPECT_EQ(capitalizedStringWithLocale("izmir", "az"), "İzmir");
  EXPECT_EQ(capitalizedStringWithLocale("ijsland", "nl_NL"), "IJsland");
  EXPECT_EQ(capitalizedStringWithLocale("izmir ijs", "en_US"), "Izmir Ijs");
  EXPECT_EQ(capitalizedStringWithLocale("izmir", ""), "Izmir");
  EXPECT_EQ(capitalizedStringWithLocale("izmir", "no such locale"), "Izmir");
}

TEST(NSStringCase, RefusesTextsThatAreTooLong) {
  // Pages of zeros that are never written to take no memory.
  constexpr std::size_t kSize = std::size_t{1} << 29;
  void* const pages = ::mmap(nullptr, kSize, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(pages, MAP_FAILED);
  const std::string_view text(static_cast<const char*>(pages), kSize);
  static_cast<char*>(pages)[0] = '\xC3';
  EXPECT_THROW(static_cast<void>(uppercaseString(text)), NSException);
  ::munmap(pages, kSize);
}

}  // namespace
}  // namespace ORLFoundation
