#include "chart/cairo_painter.h"

#include <cairo-pdf.h>
#include <cairo.h>
#include <pango/pangocairo.h>

#include <array>
#include <numbers>

#include "cli/failure.h"

namespace orlftool {
namespace {

constexpr double kDotsPerUnit = 1.75;

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
using Context = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;
using Layout = std::unique_ptr<PangoLayout, decltype(&g_object_unref)>;
using Font = std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)>;
using FontOptions = std::unique_ptr<cairo_font_options_t, decltype(&cairo_font_options_destroy)>;

/// A text of one line. Its widths are those of the font's outlines at every size, so that what was
/// measured on one page fits another.
Layout layOutText(cairo_t* cairo, std::string_view text, TextStyle style) {
  Layout layout(pango_cairo_create_layout(cairo), &g_object_unref);
  PangoContext* context = pango_layout_get_context(layout.get());
  const FontOptions options(cairo_font_options_create(), &cairo_font_options_destroy);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(context, options.get());
  pango_context_set_round_glyph_positions(context, FALSE);
  const Font font(pango_font_description_from_string("sans-serif"), &pango_font_description_free);
  pango_font_description_set_absolute_size(font.get(), style.size * PANGO_SCALE);
  if (style.isBold) pango_font_description_set_weight(font.get(), PANGO_WEIGHT_BOLD);
  pango_layout_set_font_description(layout.get(), font.get());
  pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
  pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
  return layout;
}

PangoLayoutLine* lineOf(const Layout& layout) {
  return pango_layout_get_line_readonly(layout.get(), 0);
}

double widthOf(const Layout& layout) {
  PangoRectangle logical;
  pango_layout_line_get_extents(lineOf(layout), nullptr, &logical);
  return static_cast<double>(logical.width) / PANGO_SCALE;
}

class Painter {
 public:
  explicit Painter(cairo_t* cairo) : cairo_(cairo) {}

  void paint(const Drawing& drawing) {
    setColor({1, 1, 1});
    cairo_paint(cairo_);
    cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND);
    for (const Stroke& stroke : drawing.strokes) paint(stroke);
    for (const Dot& dot : drawing.dots) paint(dot);
    for (const Label& label : drawing.labels) paint(label);
  }

 private:
  void setColor(Color color) { cairo_set_source_rgb(cairo_, color.red, color.green, color.blue); }

  /// Starts anew: the path that is there may end where a text ended, and a line from there on is
  /// none of the drawing's.
  void paint(const Stroke& stroke) {
    constexpr std::array kDashes{5.0, 4.0};
    setColor(stroke.color);
    cairo_set_line_width(cairo_, stroke.width);
    cairo_set_dash(cairo_, kDashes.data(), stroke.isDashed ? 2 : 0, 0);
    cairo_new_path(cairo_);
    for (const Point& point : stroke.points) cairo_line_to(cairo_, point.x, point.y);
    cairo_stroke(cairo_);
  }

  void paint(const Dot& dot) {
    setColor(dot.color);
    cairo_new_path(cairo_);
    cairo_arc(cairo_, dot.center.x, dot.center.y, dot.radius, 0, 2 * std::numbers::pi);
    cairo_fill(cairo_);
  }

  void paint(const Label& label) {
    const Layout layout = layOutText(cairo_, label.text, label.style);
    const double part = label.anchor == TextAnchor::kStart    ? 0
                        : label.anchor == TextAnchor::kMiddle ? 0.5
                                                              : 1;
    const Point at{label.at.x - part * widthOf(layout), label.at.y};
    if (label.hasHalo) paintHalo(layout, at);
    setColor(label.color);
    cairo_move_to(cairo_, at.x, at.y);
    pango_cairo_show_layout_line(cairo_, lineOf(layout));
    cairo_new_path(cairo_);
  }

  void paintHalo(const Layout& layout, Point at) {
    setColor({1, 1, 1});
    cairo_set_line_width(cairo_, 3);
    cairo_set_dash(cairo_, nullptr, 0, 0);
    cairo_new_path(cairo_);
    cairo_move_to(cairo_, at.x, at.y);
    pango_cairo_layout_line_path(cairo_, lineOf(layout));
    cairo_stroke(cairo_);
  }

  cairo_t* cairo_;
};

void requireDrawn(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS)
    throw JobFailure(std::string("the chart cannot be drawn: ") + cairo_status_to_string(status));
}

void paintOn(const Surface& surface, const Drawing& drawing, double dotsPerUnit) {
  const Context cairo(cairo_create(surface.get()), &cairo_destroy);
  cairo_scale(cairo.get(), dotsPerUnit, dotsPerUnit);
  Painter(cairo.get()).paint(drawing);
  requireDrawn(cairo_status(cairo.get()));
}

Surface makeImage(double width, double height) {
  return {cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width),
                                     static_cast<int>(height)),
          &cairo_surface_destroy};
}

}  // namespace

struct FontRuler::Page {
  Surface surface = makeImage(1, 1);
  Context cairo{cairo_create(surface.get()), &cairo_destroy};
};

FontRuler::FontRuler() : page_(std::make_unique<Page>()) {}
FontRuler::~FontRuler() = default;

double FontRuler::width(std::string_view text, TextStyle style) const {
  return widthOf(layOutText(page_->cairo.get(), text, style));
}

void writePngOfDrawing(const Drawing& drawing, const std::string& path) {
  const Surface image = makeImage(drawing.width * kDotsPerUnit, drawing.height * kDotsPerUnit);
  paintOn(image, drawing, kDotsPerUnit);
  requireDrawn(cairo_surface_write_to_png(image.get(), path.c_str()));
}

void writePdfOfDrawing(const Drawing& drawing, const std::string& path) {
  constexpr double kPointsPerUnit = 0.75;  // 72 points an inch
  const Surface page(cairo_pdf_surface_create(path.c_str(), drawing.width * kPointsPerUnit,
                                              drawing.height * kPointsPerUnit),
                     &cairo_surface_destroy);
  cairo_pdf_surface_set_metadata(page.get(), CAIRO_PDF_METADATA_TITLE, drawing.title.c_str());
  paintOn(page, drawing, kPointsPerUnit);
  cairo_surface_finish(page.get());
  requireDrawn(cairo_surface_status(page.get()));
}

}  // namespace orlftool
