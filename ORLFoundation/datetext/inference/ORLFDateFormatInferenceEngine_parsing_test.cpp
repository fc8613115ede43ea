// How texts are taken apart, beside a plain transcription of the steps.
#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSStringNumbers.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {
namespace {

/// The three numbers of a text, and whether they are a date's; empty where they were left alone.
struct Numbers {
  std::vector<NSUInteger> numbers;
  bool isDate = false;
  bool operator==(const Numbers&) const = default;
};

Numbers numbersOf(const ORLFDateFormatInferenceEngine& engine, std::string_view text) {
  constexpr NSUInteger kUntouched = 0x5EED5EED5EED5EED;
  NSUInteger first = kUntouched, second = kUntouched, third = kUntouched;
  const bool isDate = engine.parseDate(text, &first, &second, &third);
  if (first == kUntouched && second == kUntouched && third == kUntouched) return {{}, isDate};
  return {{first, second, third}, isDate};
}

struct ParsingCase {
  std::string_view text;
  std::vector<NSUInteger> numbers;
  bool isDate;
};
const ParsingCase kParsingCases[] = {
    {"13/02", {}, false},
    {"", {}, false},
    {" / ", {}, false},
    {"3/4'21", {3, 4, 2021}, true},
    {"3/4'99", {3, 4, 2099}, true},
    {"3/4'100", {3, 4, 100}, true},
    {"3'4/21", {3, 4, 21}, true},
    // A negative number is no small one: its pattern is far above 100.
    {"3/4' -5", {3, 4, static_cast<NSUInteger>(-5)}, true},
    {" \t\r\n3/4/5\u2028\u00A0", {3, 4, 5}, true},
    {"3/\n 4 /5", {3, 4, 0}, true},
    {"3 / 4 / 5", {3, 4, 0}, true},
    {"3/4/5 10:30", {3, 4, 5}, true},
    {"3.4.5", {3, 4, 5}, true},
    {"3-4-5", {3, 4, 5}, true},
    {"3/-4/-5", {3, 4, static_cast<NSUInteger>(-5)}, true},
    {"x/4/5", {0, 4, 5}, false},
    {"3/x/5", {3, 0, 5}, false},
    {"3/4/x", {3, 4, 0}, false},
    {"x3/4/5", {0, 4, 5}, true},
    // Digits of another script are digits, but no number.
    {"٣/4/5", {0, 4, 5}, true},
    {"18446744073709551616/9223372036854775807/9223372036854775808",
     {INT64_MAX, INT64_MAX, INT64_MAX},
     true},
    {"3/4\xFF/5", {3, 4, 5}, true},
    {"\xFF/4/\xC3", {0, 4, 0}, false},
};

TEST(ORLFDateFormatInferenceEngine, PartsATextAtItsFirstTwoSeparators) {
  for (const ParsingCase& row : kParsingCases) {
    ORLFDateFormatInferenceEngine engine;
    EXPECT_EQ(numbersOf(engine, row.text), (Numbers{row.numbers, row.isDate})) << row.text;
    EXPECT_EQ(engine.processDateString(row.text), row.isDate) << row.text;
    EXPECT_TRUE(row.isDate || engine.bits() == 511) << row.text;
  }
}

TEST(ORLFDateFormatInferenceEngine, LeavesOutOutputsThatAreNotWanted) {
  const ORLFDateFormatInferenceEngine engine;
  NSUInteger number = 0;
  EXPECT_TRUE(engine.parseDate("3/4'21", nullptr, nullptr, &number));
  EXPECT_EQ(number, 2021U);
  EXPECT_TRUE(engine.parseDate("3/4'21", nullptr, &number, nullptr));
  EXPECT_EQ(number, 4U);
  EXPECT_TRUE(engine.parseDate("3/4'21", &number, nullptr, nullptr));
  EXPECT_EQ(number, 3U);
}

/// The steps word for word, on code points.
class ParseByTheLetter {
 public:
  ParseByTheLetter(std::string_view separators, std::string_view y2k)
      : y2k_(codePoints(y2k)), all_(codePoints(separators) + y2k_) {}

  [[nodiscard]] Numbers operator()(std::string_view string) const {
    const auto isSpace = [](char32_t c) {
      return NSCharacterSet::whitespaceAndNewlineCharacterSet()->longCharacterIsMember(c);
    };
    const auto isSeparator = [this](char32_t c) { return all_.find(c) != all_.npos; };
    const std::u32string text = trimmed(codePoints(string), isSpace);
    const std::size_t first = text.find_first_of(all_);
    if (first == text.npos) return {};
    const std::u32string rest = trimmed(trimmed(text.substr(first + 1), isSpace), isSeparator);
    const std::size_t second = rest.find_first_of(all_);
    if (second == rest.npos) return {};
    const std::u32string parts[]{text.substr(0, first), rest.substr(0, second),
                                 rest.substr(second + 1)};
    Numbers answer{{}, true};
    for (const std::u32string& part : parts) {
      answer.numbers.push_back(static_cast<NSUInteger>(integerValue(utf8(part))));
      answer.isDate = answer.isDate && std::any_of(part.begin(), part.end(), [](char32_t c) {
                        return NSCharacterSet::decimalDigitCharacterSet()->longCharacterIsMember(c);
                      });
    }
    const bool isMarked = y2k_.find(rest[second]) != y2k_.npos;
    if (isMarked && answer.numbers[2] < 100) answer.numbers[2] += 2000;
    return answer;
  }

 private:
  static std::u32string codePoints(std::string_view text) {
    std::u32string points;
    while (!text.empty()) {
      const auto character = internal::base::firstUTF8Character(text);
      points += character.codePoint;
      text.remove_prefix(character.length);
    }
    return points;
  }
  static std::string utf8(const std::u32string& points) {
    std::string text;
    for (const char32_t point : points) internal::base::appendUTF8(text, point);
    return text;
  }
  template <class Test>
  static std::u32string trimmed(std::u32string text, Test isMember) {
    while (!text.empty() && isMember(text.front())) text.erase(0, 1);
    while (!text.empty() && isMember(text.back())) text.pop_back();
    return text;
  }

  std::u32string y2k_, all_;
};

TEST(ORLFDateFormatInferenceEngine, PartsTextsByTheLetter) {
  const std::vector<std::string> pieces{
      "1", "12", "99", "2021",   "0",    "/",        "/",        "-",
      ".", ":",  " ",  "'",      "\t",   "\n",       "+",        "x",
      "٣", "é",  "😀",  "\u2028", "\xFF", "\xE2\x82", "\xC0\x80", "9999999999999999999"};
  const std::pair<std::string_view, std::string_view> sets[]{
      {"/: -.", "'"}, {"|é", "😀"}, {"", "'"}, {"/", "/"}, {"\uFFFD", ""}, {"1", "x"}};
  std::mt19937 random(52);
  for (const auto& [separators, y2k] : sets) {
    ORLFDateFormatInferenceEngine engine;
    engine.setDateSeperatorCharacterSet(
        NSCharacterSet::characterSetWithCharactersInString(separators));
    engine.setDateY2KSeperatorCharacterSet(NSCharacterSet::characterSetWithCharactersInString(y2k));
    const ParseByTheLetter parse(separators, y2k);
    for (int round = 0; round < 40'000; ++round) {
      std::string text;
      for (std::size_t count = random() % 12; count > 0; --count)
        text += pieces[random() % pieces.size()];
      ASSERT_EQ(numbersOf(engine, text), parse(text)) << text;
    }
  }
}

TEST(ORLFDateFormatInferenceEngine, NoSetIsNoCharacter) {
  ORLFDateFormatInferenceEngine engine;
  engine.setDateY2KSeperatorCharacterSet(nullptr);
  EXPECT_EQ(numbersOf(engine, "3/4'21"), Numbers());
  EXPECT_EQ(numbersOf(engine, "3/4/21"), (Numbers{{3, 4, 21}, true}));
  engine.setDateSeperatorCharacterSet(nullptr);
  EXPECT_FALSE(engine.processDateString("3/4/21"));
  engine.setDateY2KSeperatorCharacterSet(NSCharacterSet::characterSetWithCharactersInString("'"));
  EXPECT_EQ(numbersOf(engine, "3'4'21"), (Numbers{{3, 4, 2021}, true}));
  engine.setAllDateSeperatorCharacterSet(nullptr);
  EXPECT_FALSE(engine.processDateString("3'4'21"));
  EXPECT_EQ(engine.dateInferredFromString("3'4'21"), std::nullopt);
}

TEST(ORLFDateFormatInferenceEngine, AMegabyteIsReadInOnePass) {
  ORLFDateFormatInferenceEngine engine;
  const std::string digits(1 << 20, '7');
  EXPECT_EQ(numbersOf(engine, digits), Numbers());
  EXPECT_EQ(numbersOf(engine, "1/2/" + digits), (Numbers{{1, 2, INT64_MAX}, true}));
  for (const char* piece : {"/", " ", "-", "1/", "'", "\xF0\x9F\x98\x80", "\xFF", "٣", "\u2028"}) {
    std::string text;
    while (text.size() < (1 << 20)) text += piece;
    const double seconds = orlftest::processorSecondsOf([&] {
      static_cast<void>(engine.processDateString(text));
      static_cast<void>(engine.dateInferredFromString(text));
    });
    EXPECT_LT(seconds, 2) << piece;
  }
}

}  // namespace
}  // namespace ORLFoundation
