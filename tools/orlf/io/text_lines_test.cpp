#include "io/text_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlftool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TextLines, EndAtEachKindOfLineEnd) {
  EXPECT_THAT(linesOfText("a\nb\r\nc\rd"), ElementsAre("a", "b", "c", "d"));
  EXPECT_THAT(linesOfText("a\n\n"), ElementsAre("a", ""));
  EXPECT_THAT(linesOfText("\n"), ElementsAre(""));
  EXPECT_THAT(linesOfText(""), IsEmpty());
}

TEST(TextLines, LeaveOtherWordsAsTheyAre) {
  EXPECT_THAT(textsOfWords({"a\nb", ""}), ElementsAre("a\nb", ""));
}

}  // namespace
}  // namespace orlftool
