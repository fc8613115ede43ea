#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/support/device/ORLFTemplateImage.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "commands.h"
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
                       ORLFoundation::internal::base::bytesOfHexText(digits).has_value();
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
  const nlohmann::ordered_json answer{
      {"file", arguments.out}, {"width", made->width()}, {"height", made->height()}};
  session.out << answer.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace

Command addTemplateImageCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "template-image",
      "Draw a PNG in one color: the darker a point of the picture, the more opaque the color.");
  auto arguments = std::make_shared<TemplateImageArguments>();
  parser->add_option("IN", arguments->in, "The picture, a PNG file")->required();
  parser->add_option("OUT", arguments->out, "The PNG file to write")->required();
  parser->add_option("--color", arguments->color, "#RRGGBB, or #RRGGBBAA with an opacity")
      ->required();
  parser
      ->add_option("--threshold", arguments->threshold,
                   "Part of full darkness, from 0 to 1, up to which points are left out; 0 and 1\n"
                   "leave none out")
      ->capture_default_str();
  return {parser, [arguments](Session& session) { runTemplateImage(session, *arguments); }};
}

}  // namespace orlftool
