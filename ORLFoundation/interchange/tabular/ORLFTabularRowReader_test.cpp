#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>

#include <ORLFoundation/interchange/tabular/internal/ORLFRowParser.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <malloc.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

using Row = std::pair<std::uint64_t, std::vector<std::string>>;
using Rows = std::vector<Row>;

ORLFTabularRowBlock keepIn(Rows& rows) {
  return [&rows](const ORLFTabularRow& row, bool&) {
    rows.emplace_back(row.lineNumber,
                      std::vector<std::string>(row.fields.begin(), row.fields.end()));
  };
}

Rows rowsOf(std::string_view text, char separator) {
  Rows rows;
  orlfEnumerateTabularRows(text, separator, keepIn(rows));
  return rows;
}

/// Hands out a text in pieces of one size.
ORLFTabularSource piecesOf(std::string_view text, std::size_t size) {
  return [text, size](std::span<char> buffer) mutable {
    const std::size_t count = std::min({size, buffer.size(), text.size()});
    std::copy_n(text.begin(), count, buffer.begin());
    text.remove_prefix(count);
    return count;
  };
}

TEST(ORLFTabularRowReader, CountsLines) {
  EXPECT_EQ(rowsOf("a\r\n\r\n\"b\nc\"\rd\n\n\xE2\x80\xA8"
                   "e",
                   ','),
            (Rows{{1, {"a"}}, {3, {"b\nc"}}, {5, {"d"}}, {8, {"e"}}}));
}

TEST(ORLFTabularRowReader, KeepsEmptyColumnsBetweenTabs) {
  EXPECT_EQ(rowsOf("a\t\t b\t\"c\td\"\n", '\t'), (Rows{{1, {"a", "", "b", "c\td"}}}));
}

TEST(ORLFTabularRowReader, KeepsEmptyColumnsBetweenBlanks) {
  EXPECT_EQ(rowsOf("a  b", ' '), (Rows{{1, {"a", "", "b"}}}));
}

TEST(ORLFTabularRowReader, RefusesWhatCanSeparateNothing) {
  for (const char separator : {'"', '\n', '\v', '\f', '\r', '\xC2', '\xE2', '\x80'})
    EXPECT_THROW(rowsOf("a", separator), NSException) << static_cast<int>(separator);
}

TEST(ORLFTabularRowReader, EndsWhereTheBlockStops) {
  int calls = 0;
  const auto block = [&calls](const ORLFTabularRow&, bool& stop) { stop = ++calls == 2; };
  orlfEnumerateTabularRows("a\nb\nc\n", ',', block);
  EXPECT_EQ(calls, 2);
  calls = 0;
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf("a\nb\nc\n", 1), ',', block));
  EXPECT_EQ(calls, 2);
}

TEST(ORLFTabularRowReader, GivesFieldsOfManyPieces) {
  EXPECT_EQ(rowsOf("\"a\"\"b\"c\"d\",\"\"\"\",x\"\"y,\"q\"\n", ','),
            (Rows{{1, {"a\"bcd", "\"", "xy", "q"}}}));
}

TEST(ORLFTabularRowReader, PassesBrokenBytesThrough) {
  EXPECT_EQ(rowsOf("\xC2,\xE2\x80,\xFF", ','), (Rows{{1, {"\xC2", "\xE2\x80", "\xFF"}}}));
}

TEST(ORLFTabularRowReader, ReadsAZeroByteAsACharacter) {
  EXPECT_EQ(rowsOf(std::string_view("a\0b,c", 5), ','), (Rows{{1, {std::string("a\0b", 3), "c"}}}));
}

// The characters are written as bytes in the parser, for speed.
TEST(ORLFTabularRowReader, KnowsEveryLineEndAndWhiteSpace) {
  const auto lineEnds = NSCharacterSet::newlineCharacterSet();
  const auto blanks = NSCharacterSet::whitespaceCharacterSet();
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) continue;
    std::string text;
    internal::base::appendUTF8(text, character);
    const std::size_t length = text.size();
    text += 'x';
    ASSERT_EQ(internal::tabular::lengthOfLineEnd(text),
              lineEnds->longCharacterIsMember(character) ? length : 0)
        << static_cast<std::uint32_t>(character);
    ASSERT_EQ(internal::tabular::lengthOfWhitespace(text),
              blanks->longCharacterIsMember(character) ? length : 0)
        << static_cast<std::uint32_t>(character);
  }
}

constexpr std::string_view kMixed =
    " \r\n\xE2\x80\xA9 day;\"amount;\"\"in\"\" €\";\xE2\x80\x83note\r\n\r\n"
    "1;\"two\r\nlines\"\"\";\xC2\xA0\xC2\x85\xC2\xE2\x80;;x\r";

TEST(ORLFTabularRowReader, ReadsPiecesOfEverySizeAlike) {
  Rows whole;
  orlfEnumerateTabularRows(kMixed, ';', keepIn(whole));
  ASSERT_EQ(whole.size(), 4U);
  for (std::size_t size = 1; size <= kMixed.size(); ++size) {
    Rows rows;
    EXPECT_TRUE(
        orlfEnumerateTabularRowsOfSource(piecesOf(kMixed, size), std::nullopt, keepIn(rows)));
    EXPECT_EQ(rows, whole) << size;
  }
}

TEST(ORLFTabularRowReader, ReadsLongSourcesAsTheirText) {
  std::mt19937 random(7);
  std::string text;
  while (text.size() < 3'000'000) {
    const auto choice = random() % 12;
    text += choice < 6    ? "abc"
            : choice < 9  ? ","
            : choice < 10 ? R"("x,""y")"
            : choice < 11 ? "\r\n"
                          : "é";
  }
  Rows rows;
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf(text, 65'521), ',', keepIn(rows)));
  EXPECT_EQ(rows, rowsOf(text, ','));
}

struct LimitCase {
  std::string_view name;
  std::string text;
  std::uint64_t refusedLine;
  std::size_t rowsBefore;
};

TEST(ORLFTabularRowReader, RefusesLongRowsWithTheirLine) {
  constexpr std::size_t kLimit = 1000;
  const std::string row(kLimit - 1, 'a');
  const LimitCase cases[] = {
      {"OfTheFirstLine", std::string(2 * kLimit, 'a'), 1, 0},
      {"OfOneByteTooMany", "a\n\nb\n" + row + "a\n", 4, 2},
      {"WithoutAnEnd", "a\n" + std::string(1 << 20, 'b'), 2, 1},
      {"WithoutAClosingMark", "a\n\"" + std::string(1 << 20, '\n'), 2, 1},
  };
  for (const LimitCase& each : cases) {
    Rows rows;
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(orlfEnumerateTabularRowsOfSource(piecesOf(each.text, 300), ',', keepIn(rows),
                                                  {.longestRow = kLimit}, &error))
        << each.name;
    ASSERT_NE(error, nullptr) << each.name;
    EXPECT_EQ(error->domain(), ORLFErrorDomain);
    EXPECT_EQ(error->code(), ORLFTabularLongRowError);
    EXPECT_EQ(error->localizedDescription(),
              "The row on line " + std::to_string(each.refusedLine) + " is longer than 1000 bytes.")
        << each.name;
    EXPECT_EQ(rows.size(), each.rowsBefore) << each.name;
  }
}

TEST(ORLFTabularRowReader, RefusesRowsOfTooManyFieldsWithTheirLine) {
  for (const std::string_view text : {"a\nb,c,d,e\nf\n", "a\nb,c,d,,\n", "a\nb,c,d,\"e"}) {
    Rows rows;
    std::shared_ptr<const NSError> error;
    EXPECT_FALSE(orlfEnumerateTabularRowsOfSource(piecesOf(text, 3), ',', keepIn(rows),
                                                  {.mostFields = 3}, &error))
        << text;
    ASSERT_NE(error, nullptr) << text;
    EXPECT_EQ(error->code(), ORLFTabularLongRowError);
    EXPECT_EQ(error->localizedDescription(), "The row on line 2 has more than 3 fields.");
    EXPECT_EQ(rows, (Rows{{1, {"a"}}})) << text;
  }
}

TEST(ORLFTabularRowReader, TakesRowsOfTheMostFields) {
  Rows rows;
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf("a,b,c\nd,e,f,\n\"\",,\"g\"", 2), ',',
                                               keepIn(rows), {.mostFields = 3}));
  EXPECT_EQ(rows, (Rows{{1, {"a", "b", "c"}}, {2, {"d", "e", "f"}}, {3, {"", "", "g"}}}));
}

TEST(ORLFTabularRowReader, ReadsAHundredThousandColumns) {
  constexpr std::size_t kColumns = 100'000;
  std::string text;
  for (std::size_t column = 0; column < kColumns; ++column)
    text += column % 2 == 0 ? "x," : R"("y""z",)";
  Rows rows;
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf(text, 4096), ',', keepIn(rows)));
  ASSERT_EQ(rows.size(), 1U);
  ASSERT_EQ(rows[0].second.size(), kColumns);
  EXPECT_EQ(rows[0].second[kColumns - 2], "x");
  EXPECT_EQ(rows[0].second[kColumns - 1], "y\"z");
}

TEST(ORLFTabularRowReader, TellsWhereTheTextEndsBetweenMarks) {
  std::vector<bool> ends;
  const auto block = [&ends](const ORLFTabularRow& row, bool&) { ends.push_back(row.endsInMarks); };
  orlfEnumerateTabularRows("a,\"b\"\n\"c\nd\n", ',', block);
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf("\"a\"\"\n\"", 1), ',', block));
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf("\"a\"\"", 1), ',', block));
  EXPECT_EQ(ends, (std::vector<bool>{false, true, false, true}));
}

TEST(ORLFTabularRowReader, ReadsALongRowOfSmallPiecesInTimeThatGrowsWithIt) {
  const std::string text = "\"" + std::string(std::size_t{24} << 20, '\n');
  Rows rows;
  const double seconds = orlftest::processorSecondsOf([&] {
    EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf(text, 1024), ',', keepIn(rows)));
  });
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].second[0].size(), text.size() - 1);
  EXPECT_LT(seconds, 10);
}

/// What the heap holds, in bytes. Sanitizers have heaps of their own, of which this tells nothing.
std::size_t heldBytes() {
  const struct mallinfo2 held = mallinfo2();
  return held.uordblks + held.hblkhd;
}

// Rows in which the one long field that is joined of pieces moves on by a field each time.
TEST(ORLFTabularRowReader, HoldsNoMoreThanItsLimitAllows) {
  constexpr std::size_t kLimit = std::size_t{1} << 20;
  constexpr std::size_t kRows = 100;
  const std::string longField = R"(")" + std::string(kLimit / 2, 'x') + R"(""")";
  const std::size_t before = heldBytes();
  std::size_t made = 0;
  std::size_t most = 0;
  std::string row;
  const auto source = [&](std::span<char> buffer) {
    if (row.empty() && made < kRows) {
      for (std::size_t field = 0; field < made; ++field) row += R"("a""",)";
      row += longField + "\n";
      ++made;
    }
    const std::size_t count = std::min(buffer.size(), row.size());
    std::copy_n(row.begin(), count, buffer.begin());
    row.erase(0, count);
    most = std::max(most, heldBytes() - std::min(before, heldBytes()));
    return count;
  };
  std::size_t rows = 0;
  const auto count = [&rows](const ORLFTabularRow& each, bool&) {
    ++rows;
    EXPECT_EQ(each.fields.size(), rows);
  };
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(source, ',', count, {.longestRow = kLimit}));
  EXPECT_EQ(rows, kRows);
  EXPECT_LT(most, 8 * kLimit);
}

TEST(ORLFTabularRowReader, TakesRowsOfTheLongestLength) {
  const std::string row(999, 'a');
  Rows rows;
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf(row + "\n" + row, 300), ',', keepIn(rows),
                                               {.longestRow = 1000}));
  EXPECT_EQ(rows, (Rows{{1, {row}}, {2, {row}}}));
}

TEST(ORLFTabularRowReader, RefusesALongFirstLineWhenItDecides) {
  const std::string text = std::string(1 << 20, ' ') + "a;b\n";
  Rows rows;
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(orlfEnumerateTabularRowsOfSource(piecesOf(text, 4096), std::nullopt, keepIn(rows),
                                                {.longestRow = 1000}, &error));
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->localizedDescription(), "The row on line 1 is longer than 1000 bytes.");
  EXPECT_TRUE(rows.empty());
  const std::string below = "\r\n\n" + std::string(2000, 'a') + ";b\n";
  EXPECT_FALSE(orlfEnumerateTabularRowsOfSource(piecesOf(below, 64), std::nullopt, keepIn(rows),
                                                {.longestRow = 1000}, &error));
  EXPECT_EQ(error->localizedDescription(), "The row on line 3 is longer than 1000 bytes.");
}

TEST(ORLFTabularRowReader, PassesAMillionBlankLines) {
  for (const char lineEnd : {'\n', '\r'}) {
    Rows rows;
    const std::string text = std::string(1'000'000, lineEnd) + "a\n";
    EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf(text, 4096), ',', keepIn(rows),
                                                 {.longestRow = 1000}));
    EXPECT_EQ(rows, (Rows{{1'000'001, {"a"}}}));
  }
}

TEST(ORLFTabularRowReader, ReadsNothingOfNothing) {
  Rows rows;
  EXPECT_TRUE(orlfEnumerateTabularRowsOfSource(piecesOf("", 1), std::nullopt, keepIn(rows)));
  EXPECT_TRUE(rows.empty());
}

TEST(ORLFTabularSeparator, IsASemicolonWhereTheFirstLineHoldsOne) {
  EXPECT_EQ(orlfTabularSeparator("a,b\nc;d"), ',');
  EXPECT_EQ(orlfTabularSeparator("\n \xE2\x80\xA8 a;b"), ';');
  EXPECT_EQ(orlfTabularSeparator("\"a;b\""), ';');
  EXPECT_EQ(orlfTabularSeparator("a\xC2\x85;"), ',');
  EXPECT_EQ(orlfTabularSeparator(""), ',');
  EXPECT_EQ(orlfTabularSeparator("a\tb"), ',');
}

}  // namespace
}  // namespace ORLFoundation
