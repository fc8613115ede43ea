
#include <ORLFoundation/web/logging/ORLFURLSessionLogReplacement.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/text/NSRegularExpression.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <random>

namespace ORLFoundation {
namespace {

using Replacement = ORLFURLSessionLogReplacement;

std::optional<std::string> masked(std::string_view name, std::string_view value,
                                  const std::string& text) {
  return Replacement::initWithJSONFieldName(name, value)->process(text);
}

struct FieldCase {
  std::string_view name, field, value, text, answer;
};
const FieldCase kFields[] = {
    {"Text", "pass", "xxx", R"({"pass":"secret"})", R"({"pass":"xxx"})"},
    {"Number", "pass", "xxx", R"({"pass":123,"a":1})", R"({"pass":"xxx","a":1})"},
    {"Null", "pass", "xxx", R"({"pass":null})", R"({"pass":"xxx"})"},
    {"Blanks", "pass", "xxx", R"({ "pass" : "s" })", R"({ "pass" :"xxx"})"},
    {"EveryDepth", "p", "x", R"({"a":{"p":1},"b":[{"p":2}]})",
     R"({"a":{"p":"x"},"b":[{"p":"x"}]})"},
    {"ShowsWhatFollowsAComma", "p", "x", R"({"p":"a,b"})", R"({"p":"x",b"})"},
    {"DollarAndBackslash", "p", R"(a$1\b)", R"({"p":1})", R"({"p":"a$1\b"})"},
    {"CaseCounts", "p", "x", R"({"P":1})", R"({"P":1})"},
    {"NoColon", "p", "x", R"(["p" , "p"])", R"(["p" , "p"])"},
    {"NothingBehindTheColon", "p", "x", R"("p":)", R"("p":"x")"},
    {"NameOfSigns", R"(a.*[$\d)", "x", R"({"a.*[$\d":1,"abc":2})", R"({"a.*[$\d":"x","abc":2})"},
    {"EmptyName", "", "x", R"({"":1})", R"({"":"x"})"},
    {"KeyWithinItself", R"(a"a)", "x", R"("a"a"a":1)", R"("a"a"a":"x")"},
    {"KeyWithinAValue", "p", "x", R"({"p":"p":1,"q":2})", R"({"p":"x","q":2})"},
    {"OtherBlanks", "p", "x", "\"p\"\u00A0\u2003\n:1", "\"p\"\u00A0\u2003\n:\"x\""},
    {"EmptyText", "p", "x", "", ""},
};

TEST(ORLFURLSessionLogReplacement, MasksFields) {
  for (const FieldCase& row : kFields)
    EXPECT_EQ(masked(row.field, row.value, std::string(row.text)), row.answer) << row.name;
}

TEST(ORLFURLSessionLogReplacement, MakesTheExpressionOfAField) {
  const auto mask = Replacement::initWithJSONFieldName("a.b", R"(x$\)");
  EXPECT_EQ(mask->expression()->pattern(), R"(("a\.b"\s*?:\s*?)([^,\]\}]*))");
  EXPECT_EQ(mask->expression()->options(), 0U);
  EXPECT_EQ(mask->replacement(), R"($1"x\$\\")");
}

/// What the expression of the mask makes of a text.
std::optional<std::string> byExpression(Replacement& mask, std::string_view text) {
  return mask.expression()->stringByReplacingMatchesInString(text, mask.replacement());
}

TEST(ORLFURLSessionLogReplacement, MasksFieldsAsTheExpressionDoes) {
  const std::string_view parts[] = {"\"",     "a",      "\"a\"",  "\"aa\"", ":",      " ",
                                    "\t\n\v", ",",      "]",      "}",      "{",      "[",
                                    "\\",     "\u0085", "\u180E", "\u2028", "日😀",    "\"a",
                                    "a\"",    "1",      "$1",     "\u200B", "\u3000", "\x1C"};
  const std::string_view names[] = {"a", "aa", "", "\"", "a\"a", ":", "\"a\" ", "日", ".*"};
  std::mt19937 random(18);
  for (const std::string_view name : names) {
    const auto mask = Replacement::initWithJSONFieldName(name, "<$1\\>");
    for (int round = 0; round < 1500; ++round) {
      std::string text;
      for (std::size_t length = random() % 16; length > 0; --length)
        text += random() % 9 == 0 ? "\"" + std::string(name) + "\""
                                  : parts[random() % std::size(parts)];
      ASSERT_EQ(mask->process(text), byExpression(*mask, text)) << name << " in " << text;
    }
  }
}

TEST(ORLFURLSessionLogReplacement, TakesTheSameCharactersForBlanks) {
  const auto mask = Replacement::initWithJSONFieldName("a", "x");
  std::string text;
  for (char32_t c = 1; c < 0x11000; c += orlftest::kIsSanitized ? 17 : 1) {
    if (c >= 0xD800 && c < 0xE000) continue;
    text += "\"a\"";
    internal::base::appendUTF8(text, c);
    text += ":1,";
  }
  EXPECT_EQ(mask->process(text), byExpression(*mask, text));
}

TEST(ORLFURLSessionLogReplacement, LeavesBrokenBytesInMaskedTextsAsTheyAre) {
  EXPECT_EQ(masked("a", "x", "\xFF\"a\"\xC2:1,\"a\":\xE2\x82,\xFF"),
            "\xFF\"a\"\xC2:1,\"a\":\"x\",\xFF");
}

TEST(ORLFURLSessionLogReplacement, TakesLinearTimeWhateverTheText) {
  const auto mask = Replacement::initWithJSONFieldName("password", "***");
  const std::size_t size = (orlftest::kIsSanitized ? 1 : 16) << 18;
  const std::string quotes(size, '"');
  const std::string blanks = "\"password\"" + std::string(size, ' ');
  const std::string value = "\"password\":" + std::string(size, 'x');
  // A body of 100 MB. A sanitizer looks through all that is left of a text at each search in it.
  const std::size_t keysSize = size * (orlftest::kIsSanitized ? 1 : 25);
  std::string keys;
  while (keys.size() < keysSize) keys += "\"password\"";
  const double seconds = orlftest::processorSecondsOf([&] {
    EXPECT_EQ(mask->process(quotes), quotes);
    EXPECT_EQ(mask->process(blanks), blanks);
    EXPECT_EQ(mask->process(value), "\"password\":\"***\"");
    EXPECT_TRUE(mask->process(keys) == keys);
  });
  EXPECT_LT(seconds, 1);
}

TEST(ORLFURLSessionLogReplacement, ReplacesWhatAnExpressionFits) {
  const auto mask = Replacement::initWithMatchExpression("TOKEN=([a-z]+)", 1, "token=$1$1");
  EXPECT_EQ(mask->process("a&token=b"), "a&token=bb");
  EXPECT_EQ(mask->expression()->options(), 1U);
  EXPECT_EQ(mask->replacement(), "token=$1$1");
  EXPECT_EQ(mask->process(std::nullopt), std::nullopt);
  EXPECT_EQ(Replacement::initWithJSONFieldName("a", "x")->process(std::nullopt), std::nullopt);
}

TEST(ORLFURLSessionLogReplacement, IsNoneWithoutAnExpression) {
  std::shared_ptr<const NSError> error;
  EXPECT_EQ(Replacement::initWithMatchExpression("(", 0, "", &error), nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->code(), NSRegularExpressionPatternError);
  EXPECT_EQ(Replacement::initWithMatchExpression("[", 0, ""), nullptr);
  EXPECT_EQ(Replacement::init(), nullptr);
}

TEST(ORLFURLSessionLogReplacement, LeavesOutWhatItCannotMaskInTime) {
  LogCapture log;
  const auto mask = Replacement::initWithMatchExpression("(a+)+$", 0, "x");
  EXPECT_EQ(mask->process(std::string(60, 'a') + "b"), std::nullopt);
  EXPECT_EQ(log.lines(), std::vector<std::string>{
                             "A text was left out of a session's log: its mask came to a limit."});
}

}  // namespace
}  // namespace ORLFoundation
