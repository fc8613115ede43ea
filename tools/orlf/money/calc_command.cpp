#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "cli/table.h"
#include "commands.h"
#include "io/input_file.h"
#include "money/typed_sum.h"
#include "session.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct CalcArguments {
  std::string text;
  std::optional<std::string> minimum, maximum;
  bool steps = false;
};

std::optional<NSDecimalNumber> readLimit(std::string_view name,
                                         const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return readDecimalArgument(name, *text);
}

Json jsonOf(std::string_view text, const TypedSum& sum, bool steps) {
  Json row{{"text", text}, {"value", nullptr}};
  if (sum.value) row["value"] = sum.value->stringValue();
  if (!sum.value) row["fault"] = sum.fault;
  if (!steps) return row;
  Json numbers = Json::array();
  for (const TypedNumber& each : sum.numbers)
    numbers.push_back({{"text", each.text}, {"number", each.number.stringValue()}});
  row["numbers"] = std::move(numbers);
  return row;
}

void printSum(Session& session, const TypedSum& sum, bool steps) {
  if (steps && !sum.numbers.empty()) {
    Table table({{"Typed"}, {"Number", Table::kRight}});
    for (const TypedNumber& each : sum.numbers)
      table.addRow({oneLine(each.text), each.number.stringValue()});
    table.print(session.out);
    session.out << '\n';
  }
  session.out << (sum.value ? sum.value->stringValue() : "nil") << '\n';
}

void workOutOne(Session& session, SumReader& reader, const CalcArguments& arguments) {
  const TypedSum sum = reader.read(arguments.text);
  if (session.options.json) {
    printJson(session.out, jsonOf(arguments.text, sum, arguments.steps));
  } else if (sum.value || arguments.steps) {
    printSum(session, sum, arguments.steps);
  }
  if (!sum.value) throw JobFailure(quotedForMessage(arguments.text) + ": " + sum.fault);
}

void workOutLines(Session& session, SumReader& reader, bool steps) {
  const std::string bytes = readInputFile("-", "sums");
  Json rows = Json::array();
  std::size_t line = 0;
  for (std::string_view rest = bytes; !rest.empty();) {
    const std::string_view text = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(text.size() + 1, rest.size()));
    const TypedSum sum = reader.read(text);
    if (session.options.json) rows.push_back(jsonOf(text, sum, steps));
    if (!session.options.json) printSum(session, sum, steps);
    ++line;
    if (sum.value) continue;
    session.exitCode = kExitFailedJob;
    printNote(session, "line " + std::to_string(line) + ": " + sum.fault);
  }
  if (session.options.json) printJson(session.out, rows);
  if (line == 0) throw JobFailure("the input holds no line");
}

void runCalc(Session& session, const CalcArguments& arguments) {
  SumReader reader(session.options.locale, readLimit("--min", arguments.minimum),
                   readLimit("--max", arguments.maximum));
  if (arguments.text == "-") {
    workOutLines(session, reader, arguments.steps);
  } else {
    workOutOne(session, reader, arguments);
  }
}

}  // namespace

Job declareCalcCommand(Options& options) {
  options.describe(
      "Work out a sum as people type it into a field of amounts ('12.50+3*[4-1]', 'two*three')\n"
      "and print a decimal. All of the text must be read. A number may stand in any form of the\n"
      "locale. A sign with nothing before it takes a 0 there, or a 1, so that 5*-3 is -3. Put --\n"
      "before a text that begins with a dash.");
  auto arguments = std::make_shared<CalcArguments>();
  options.required("EXPR", arguments->text,
                   "The sum; - reads one a line from the standard input, and prints nil for\n"
                   "those that have no value");
  options.text("--min", arguments->minimum, "The least value that is taken");
  options.text("--max", arguments->maximum, "The greatest value that is taken");
  options.flag("--steps", arguments->steps, "Print each number as it was understood, too");
  return [arguments](Session& session) { runCalc(session, *arguments); };
}

}  // namespace orlftool
