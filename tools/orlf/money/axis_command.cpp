#include <ORLFoundation/decimal/ORLFMathematicalAxis.h>

#include <CLI/CLI.hpp>
#include <array>
#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "cli/option_checks.h"
#include "cli/scoped_locale.h"
#include "cli/table.h"
#include "commands.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Json = nlohmann::ordered_json;

constexpr std::int64_t kFewestSteps = 2, kMostSteps = 1000;

struct AxisArguments {
  std::string min, max;
  std::int64_t steps = 10;
};

/// Throws JobFailure for bounds that have no axis.
std::shared_ptr<ORLFMathematicalAxis> makeAxis(const AxisArguments& arguments) {
  // With fewer steps the search for one has no end.
  checkRange("--steps", arguments.steps, kFewestSteps, kMostSteps);
  const double min = readDecimalArgument("MIN", arguments.min).doubleValue();
  const double max = readDecimalArgument("MAX", arguments.max).doubleValue();
  auto axis =
      std::make_shared<ORLFMathematicalAxis>(min, max, static_cast<NSUInteger>(arguments.steps));
  if (axis->stepCount() == 0)
    throw JobFailure("the bounds are equal or too close together for their size");
  return axis;
}

/// Up to 15 digits, as many as every double holds.
std::string numberText(double number) {
  std::array<char, 32> text{};
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, 15);
  return {text.data(), end.ptr};
}

void printAxis(Session& session, const ORLFMathematicalAxis& axis) {
  Table table({{"Step", Table::kRight}, {"Value", Table::kRight}, {"Label", Table::kRight}});
  for (NSUInteger index = 0; index <= axis.stepCount(); ++index)
    table.addRow({std::to_string(index), numberText(axis.valueForStepIndex(index)),
                  axis.labelForStepIndex(static_cast<double>(index))});
  table.print(session.out);
}

void printJson(Session& session, const ORLFMathematicalAxis& axis) {
  Json steps = Json::array();
  for (NSUInteger index = 0; index <= axis.stepCount(); ++index)
    steps.push_back({{"value", axis.valueForStepIndex(index)},
                     {"label", axis.labelForStepIndex(static_cast<double>(index))}});
  session.out << Json({{"min", axis.axisMin()},
                       {"max", axis.axisMax()},
                       {"stepSize", axis.stepSize()},
                       {"stepCount", axis.stepCount()},
                       {"steps", std::move(steps)}})
                     .dump(2)
              << '\n';
}

void runAxis(Session& session, const AxisArguments& arguments) {
  (void)makeCalendar(session.options.zone, session.options.locale);  // refuses unknown names
  const ScopedLocale locale(session.options.locale);
  const auto axis = makeAxis(arguments);
  if (session.options.json) {
    printJson(session, *axis);
  } else {
    printAxis(session, *axis);
  }
}

}  // namespace

Command addAxisCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "axis", "Print round steps for a chart axis over a range of values, with their labels.");
  auto arguments = std::make_shared<AxisArguments>();
  parser->add_option("MIN", arguments->min, "One end of the range")->required();
  parser->add_option("MAX", arguments->max, "The other end")->required();
  parser
      ->add_option("--steps", arguments->steps,
                   "The most steps, but for one more where the ends are widened to whole steps")
      ->capture_default_str();
  return {parser, [arguments](Session& session) { runAxis(session, *arguments); }};
}

}  // namespace orlftool
