/// Drawings as PNG and PDF, their texts shaped for every script.
#pragma once

#include <memory>
#include <string>

#include "chart/drawing.h"

namespace orlftool {

/// Widths in the fonts that the files are drawn with.
class FontRuler : public TextRuler {
 public:
  FontRuler();
  ~FontRuler() override;
  [[nodiscard]] double width(std::string_view text, TextStyle style) const override;

 private:
  struct Page;
  std::unique_ptr<Page> page_;
};

/// A picture of 1.75 dots a unit. Throws JobFailure when it cannot be drawn or written.
void writePngOfDrawing(const Drawing& drawing, const std::string& path);
/// One page, with the drawing's title. Throws JobFailure.
void writePdfOfDrawing(const Drawing& drawing, const std::string& path);

}  // namespace orlftool
