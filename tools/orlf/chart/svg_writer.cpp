#include "chart/svg_writer.h"

#include <ORLFoundation/platform/base/Hexadecimal.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>

namespace orlftool {
namespace {

std::string escaped(std::string_view text) {
  std::string safe;
  for (const char character : text) {
    switch (character) {
      case '&':
        safe += "&amp;";
        break;
      case '<':
        safe += "&lt;";
        break;
      case '>':
        safe += "&gt;";
        break;
      case '"':
        safe += "&quot;";
        break;
      default:
        safe += character;
    }
  }
  return safe;
}

/// To a hundredth, without zeros at the end.
std::string numberText(double number) {
  const double rounded = std::round(number * 100) / 100;
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), rounded == 0 ? 0 : rounded,
                                 std::chars_format::fixed);
  return {text.data(), end.ptr};
}

std::string colorText(Color color) {
  std::string text = "#";
  for (const double part : {color.red, color.green, color.blue}) {
    const auto byte = static_cast<std::uint8_t>(std::lround(part * 255));
    ORLFoundation::internal::base::appendHexByte(text, byte);
  }
  return text;
}

std::string attribute(std::string_view name, std::string_view value) {
  return std::string(" ").append(name).append(R"(=")").append(value).append(R"(")");
}

std::string element(std::string_view name, std::string_view text) {
  const std::string tag(name);
  return "<" + tag + ">" + escaped(text) + "</" + tag + ">";
}

std::string pathText(const Stroke& stroke) {
  std::string data;
  for (const Point& point : stroke.points) {
    data += data.empty() ? "M" : "L";
    data += numberText(point.x) + " " + numberText(point.y);
  }
  std::string text = "<path" + attribute("d", data) + attribute("stroke", colorText(stroke.color)) +
                     attribute("stroke-width", numberText(stroke.width));
  if (stroke.isDashed) text += attribute("stroke-dasharray", "5 4");
  if (stroke.name.empty()) return text + "/>\n";
  return text + ">" + element("title", stroke.name) + "</path>\n";
}

std::string dotText(const Dot& dot) {
  return "<circle" + attribute("cx", numberText(dot.center.x)) +
         attribute("cy", numberText(dot.center.y)) + attribute("r", numberText(dot.radius)) +
         attribute("fill", colorText(dot.color)) + "/>\n";
}

std::string labelText(const Label& label) {
  constexpr std::array<std::string_view, 3> kAnchors{"start", "middle", "end"};
  std::string text = "<text" + attribute("x", numberText(label.at.x)) +
                     attribute("y", numberText(label.at.y)) +
                     attribute("font-size", numberText(label.style.size)) +
                     attribute("fill", colorText(label.color));
  if (label.anchor != TextAnchor::kStart)
    text += attribute("text-anchor", kAnchors[static_cast<std::size_t>(label.anchor)]);
  if (label.style.isBold) text += attribute("font-weight", "bold");
  if (label.hasHalo)
    text += R"( stroke="#ffffff" stroke-width="3" stroke-linejoin="round" paint-order="stroke")";
  return text + ">" + escaped(label.text) + "</text>\n";
}

}  // namespace

std::string svgOfDrawing(const Drawing& drawing) {
  const std::string width = numberText(drawing.width), height = numberText(drawing.height);
  std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>)"
                     "\n"
                     R"(<svg xmlns="http://www.w3.org/2000/svg" role="img")" +
                     attribute("aria-labelledby", "title description") + attribute("width", width) +
                     attribute("height", height) +
                     attribute("viewBox", "0 0 " + width + " " + height) + ">\n";
  text += R"(<title id="title">)" + escaped(drawing.title) + "</title>\n";
  text += R"(<desc id="description">)" + escaped(drawing.description) + "</desc>\n";
  text += R"(<rect width="100%" height="100%" fill="#ffffff"/>)"
          "\n"
          R"(<g fill="none" stroke-linejoin="round">)"
          "\n";
  for (const Stroke& stroke : drawing.strokes) text += pathText(stroke);
  text += "</g>\n";
  for (const Dot& dot : drawing.dots) text += dotText(dot);
  text += R"(<g font-family="sans-serif">)"
          "\n";
  for (const Label& label : drawing.labels) text += labelText(label);
  return text + "</g>\n</svg>\n";
}

}  // namespace orlftool
