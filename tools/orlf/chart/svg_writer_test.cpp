#include "chart/svg_writer.h"

#include <gtest/gtest.h>

#include "chart/svg_testing.h"

namespace {

using namespace orlftool;

Drawing smallDrawing() {
  Drawing drawing;
  drawing.width = 200;
  drawing.height = 100;
  drawing.title = "A & <B>";
  drawing.description = R"(From "1" to 2)";
  drawing.strokes.push_back(
      {{{10, 20}, {30.456, 40}, {50, -0.001}}, {0, 0.45, 0.7}, 2.4, false, "x < y"});
  drawing.strokes.push_back({{{0, 0}, {5, 5}}, {1, 1, 1}, 1, true, ""});
  drawing.dots.push_back({{10, 20}, 3, {0, 0, 0}});
  drawing.labels.push_back({"−5 & more", {12.5, 9}, TextAnchor::kEnd, {12, true}, {0, 0, 0}, true});
  drawing.labels.push_back(
      {"日本 שלום", {1, 2}, TextAnchor::kStart, {12, false}, {0, 0, 0}, false});
  return drawing;
}

TEST(SvgWriter, WritesLinesAsPaths) {
  const auto paths = elementsNamed(svgOfDrawing(smallDrawing()), "path");
  ASSERT_EQ(paths.size(), 2U);
  EXPECT_EQ(paths[0].attributes.at("d"), "M10 20L30.46 40L50 0");
  EXPECT_EQ(paths[0].attributes.at("stroke"), "#0073b3");
  EXPECT_EQ(paths[0].attributes.at("stroke-width"), "2.4");
  EXPECT_EQ(paths[0].attributes.count("stroke-dasharray"), 0U);
  EXPECT_EQ(paths[0].text, "x < y");
  EXPECT_EQ(paths[1].attributes.at("d"), "M0 0L5 5");
  EXPECT_EQ(paths[1].attributes.at("stroke-dasharray"), "5 4");
}

TEST(SvgWriter, KeepsTextsAsTexts) {
  const auto texts = elementsNamed(svgOfDrawing(smallDrawing()), "text");
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_EQ(texts[0].text, "−5 & more");
  EXPECT_EQ(texts[0].attributes.at("x"), "12.5");
  EXPECT_EQ(texts[0].attributes.at("text-anchor"), "end");
  EXPECT_EQ(texts[0].attributes.at("font-weight"), "bold");
  EXPECT_EQ(texts[0].attributes.at("paint-order"), "stroke");
  EXPECT_EQ(texts[1].text, "日本 שלום");
  EXPECT_EQ(texts[1].attributes.count("text-anchor"), 0U);
  EXPECT_EQ(texts[1].attributes.count("paint-order"), 0U);
}

TEST(SvgWriter, TellsTitleAndDescription) {
  const auto elements = elementsOfSvg(svgOfDrawing(smallDrawing()));
  ASSERT_GE(elements.size(), 3U);
  EXPECT_EQ(elements[0].name, "svg");
  EXPECT_EQ(elements[0].attributes.at("viewBox"), "0 0 200 100");
  EXPECT_EQ(elements[0].attributes.at("aria-labelledby"),
            elements[1].attributes.at("id") + " " + elements[2].attributes.at("id"));
  EXPECT_EQ(elements[1].name, "title");
  EXPECT_EQ(elements[1].text, "A & <B>");
  EXPECT_EQ(elements[2].name, "desc");
  EXPECT_EQ(elements[2].text, R"(From "1" to 2)");
}

}  // namespace
