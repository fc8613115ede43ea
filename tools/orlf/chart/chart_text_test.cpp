#include "chart/chart_text.h"

#include <gtest/gtest.h>

#include "chart/chart_testing.h"

namespace {

using namespace orlftool;

TEST(VisibleText, WritesOutWhatCannotBeSeen) {
  EXPECT_EQ(visibleText("plain Ä 日本 \xF0\x9F\x98\x80"), "plain Ä 日本 \xF0\x9F\x98\x80");
  EXPECT_EQ(visibleText("a\nb\rc\td"), R"(a\nb\rc\td)");
  EXPECT_EQ(visibleText(std::string_view("a\0b\x1B[31m\x7F", 9)), R"(a\u0000b\u001B[31m\u007F)");
  EXPECT_EQ(visibleText("\xC2\x85\xE2\x80\xA8\xEF\xBF\xBE"), R"(\u0085\u2028\uFFFE)");
  EXPECT_EQ(visibleText("\xF0\x9F\xBF\xBF"), R"(\U0001FFFF)");
}

TEST(VisibleText, ReplacesBrokenBytes) { EXPECT_EQ(visibleText("a\xFFz"), "a\xEF\xBF\xBDz"); }

TEST(FittedText, CutsBetweenCharactersAsReadersSeeThem) {
  const SquareRuler ruler;
  EXPECT_EQ(fittedText("abcdef", 36, {12}, ruler), "abcdef");
  EXPECT_EQ(fittedText("abcdefg", 36, {12}, ruler), "abcde…");
  EXPECT_EQ(fittedText("abcdefg", 1, {12}, ruler), "…");
  // An accent stays with its letter.
  EXPECT_EQ(fittedText("aae\u0301e\u0301e\u0301", 30, {12}, ruler), "aae\u0301…");
}

TEST(TrueMinus, StandsForEveryHyphen) {
  EXPECT_EQ(withTrueMinus("-5"), "\u22125");
  EXPECT_EQ(withTrueMinus("1e-20"), "1e\u221220");
  EXPECT_EQ(withTrueMinus("+5"), "+5");
}

}  // namespace
