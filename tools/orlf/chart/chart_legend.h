/// The legend of a chart: which names it shows, and where.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "chart/drawing.h"

namespace orlftool {

struct LegendEntry {
  /// Nothing for the entry "and 12 more".
  std::optional<std::size_t> line;
  std::string text;
  double left = 0;
  int row = 0;
};

struct LegendRequest {
  std::vector<std::string> names = {};
  /// A name that stays where others have to go.
  std::vector<bool> isReference = {};
  double width = 0;
  int mostRows = 1;
  double swatch = 0, gap = 0;
  TextStyle style = {};
};

/// The names in rows, each cut so that two go into a row. Where they do not fit, those for
/// reference come first, and the last entry counts what is left out.
[[nodiscard]] std::vector<LegendEntry> layOutLegend(const LegendRequest& request,
                                                    const TextRuler& ruler);

}  // namespace orlftool
