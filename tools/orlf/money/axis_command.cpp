#include <ORLFoundation/decimal/ORLFMathematicalAxis.h>

#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/scoped_locale.h"
#include "cli/table.h"
#include "commands.h"
#include "session.h"
#include "values/decimal_text.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int64_t kFewestSteps = 2, kMostSteps = 1000;
constexpr double kFinestStep = 0.2;

struct AxisArguments {
  std::string min, max;
  std::string steps = "10";
};

/// Labels are printed from single precision, which holds no more than this.
double readBound(std::string_view name, const std::string& text) {
  constexpr double kLargest = 1e38;
  const double bound = readDecimalArgument(name, text).doubleValue();
  if (bound >= -kLargest && bound <= kLargest) return bound;
  throw UsageFailure(std::string(name) + ": expected a number from -1e38 to 1e38, got '" + text +
                     "'");
}

/// Throws JobFailure for bounds that have no axis.
std::shared_ptr<ORLFMathematicalAxis> makeAxis(const AxisArguments& arguments) {
  // With fewer steps the search for one has no end.
  const std::int64_t steps =
      readWholeArgument("--steps", arguments.steps, kFewestSteps, kMostSteps);
  const double min = readBound("MIN", arguments.min);
  const double max = readBound("MAX", arguments.max);
  // One step would hold the whole range. Equal bounds span ten.
  if (min != max && std::fabs(max - min) < kFinestStep)
    throw JobFailure("the range is narrower than 0.2, the finest step of an axis");
  auto axis = std::make_shared<ORLFMathematicalAxis>(min, max, static_cast<NSUInteger>(steps));
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

Json jsonOf(const ORLFMathematicalAxis& axis) {
  Json steps = Json::array();
  for (NSUInteger index = 0; index <= axis.stepCount(); ++index)
    steps.push_back({{"value", axis.valueForStepIndex(index)},
                     {"label", axis.labelForStepIndex(static_cast<double>(index))}});
  return {{"min", axis.axisMin()},
          {"max", axis.axisMax()},
          {"stepSize", axis.stepSize()},
          {"stepCount", axis.stepCount()},
          {"steps", std::move(steps)}};
}

void runAxis(Session& session, const AxisArguments& arguments) {
  const ScopedLocale locale(session.options.locale);
  const auto axis = makeAxis(arguments);
  if (session.options.json) {
    printJson(session.out, jsonOf(*axis));
  } else {
    printAxis(session, *axis);
  }
}

}  // namespace

Job declareAxisCommand(Options& options) {
  options.describe("Print round steps for a chart axis over a range of values, with their labels.");
  auto arguments = std::make_shared<AxisArguments>();
  options.required("MIN", arguments->min, "One end of the range");
  options.required("MAX", arguments->max, "The other end");
  options.text("--steps", arguments->steps,
               "The most steps, but for one more where the ends are widened to whole steps");
  return [arguments](Session& session) { runAxis(session, *arguments); };
}

}  // namespace orlftool
