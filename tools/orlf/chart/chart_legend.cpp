#include "chart/chart_legend.h"

#include <algorithm>

#include "chart/chart_text.h"

namespace orlftool {
namespace {

/// Puts the entries into rows; whether they fit.
bool arrange(std::vector<LegendEntry>& entries, const LegendRequest& request,
             const std::vector<double>& widths) {
  double left = 0;
  int row = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (left > 0 && left + widths[i] > request.width) {
      left = 0;
      ++row;
    }
    entries[i].left = left;
    entries[i].row = row;
    left += widths[i] + 2 * request.gap;
  }
  return row < request.mostRows;
}

double swatchRoom(const LegendRequest& request) { return request.swatch + request.gap; }

std::vector<LegendEntry> allEntries(const LegendRequest& request, const TextRuler& ruler) {
  const double room = request.width / 2 - request.gap - swatchRoom(request);
  std::vector<LegendEntry> entries;
  for (std::size_t i = 0; i < request.names.size(); ++i)
    entries.push_back({i, fittedText(request.names[i], room, request.style, ruler)});
  return entries;
}

}  // namespace

std::vector<LegendEntry> layOutLegend(const LegendRequest& request, const TextRuler& ruler) {
  std::vector<LegendEntry> entries = allEntries(request, ruler);
  const auto widthOf = [&](const LegendEntry& entry) {
    return (entry.line ? swatchRoom(request) : 0) + ruler.width(entry.text, request.style);
  };
  std::vector<double> widths;
  const auto measure = [&] {
    widths.resize(entries.size());
    std::transform(entries.begin(), entries.end(), widths.begin(), widthOf);
  };
  measure();
  if (arrange(entries, request, widths)) return entries;
  std::stable_partition(entries.begin(), entries.end(), [&request](const LegendEntry& entry) {
    return request.isReference[entry.line.value_or(0)];
  });
  measure();
  for (std::size_t leftOut = 1; !entries.empty(); ++leftOut) {
    entries.back() = {std::nullopt, "and " + std::to_string(leftOut) + " more"};
    widths.resize(entries.size());
    widths.back() = widthOf(entries.back());
    if (arrange(entries, request, widths)) break;
    entries.pop_back();
  }
  return entries;
}

}  // namespace orlftool
