#include "chart/cairo_painter.h"

#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <algorithm>
#include <cstdint>

#include "cli/failure.h"
#include "io/png_file.h"

namespace {

using namespace orlftool;

class CairoPainter : public orlftest::TemporaryFolderTest {
 protected:
  CairoPainter() {
    drawing_.width = 400;
    drawing_.height = 200;
  }

  /// How many dots within a box of the drawing are not white.
  std::size_t inkIn(const Box& box) {
    constexpr double kDots = 1.75;
    if (!image_) {
      writePngOfDrawing(drawing_, path("a.png"));
      image_ = readPngFile(path("a.png"));
    }
    std::size_t ink = 0;
    for (auto y = static_cast<std::size_t>(box.top * kDots);
         y < static_cast<std::size_t>(box.bottom * kDots); ++y)
      for (auto x = static_cast<std::size_t>(box.left * kDots);
           x < static_cast<std::size_t>(box.right * kDots); ++x)
        ink += isWhite(x, y) ? 0U : 1U;
    return ink;
  }

  Drawing drawing_;
  ORLFoundation::CGImageRef image_;

 private:
  [[nodiscard]] bool isWhite(std::size_t x, std::size_t y) const {
    const auto dot = image_->row(y).subspan(4 * x, 3);
    return std::all_of(dot.begin(), dot.end(), [](std::uint8_t part) { return part == 255; });
  }
};

constexpr Color kBlack{0, 0, 0};

TEST_F(CairoPainter, DrawsNoLineFromATextToTheNextStroke) {
  drawing_.labels.push_back({"Text", {10, 20}, TextAnchor::kStart, {12, false}, kBlack, true});
  drawing_.dots.push_back({{20, 180}, 3, kBlack});
  drawing_.strokes.push_back({{{200, 100}, {390, 100}}, kBlack, 2, false, ""});
  drawing_.strokes.push_back({{{200, 190}, {390, 190}}, kBlack, 2, false, ""});
  EXPECT_GT(inkIn({8, 8, 60, 24}), 0U);
  EXPECT_GT(inkIn({200, 98, 390, 102}), 0U);
  EXPECT_EQ(inkIn({60, 0, 199, 200}), 0U);
  EXPECT_EQ(inkIn({0, 30, 199, 170}), 0U);
  EXPECT_EQ(inkIn({205, 103, 400, 187}), 0U);
}

TEST_F(CairoPainter, PutsTextsWhereTheirAnchorSays) {
  drawing_.labels.push_back({"Start", {200, 50}, TextAnchor::kStart, {12, false}, kBlack, false});
  drawing_.labels.push_back({"End", {200, 100}, TextAnchor::kEnd, {12, false}, kBlack, false});
  drawing_.labels.push_back(
      {"Middle", {200, 150}, TextAnchor::kMiddle, {12, false}, kBlack, false});
  EXPECT_EQ(inkIn({0, 30, 199, 60}), 0U);
  EXPECT_GT(inkIn({201, 30, 300, 60}), 0U);
  EXPECT_EQ(inkIn({201, 80, 400, 110}), 0U);
  EXPECT_GT(inkIn({100, 80, 199, 110}), 0U);
  EXPECT_GT(inkIn({150, 130, 199, 160}), 0U);
  EXPECT_GT(inkIn({201, 130, 250, 160}), 0U);
}

TEST_F(CairoPainter, TakesTextsAsWideAsTheyWereMeasured) {
  const std::string text = "Wide text, in bold";
  const double width = FontRuler().width(text, {20, true});
  drawing_.labels.push_back({text, {10, 50}, TextAnchor::kStart, {20, true}, kBlack, false});
  EXPECT_GT(inkIn({10 + width - 4, 30, 10 + width + 1, 60}), 0U);
  EXPECT_EQ(inkIn({10 + width + 1, 30, 400, 60}), 0U);
}

TEST(FontRuler, ShapesTexts) {
  const FontRuler ruler;
  // An accent of its own takes no room, and wide letters take more than narrow ones.
  EXPECT_DOUBLE_EQ(ruler.width("e\u0301", {12}), ruler.width("é", {12}));
  EXPECT_GT(ruler.width("WWW", {12}), ruler.width("iii", {12}));
  EXPECT_NEAR(ruler.width("Text", {24}), 2 * ruler.width("Text", {12}), 0.05);
  EXPECT_EQ(ruler.width("", {12}), 0);
}

TEST_F(CairoPainter, WritesAPageWithATitle) {
  drawing_.title = "Savings";
  drawing_.strokes.push_back({{{200, 100}, {390, 100}}, kBlack, 2, false, ""});
  writePdfOfDrawing(drawing_, path("a.pdf"));
  const std::string bytes = read("a.pdf");
  EXPECT_TRUE(bytes.starts_with("%PDF-"));
  EXPECT_NE(bytes.find("/MediaBox [ 0 0 300 150 ]"), std::string::npos);
  EXPECT_NE(bytes.find("/Title (Savings)"), std::string::npos);
}

TEST_F(CairoPainter, FailsWhereNothingCanBeWritten) {
  EXPECT_THROW(writePngOfDrawing(drawing_, path("no/such/folder.png")), JobFailure);
  EXPECT_THROW(writePdfOfDrawing(drawing_, path("no/such/folder.pdf")), JobFailure);
}

}  // namespace
