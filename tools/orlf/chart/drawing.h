/// A picture as a list of lines, dots and texts. Its layout is decided once; files of each kind are
/// written from the same list, and tests read it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// Units are 1/96 inch, from the upper left corner to the right and downward.
struct Point {
  double x = 0, y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

struct Box {
  double left = 0, top = 0, right = 0, bottom = 0;
};

/// Parts from 0 to 1.
struct Color {
  double red = 0, green = 0, blue = 0;
};

struct Stroke {
  std::vector<Point> points;
  Color color;
  double width = 1;
  bool isDashed = false;
  /// What the line stands for, told to who points at it or listens; empty for lines of the frame.
  std::string name;
};

struct Dot {
  Point center;
  double radius = 0;
  Color color;
};

enum class TextAnchor { kStart, kMiddle, kEnd };

struct TextStyle {
  double size = 12;
  bool isBold = false;
};

struct Label {
  std::string text;
  Point at;  // on the baseline, where the anchor says
  TextAnchor anchor = TextAnchor::kStart;
  TextStyle style;
  Color color;
  /// A white rim keeps the text legible over lines.
  bool hasHalo = false;
};

/// Painted on white in this order: strokes, dots, labels.
struct Drawing {
  double width = 0, height = 0;
  /// The whole of each, for readers who do not see the picture.
  std::string title, description;
  std::vector<Stroke> strokes;
  std::vector<Dot> dots;
  std::vector<Label> labels;
};

/// Tells how wide texts will be.
class TextRuler {
 public:
  TextRuler() = default;
  virtual ~TextRuler() = default;
  TextRuler(const TextRuler&) = delete;
  TextRuler& operator=(const TextRuler&) = delete;

  [[nodiscard]] virtual double width(std::string_view text, TextStyle style) const = 0;
};

}  // namespace orlftool
