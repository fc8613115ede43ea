
#include <ORLFoundation/platform/text/NSRegularExpression.h>

#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

namespace ORLFoundation {
namespace {

std::optional<std::string> replace(std::string_view pattern, std::string_view text,
                                   std::string_view with, NSUInteger options = 0) {
  const auto expression = NSRegularExpression::initWithPattern(pattern, options);
  return expression ? expression->stringByReplacingMatchesInString(text, with) : std::nullopt;
}

struct ReplaceCase {
  std::string_view name, pattern, text, with, answer;
  NSUInteger options = 0;
};
const ReplaceCase kReplacements[] = {
    {"NoMatch", "x", "abc", "-", "abc"},
    {"NothingToRead", "x", "", "-", ""},
    {"EmptyMatches", "x*", "axxb", "-", "-a--b-"},
    {"Groups", "(a)(b)", "ab", "$2$1", "ba"},
    {"WholeMatch", "a+", "caat", "<$0>", "c<aa>t"},
    {"AsManyDigitsAsNameAGroup", R"((\d+))", "a12", "$10", "a120"},
    {"LeadingZeros", "(a)", "a", "$01", "a"},
    {"TwoDigits", "(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", "abcdefghij", "$10$1", "ja"},
    {"NoSuchGroup", "(a)", "a", "[$7]", "[]"},
    {"GroupWithoutPart", "(a)|(b)", "b", "[$1]", "[]"},
    {"NamedGroup", "(?<n>a)", "a", "${n}${n}", "aa"},
    {"NoSuchName", "(?<n>a)", "a", "${m}", "${m}"},
    {"OpenBrace", "a", "a", "${n", "${n"},
    {"DollarAlone", "a", "a", "$ $x$", "$ $x$"},
    {"Escapes", "a", "a", R"(\$0\\\n)", R"($0\n)"},
    {"EscapeAtTheEnd", "a", "a", R"(b\)", "b"},
    {"NamedCharacters", "a", "a", R"(\u00e9\U0001F600\u12)", "é😀u12"},
    {"BeyondTheFirstPlane", "😀", "a😀b", ":)", "a:)b"},
    {"BrokenBytes", "x", "a\xFFx", "y", "a\xEF\xBF\xBDy"},
    {"AnyCase", "B", "abcB", "x", "axcx", NSRegularExpressionCaseInsensitive},
    {"Comments", "a b # c", "ab", "x", "x", NSRegularExpressionAllowCommentsAndWhitespace},
    {"Literal", "a.b", "a.b axb", "z", "z axb", NSRegularExpressionIgnoreMetacharacters},
    {"DotTakesLines", "a.c", "a\nc", "x", "x", NSRegularExpressionDotMatchesLineSeparators},
    {"DotTakesNoLines", "a.c", "a\nc", "x", "a\nc"},
    {"AnchorsAtLines", "^x", "x\nx", "y", "y\ny", NSRegularExpressionAnchorsMatchLines},
    {"AnchorsAtTheText", "^x", "x\nx", "y", "y\nx"},
    {"UnixLines", "a.c", "a\rc", "x", "x", NSRegularExpressionUseUnixLineSeparators},
    {"OtherBits", "B", "abcB", "x", "abcx", NSUInteger{1} << 40},
};

TEST(NSRegularExpression, ReplacesWhatFits) {
  for (const ReplaceCase& row : kReplacements)
    EXPECT_EQ(replace(row.pattern, row.text, row.with, row.options), row.answer) << row.name;
}

TEST(NSRegularExpression, TakesWordsAsUnicodeHasThem) {
  EXPECT_EQ(replace(R"(\b)", "don't", "|"), "|don|'|t|");
  EXPECT_EQ(replace(R"(\b)", "don't", "|", NSRegularExpressionUseUnicodeWordBoundaries), "|don't|");
}

TEST(NSRegularExpression, RefusesWhatIsNoPattern) {
  for (const std::string_view pattern : {"", "(", "[", "a{2", "*", R"(\p{Nothing})"}) {
    std::shared_ptr<const NSError> error;
    EXPECT_EQ(NSRegularExpression::initWithPattern(pattern, 0, &error), nullptr) << pattern;
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), NSRegularExpressionPatternError);
    EXPECT_EQ(error->localizedDescription(),
              "The value “" + std::string(pattern) + "” is invalid.");
  }
}

TEST(NSRegularExpression, EscapesEachCharacterThatMeansSomething) {
  EXPECT_EQ(NSRegularExpression::escapedPatternForString(R"(*?+[(){}^$|\./)"),
            R"(\*\?\+\[\(\)\{\}\^\$\|\\\.\/)");
  EXPECT_EQ(NSRegularExpression::escapedPatternForString("a #-]&~\"日"), "a #-]&~\"日");
  EXPECT_EQ(NSRegularExpression::escapedTemplateForString(R"(a$1\b{})"), R"(a\$1\\b{})");
}

TEST(NSRegularExpression, FitsTheTextThatWasEscaped) {
  for (int c = 1; c < 0x80; ++c) {
    const std::string text = std::string("a") + static_cast<char>(c) + "b";
    EXPECT_EQ(replace(NSRegularExpression::escapedPatternForString(text), "<" + text + ">",
                      NSRegularExpression::escapedTemplateForString(text + text)),
              "<" + text + text + ">")
        << c;
  }
}

TEST(NSRegularExpression, GivesUpInsteadOfTakingForEver) {
  const auto expression = NSRegularExpression::initWithPattern("(a+)+$", 0);
  std::shared_ptr<const NSError> error;
  const double seconds = orlftest::processorSecondsOf([&] {
    EXPECT_EQ(expression->stringByReplacingMatchesInString(std::string(60, 'a') + "b", "x", &error),
              std::nullopt);
  });
  EXPECT_LT(seconds, 2);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->code(), NSRegularExpressionLimitError);
}

TEST(NSRegularExpression, GivesUpWhereEveryPlaceReadsOn) {
  // No way back is kept, so that only the places where a match may begin are counted.
  const std::string text(1 << 20, 'x');
  const double seconds = orlftest::processorSecondsOf(
      [&] { EXPECT_EQ(replace("x[^,]*+y", text, "-"), std::nullopt); });
  EXPECT_LT(seconds, 5);
}

TEST(NSRegularExpression, GivesUpWhereTheWayBackIsTooLong) {
  EXPECT_EQ(replace("(?:a|b)*c", std::string(2'000'000, 'a'), "-"), std::nullopt);
}

TEST(NSRegularExpression, TakesLongTexts) {
  std::string text, answer;
  for (int i = 0; i < 100'000; ++i) {
    text += "name=value" + std::to_string(i) + "&";
    answer += "name=***&";
  }
  EXPECT_EQ(replace("name=[^&]*", text, "name=***"), answer);
}

TEST(NSRegularExpression, EqualsOneOfTheSamePatternAndOptions) {
  const auto one = NSRegularExpression::initWithPattern("(a)(b)", 1);
  EXPECT_TRUE(one->isEqual(NSRegularExpression::initWithPattern("(a)(b)", 1).get()));
  EXPECT_EQ(one->hash(), NSRegularExpression::initWithPattern("(a)(b)", 1)->hash());
  EXPECT_FALSE(one->isEqual(NSRegularExpression::initWithPattern("(a)(b)", 0).get()));
  EXPECT_FALSE(one->isEqual(NSRegularExpression::initWithPattern("(a)b", 1).get()));
  EXPECT_FALSE(one->isEqual(nullptr));
  EXPECT_EQ(one->copy(), one);
  EXPECT_EQ(one->pattern(), "(a)(b)");
  EXPECT_EQ(one->options(), 1U);
  EXPECT_EQ(one->numberOfCaptureGroups(), 2U);
}

}  // namespace
}  // namespace ORLFoundation
