#include "web/field_mask.h"

#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <random>
#include <string>
#include <string_view>

namespace orlftool {
namespace {

struct MaskCase {
  const char* name;
  const char* text;
  const char* masked;
};

// R"(...)" would hide which quotes are the text's own.
const MaskCase kMaskCases[] = {
    {"AText", R"({"pass":"secret"})", R"({"pass":"***"})"},
    {"ATextWithACommaAndBrackets", R"({"pass":"a,b]}c", "n":1})", R"({"pass":"***", "n":1})"},
    {"ATextWithAQuote", R"({"pass":"a\"b","n":1})", R"({"pass":"***","n":1})"},
    {"ANumber", R"({"pass": 123, "n":1})", R"({"pass": "***", "n":1})"},
    {"NullAtTheEnd", R"({"pass":null})", R"({"pass":"***"})"},
    {"AList", R"({"pass":["a",{"b":"]"}],"n":1})", R"({"pass":"***","n":1})"},
    {"AnObject", R"({"pass":{"x":"}","y":[1]},"n":1})", R"({"pass":"***","n":1})"},
    {"AnyDepth", R"([{"a":{"pass" : "x"}}])", R"([{"a":{"pass" : "***"}}])"},
    {"AnyCase", R"({"PASS":"x"})", R"({"PASS":"***"})"},
    {"ANameWithEscapes", R"({"pa\u0073s":"x"})", R"({"pa\u0073s":"***"})"},
    {"ATextThatBreaksOff", R"({"pass":"sec)", R"({"pass":"***")"},
    {"AListThatBreaksOff", R"({"pass":[1,2)", R"({"pass":"***")"},
    {"NoOtherName", R"({"passage":"x","n":"pass"})", R"({"passage":"x","n":"pass"})"},
    {"AForm", "user=ann&pass=a%20b&n=1", "user=ann&pass=***&n=1"},
    {"AFormAtItsEnd", "pass=a+b", "pass=***"},
    {"AQuery", "https://example.com/a?pass=x&n=1#top", "https://example.com/a?pass=***&n=1#top"},
    {"AFragment", "https://example.com/a#pass=x", "https://example.com/a#pass=***"},
    {"AFormNameWithEscapes", "p%61ss=x&n=1", "p%61ss=***&n=1"},
    {"AFormNameInBrackets", "user[pass]=x&n=1", "user[pass]=***&n=1"},
    {"AFormNameInEscapedBrackets", "user%5Bpass%5D=x&n=1", "user%5Bpass%5D=***&n=1"},
    {"AValueWithAnEqualsSign", "pass=a=b&n=1", "pass=***&n=1"},
    {"NoOtherFormName", "passage=x&n=pass", "passage=x&n=pass"},
    {"AQuoteTooManyBefore", R"(5" wide {"pass":"x","n":1})", R"(5" wide {"pass":"***","n":1})"},
    {"AnEscapedQuoteBefore", R"(\"pass":"x","n":1)", R"(\"pass":"***","n":1)"},
    {"AFieldInAValueThatBreaksOff", R"("pass":"{"pass":"x"})", R"("pass":"***"pass":"***"})"},
    {"AFieldBehindANumberWithoutItsQuote", R"("pass":1,[pass]":2})",
     R"("pass":"***",[pass]":"***"})"},
    {"ANameBehindABrokenEscape", R"("\u00\"pass":"x"})", R"("\u00\"pass":"***"})"},
    {"ANameInAText", R"({"n":"pass","pass":"x"})", R"({"n":"pass","pass":"***"})"},
    {"AnEmptyText", "", ""},
};

class FieldMaskTable : public testing::TestWithParam<MaskCase> {};

TEST_P(FieldMaskTable, Masks) {
  FieldMask mask({"Pass"});
  EXPECT_EQ(mask.process(GetParam().text), GetParam().masked);
}

INSTANTIATE_TEST_SUITE_P(Rows, FieldMaskTable, testing::ValuesIn(kMaskCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FieldMask, LeavesNothingToMaskAlone) {
  FieldMask mask({"pass"});
  EXPECT_EQ(mask.process(std::nullopt), std::nullopt);
}

/// Wild texts: no crash, no secret that follows the name of a field, and nothing left that masking
/// again would mask.
TEST(FieldMask, ShowsNoSecretInTextsOfPieces) {
  const std::string pieces[] = {"\"pass\":", "\"",      "\\",    "{", "}",     "[",  "]",
                                ",",         ":",       "pass=", "&", "=",     "%7", "\\u00",
                                "\n",        "\"a\":1", " ",     "x", "[pass]"};
  FieldMask mask({"pass"});
  std::mt19937 random(7);
  for (int i = 0; i < 3000; ++i) {
    std::string text;
    for (int n = 0; n < 12; ++n) text += pieces[random() % std::size(pieces)];
    const auto masked = mask.process(text);
    ASSERT_TRUE(masked);
    EXPECT_EQ(mask.process(masked), masked) << text;
    const auto json = mask.process("{\"a\":1,\"pass\":\"hunter2\"," + text);
    EXPECT_EQ(json->find("hunter2"), std::string::npos) << text;
    const auto form = mask.process("pass=hunter2&" + text);
    EXPECT_EQ(form->find("hunter2"), std::string::npos) << text;
    const auto behind = mask.process(text + "{\"pass\":\"hunter2\"}");
    EXPECT_EQ(behind->find("hunter2"), std::string::npos) << text;
  }
}

/// Bodies of 100 MB, of what there is most to be looked at in.
TEST(FieldMask, TakesATimeThatGrowsWithTheText) {
  FieldMask mask({"pass"});
  constexpr std::size_t kBody = std::size_t{orlftest::kIsSanitized ? 2 : 100} << 20;
  for (const std::string_view part :
       {R"(="{[\)", R"(\")", R"("pass":)", R"("pass"   )", "pass=", "p%61ss=x&", "{[", "\"\" :"}) {
    std::string text = "\"pass\" ";
    while (text.size() < kBody / 8) text += part;
    const double seconds = orlftest::processorSecondsOf([&] { EXPECT_TRUE(mask.process(text)); });
    EXPECT_LT(seconds, 5) << part;
  }
}

}  // namespace
}  // namespace orlftool
