#include "cli/message_text.h"

#include <gtest/gtest.h>

#include "cli/failure.h"

namespace {

using orlftool::oneLine;
using orlftool::quotedForMessage;

TEST(MessageText, QuotesTheFirstCharactersWithoutControlsAndBrokenBytes) {
  EXPECT_EQ(quotedForMessage(""), "''");
  EXPECT_EQ(quotedForMessage("1,5 \u20AC"), "'1,5 \u20AC'");
  EXPECT_EQ(quotedForMessage("a\n\x1B\x7F\xFF\xC2\x9B"), "'a" + std::string(5, '?') + "'");
  EXPECT_EQ(quotedForMessage(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
  EXPECT_EQ(quotedForMessage(std::string(41, 'x')), "'" + std::string(40, 'x') + "...'");
}

TEST(MessageText, KeepsAMessageInOneLine) {
  EXPECT_EQ(oneLine("a\nb\r\tc\x7F\u00FC"), "a b  c \u00FC");
}

TEST(MessageText, EscapesTheControlsThatJsonLeaves) {
  EXPECT_EQ(orlftool::withoutControls("\"a\\n\u00FC\u00A0\U0001F600\xFF\""),
            "\"a\\n\u00FC\u00A0\U0001F600\xFF\"");
  EXPECT_EQ(orlftool::withoutControls("\x7F\xC2\x80\xC2\x9B\xC2\x9F"),
            R"(\u007f\u0080\u009b\u009f)");
}

TEST(MessageText, JoinsWords) {
  EXPECT_EQ(orlftool::joinedWithAnd({}), "");
  EXPECT_EQ(orlftool::joinedWithAnd({"A"}), "A");
  EXPECT_EQ(orlftool::joinedWithAnd({"A", "B"}), "A and B");
  EXPECT_EQ(orlftool::joinedWithAnd({"A", "B", "C"}), "A, B and C");
}

TEST(MessageText, NamesFileLineAndFieldOfAFault) {
  const auto failure = [](const std::string& field) -> std::string {
    try {
      orlftool::failAtField("f.csv", 3, field, "a date", "'x'");
    } catch (const orlftool::JobFailure& thrown) {
      return thrown.what();
    }
  };
  EXPECT_EQ(failure("date"), "f.csv:3: date: expected a date, got 'x'");
  EXPECT_EQ(failure(""), "f.csv:3: expected a date, got 'x'");
}

}  // namespace
