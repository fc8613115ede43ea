#include "chart/chart.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "chart/cairo_painter.h"
#include "chart/chart_layout.h"
#include "chart/svg_writer.h"
#include "cli/failure.h"
#include "io/atomic_file.h"

namespace orlftool {
namespace {

void writeSvg(const Drawing& drawing, const std::string& path) {
  writeFileAtomically(path, svgOfDrawing(drawing));
}

void writePng(const Drawing& drawing, const std::string& path) {
  writeFileAtomically(path, [&](const std::string& file) { writePngOfDrawing(drawing, file); });
}

void writePdf(const Drawing& drawing, const std::string& path) {
  writeFileAtomically(path, [&](const std::string& file) { writePdfOfDrawing(drawing, file); });
}

struct FileKind {
  std::string_view extension;
  void (*write)(const Drawing& drawing, const std::string& path);
};
constexpr std::array kFileKinds{FileKind{".svg", writeSvg}, FileKind{".png", writePng},
                                FileKind{".pdf", writePdf}};

std::string extensionOf(const std::string& path) {
  const std::size_t dot = path.find_last_of("./");
  if (dot == std::string::npos || path[dot] != '.') return "";
  return ORLFoundation::internal::base::lowerASCII(std::string_view(path).substr(dot));
}

/// Null for a kind that is not written.
const FileKind* kindOf(const std::string& path) {
  const std::string extension = extensionOf(path);
  const auto* const found =
      std::find_if(kFileKinds.begin(), kFileKinds.end(),
                   [&](const FileKind& kind) { return kind.extension == extension; });
  return found == kFileKinds.end() ? nullptr : found;
}

}  // namespace

bool isChartPath(const std::string& path) { return kindOf(path) != nullptr; }

void drawChart(const Chart& chart, const std::string& path) {
  const FileKind* const kind = kindOf(path);
  if (kind == nullptr)
    throw UsageFailure("--chart: expected a file that ends in .svg, .png or .pdf, got '" + path +
                       "'");
  kind->write(layOutChart(chart, FontRuler()), path);
}

}  // namespace orlftool
