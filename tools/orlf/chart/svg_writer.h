/// Drawings as SVG: lines as paths, texts as texts, with a title and a description for those who do
/// not see them.
#pragma once

#include <string>

#include "chart/drawing.h"

namespace orlftool {

/// The whole file. Texts are escaped; they hold no control characters (see visibleText).
[[nodiscard]] std::string svgOfDrawing(const Drawing& drawing);

}  // namespace orlftool
