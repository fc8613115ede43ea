#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/support/device/ORLFTemplateImage.h>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "io/png_file.h"
#include "session.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct TemplateImageArguments {
  std::string in, out, color, threshold = "0";
};

/// #RRGGBB or #RRGGBBAA.
CGColorRef readColor(std::string_view text) {
  const auto bytes = internal::base::bytesOfHexText(text.substr(text.empty() ? 0 : 1));
  if (!text.starts_with('#') || !bytes || (bytes->size() != 3 && bytes->size() != 4))
    throw UsageFailure("--color: expected a color such as #336699 or #336699CC, got '" +
                       std::string(text) + "'");
  const auto component = [&bytes](std::size_t index) {
    return index < bytes->size() ? static_cast<unsigned char>((*bytes)[index]) / 255.0 : 1.0;
  };
  return CGColor::colorWithRed(component(0), component(1), component(2), component(3));
}

double readThreshold(const std::string& text) {
  const auto threshold = readDecimal(text);
  if (threshold && threshold->doubleValue() >= 0 && threshold->doubleValue() <= 1)
    return threshold->doubleValue();
  throw UsageFailure("--threshold: expected a number from 0 to 1, got '" + text + "'");
}

void runTemplateImage(Session& session, const TemplateImageArguments& arguments) {
  const CGColorRef color = readColor(arguments.color);
  const double threshold = readThreshold(arguments.threshold);
  const CGImageRef source = readPngFile(arguments.in);
  const CGImageRef made =
      ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(source, color, threshold);
  if (!made) throw JobFailure(arguments.in + ": there is no memory for its template image");
  writePngFile(arguments.out, *made);
  if (!session.options.json) {
    session.out << arguments.out << ": " << made->width() << " x " << made->height() << " pixels\n";
    return;
  }
  const Json answer{{"file", arguments.out}, {"width", made->width()}, {"height", made->height()}};
  printJson(session.out, answer);
}

}  // namespace

Job declareTemplateImageCommand(Options& options) {
  options.describe(
      "Draw a PNG in one color: the darker a point of the picture, the more opaque the color.");
  auto arguments = std::make_shared<TemplateImageArguments>();
  options.required("IN", arguments->in, "The picture, a PNG file");
  options.required("OUT", arguments->out, "The PNG file to write");
  options.required("--color", arguments->color, "#RRGGBB, or #RRGGBBAA with an opacity");
  options.text("--threshold", arguments->threshold,
               "Part of full darkness, from 0 to 1, up to which points are left out; 0 and 1\n"
               "leave none out");
  return [arguments](Session& session) { runTemplateImage(session, *arguments); };
}

}  // namespace orlftool
