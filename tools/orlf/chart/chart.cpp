

#include "chart/chart.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <limits>
#include <string_view>

#include "chart/chart_scale.h"
#include "cli/failure.h"
#include "io/atomic_file.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr double kWidth = 960, kHeight = 540, kMargin = 28, kPixelsPerPoint = 1.75;
constexpr double kTextSize = 12, kTitleSize = 18, kTickLength = 5, kGap = 8;
constexpr int kMostNumberTicks = 9, kMostDateTicks = 11;
constexpr std::size_t kMostLegendEntries = 12, kMostMarks = 12;

struct Color {
  double red, green, blue;
};
constexpr Color kInk{0.13, 0.15, 0.18}, kFaint{0.88, 0.89, 0.91}, kGrey{0.45, 0.48, 0.52};
/// Told apart by readers who do not see all colours.
constexpr std::array kColors{Color{0.00, 0.45, 0.70}, Color{0.84, 0.37, 0.00},
                             Color{0.00, 0.62, 0.45}, Color{0.80, 0.47, 0.65},
                             Color{0.34, 0.71, 0.91}, Color{0.90, 0.62, 0.00},
                             Color{0.35, 0.30, 0.65}};

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
using Context = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;

struct Box {
  double left, top, right, bottom;
};

/// What the lines cover, with the marks of both axes.
struct Scales {
  NSDate from, to;
  double low = 0, high = 0;
  std::vector<NumberTick> numbers;
  std::vector<DateTick> dates;
};

class ChartPainter {
 public:
  ChartPainter(cairo_t* cairo, const Chart& chart, const Scales& scales)
      : cairo_(cairo), chart_(chart), scales_(scales) {}

  void paint() {
    setColor({1, 1, 1});
    cairo_paint(cairo_);
    double top = kMargin;
    if (!chart_.title.empty()) top = paintTitle(top);
    top = paintLegend(top);
    plot_ = {kMargin + widestNumber() + kGap, top + kGap, kWidth - kMargin,
             kHeight - kMargin - kTextSize - kGap};
    paintNumberAxis();
    paintDateAxis();
    paintMarks();
    paintLines();
  }

 private:
  void setColor(Color color) { cairo_set_source_rgb(cairo_, color.red, color.green, color.blue); }
  void setFont(double size, cairo_font_weight_t weight) {
    cairo_select_font_face(cairo_, "sans-serif", CAIRO_FONT_SLANT_NORMAL, weight);
    cairo_set_font_size(cairo_, size);
  }
  [[nodiscard]] double textWidth(const std::string& text) const {
    cairo_text_extents_t extents;
    cairo_text_extents(cairo_, text.c_str(), &extents);
    return extents.x_advance;
  }
  void showText(double x, double baseline, const std::string& text) {
    cairo_move_to(cairo_, x, baseline);
    cairo_show_text(cairo_, text.c_str());
  }
  void strokeLine(double x1, double y1, double x2, double y2, double width) {
    cairo_set_line_width(cairo_, width);
    cairo_move_to(cairo_, x1, y1);
    cairo_line_to(cairo_, x2, y2);
    cairo_stroke(cairo_);
  }
  void setDashes(bool dashed) {
    constexpr std::array kDashes{5.0, 4.0};
    cairo_set_dash(cairo_, kDashes.data(), dashed ? 2 : 0, 0);
  }
  [[nodiscard]] double x(NSDate date) const {
    const double part =
        date.timeIntervalSinceDate(scales_.from) / scales_.to.timeIntervalSinceDate(scales_.from);
    return plot_.left + part * (plot_.right - plot_.left);
  }
  [[nodiscard]] double y(double value) const {
    // Halved, so that the difference of the largest numbers stays finite.
    const double part = (value / 2 - scales_.low / 2) / (scales_.high / 2 - scales_.low / 2);
    return plot_.bottom - part * (plot_.bottom - plot_.top);
  }

  double paintTitle(double top);
  double paintLegend(double top);
  [[nodiscard]] double widestNumber();
  void paintNumberAxis();
  void paintDateAxis();
  void paintMarks();
  void paintLines();
  void setLineStyle(const ChartLine& line, std::size_t index);
  void paintLine(const ChartLine& line);

  cairo_t* cairo_;
  const Chart& chart_;
  const Scales& scales_;
  Box plot_{};
};

double ChartPainter::paintTitle(double top) {
  double size = kTitleSize;
  setFont(size, CAIRO_FONT_WEIGHT_BOLD);
  const double room = kWidth - 2 * kMargin;
  const double width = textWidth(chart_.title);
  if (width > room) setFont(size *= std::max(0.4, room / width), CAIRO_FONT_WEIGHT_BOLD);
  setColor(kInk);
  showText(kMargin, top + size * 0.8, chart_.title);
  return top + kTitleSize + kGap;
}

double ChartPainter::paintLegend(double top) {
  constexpr double kSwatch = 22;
  setFont(kTextSize, CAIRO_FONT_WEIGHT_NORMAL);
  double left = kMargin;
  double baseline = top + kTextSize;
  for (std::size_t i = 0; i < chart_.lines.size(); ++i) {
    const bool cut = i == kMostLegendEntries && chart_.lines.size() > kMostLegendEntries + 1;
    const std::string text =
        cut ? "and " + std::to_string(chart_.lines.size() - i) + " more" : chart_.lines[i].name;
    const double width = kSwatch + kGap + textWidth(text) + 2 * kGap;
    if (left > kMargin && left + width > kWidth - kMargin) {
      left = kMargin;
      baseline += kTextSize * 1.5;
    }
    if (!cut) {
      setLineStyle(chart_.lines[i], i);
      const double middle = baseline - kTextSize * 0.35;
      cairo_move_to(cairo_, left, middle);
      cairo_line_to(cairo_, left + kSwatch, middle);
      cairo_stroke(cairo_);
    }
    setColor(kInk);
    showText(cut ? left : left + kSwatch + kGap, baseline, text);
    left += width;
    if (cut) break;
  }
  return baseline + kGap;
}

double ChartPainter::widestNumber() {
  setFont(kTextSize, CAIRO_FONT_WEIGHT_NORMAL);
  double widest = 0;
  for (const NumberTick& tick : scales_.numbers) widest = std::max(widest, textWidth(tick.label));
  return widest;
}

void ChartPainter::paintNumberAxis() {
  setFont(kTextSize, CAIRO_FONT_WEIGHT_NORMAL);
  setDashes(false);
  for (const NumberTick& tick : scales_.numbers) {
    const double height = y(tick.value);
    setColor(tick.value == 0 ? kGrey : kFaint);
    strokeLine(plot_.left, height, plot_.right, height, tick.value == 0 ? 1.2 : 1);
    setColor(kInk);
    showText(plot_.left - kGap - textWidth(tick.label), height + kTextSize * 0.35, tick.label);
  }
}

void ChartPainter::paintDateAxis() {
  setFont(kTextSize, CAIRO_FONT_WEIGHT_NORMAL);
  setDashes(false);
  setColor(kGrey);
  strokeLine(plot_.left, plot_.bottom, plot_.right, plot_.bottom, 1);
  double free = 0;  // where the last label ends
  for (const DateTick& tick : scales_.dates) {
    const double at = x(tick.date);
    setColor(kGrey);
    strokeLine(at, plot_.bottom, at, plot_.bottom + kTickLength, 1);
    const double width = textWidth(tick.label);
    const double left = std::clamp(at - width / 2, 0.0, kWidth - kGap - width);
    if (left < free) continue;
    setColor(kInk);
    showText(left, plot_.bottom + kTickLength + kTextSize + 2, tick.label);
    free = left + width + kGap;
  }
}

void ChartPainter::paintMarks() {
  if (chart_.marks.size() > kMostMarks) return;
  setColor(kGrey);
  setDashes(true);
  for (const NSDate mark : chart_.marks) strokeLine(x(mark), plot_.top, x(mark), plot_.bottom, 0.8);
}

void ChartPainter::setLineStyle(const ChartLine& line, std::size_t index) {
  setColor(line.isReference ? kGrey : kColors[index % kColors.size()]);
  setDashes(line.isReference);
  cairo_set_line_width(cairo_, line.isReference ? 1.4 : 2.4);
}

void ChartPainter::paintLine(const ChartLine& line) {
  cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
  for (const ChartPoint& point : line.points) {
    if (!std::isfinite(point.value)) continue;
    if (line.isStepped && cairo_has_current_point(cairo_) != 0) {
      double lastX = 0, lastY = 0;
      cairo_get_current_point(cairo_, &lastX, &lastY);
      cairo_line_to(cairo_, x(point.date), lastY);
    }
    cairo_line_to(cairo_, x(point.date), y(point.value));
  }
  cairo_stroke(cairo_);
}

void ChartPainter::paintLines() {
  for (const bool reference : {true, false})
    for (std::size_t i = 0; i < chart_.lines.size(); ++i) {
      if (chart_.lines[i].isReference != reference) continue;
      setLineStyle(chart_.lines[i], i);
      paintLine(chart_.lines[i]);
    }
}

/// Throws JobFailure when the lines do not hold finite values on two dates.
Scales scalesOf(const Chart& chart) {
  Scales scales;
  scales.from = NSDate::distantFuture();
  scales.to = NSDate::distantPast();
  scales.low = std::numeric_limits<double>::infinity();
  scales.high = -scales.low;
  for (const ChartLine& line : chart.lines)
    for (const ChartPoint& point : line.points) {
      if (!std::isfinite(point.value)) continue;
      if (point.date.compare(scales.from) == NSOrderedAscending) scales.from = point.date;
      if (point.date.compare(scales.to) == NSOrderedDescending) scales.to = point.date;
      scales.low = std::min(scales.low, point.value);
      scales.high = std::max(scales.high, point.value);
    }
  if (scales.from.compare(scales.to) != NSOrderedAscending || !(scales.low <= scales.high))
    throw JobFailure("the chart needs balances on at least two dates");
  NumberScale numbers = numberScale(scales.low, scales.high, kMostNumberTicks, chart.locale);
  scales.low = numbers.low;
  scales.high = numbers.high;
  scales.numbers = std::move(numbers.ticks);
  scales.dates = dateTicks(scales.from, scales.to, kMostDateTicks, *chart.calendar, chart.locale);
  return scales;
}

std::string extensionOf(const std::string& path) {
  const std::size_t dot = path.find_last_of("./");
  if (dot == std::string::npos || path[dot] != '.') return "";
  std::string extension = path.substr(dot);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

Surface makeSurface(const std::string& extension, const std::string& path) {
  if (extension == ".svg")
    return {cairo_svg_surface_create(path.c_str(), kWidth, kHeight), &cairo_surface_destroy};
  if (extension == ".pdf")
    return {cairo_pdf_surface_create(path.c_str(), kWidth, kHeight), &cairo_surface_destroy};
  return {cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(kWidth * kPixelsPerPoint),
                                     static_cast<int>(kHeight * kPixelsPerPoint)),
          &cairo_surface_destroy};
}

void requireDrawn(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS)
    throw JobFailure(std::string("the chart cannot be drawn: ") + cairo_status_to_string(status));
}

void drawInto(const std::string& file, const std::string& extension, const Chart& chart,
              const Scales& scales) {
  const Surface surface = makeSurface(extension, file);
  const bool isImage = extension == ".png";
  const Context cairo(cairo_create(surface.get()), &cairo_destroy);
  if (isImage) cairo_scale(cairo.get(), kPixelsPerPoint, kPixelsPerPoint);
  ChartPainter(cairo.get(), chart, scales).paint();
  requireDrawn(cairo_status(cairo.get()));
  if (isImage) requireDrawn(cairo_surface_write_to_png(surface.get(), file.c_str()));
  cairo_surface_finish(surface.get());
  requireDrawn(cairo_surface_status(surface.get()));
}

}  // namespace

bool isChartPath(const std::string& path) {
  const std::string extension = extensionOf(path);
  return extension == ".svg" || extension == ".png" || extension == ".pdf";
}

void drawChart(const Chart& chart, const std::string& path) {
  if (!isChartPath(path))
    throw UsageFailure("--chart: expected a file that ends in .svg, .png or .pdf, got '" + path +
                       "'");
  const Scales scales = scalesOf(chart);
  writeFileAtomically(path, [&](const std::string& temporary) {
    drawInto(temporary, extensionOf(path), chart, scales);
  });
}

}  // namespace orlftool
