#include <ORLFoundation/support/device/ORLFTemplateImage.h>

#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "session.h"
#include "io/png_file.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct TemplateImageArguments {
  std::string in, out, color, threshold = "0";
};

/// The number that the whole text writes; nil for anything else.
template <class Number, class... Form>
std::optional<Number> readWhole(std::string_view text, Form... form) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, form...);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// #RRGGBB or #RRGGBBAA.
CGColorRef readColor(std::string_view text) {
  const std::string_view digits = text.substr(text.empty() ? 0 : 1);
  const bool hasForm = text.starts_with('#') && (digits.size() == 6 || digits.size() == 8) &&
                       digits.find_first_not_of("0123456789abcdefABCDEF") == digits.npos;
  if (!hasForm)
    throw UsageFailure("--color: expected a color such as #336699 or #336699CC, got '" +
                       std::string(text) + "'");
  const auto component = [digits](std::size_t index) {
    if (2 * index >= digits.size()) return 1.0;
    return readWhole<unsigned>(digits.substr(2 * index, 2), 16).value_or(0) / 255.0;
  };
  return CGColor::colorWithRed(component(0), component(1), component(2), component(3));
}

double readThreshold(const std::string& text) {
  const auto threshold = readWhole<double>(text);
  // A comparison with not-a-number fails.
  if (threshold && *threshold >= 0 && *threshold <= 1) return *threshold;
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
  const Json answer{
      {"file", arguments.out}, {"width", made->width()}, {"height", made->height()}};
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
