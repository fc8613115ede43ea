#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "cli/table.h"
#include "commands.h"
#include "interchange/csv_inference.h"
#include "interchange/csv_rows.h"
#include "io/byte_source.h"
#include "io/input_file.h"
#include "io/text_input.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::string_view kKind = "separated text";

struct CsvArguments {
  std::string file;
  std::string delimiter = "tab";
  std::optional<std::string> separator, encoding;
  bool infer = false;
};

/// As the library's writer numbers them.
std::int64_t delimiterTypeNamed(const std::string& name) {
  if (name == "comma") return 0;
  if (name == "tab") return 1;
  throw UsageFailure("--delimiter: expected comma or tab, got " + quotedForMessage(name));
}

void printRows(Session& session, const CsvArguments& arguments) {
  const std::int64_t delimiterType = delimiterTypeNamed(arguments.delimiter);
  const std::optional<char> separator = readSeparatorOption(arguments.separator);
  TextInput input(arguments.file, readEncodingOption(arguments.encoding));
  RowPrinter printer(session, input.name(), delimiterType);
  bool isFirst = true;
  bool hasTabs = false;
  readTable(input, separator, [&](const ORLFTabularRow& row, bool&) {
    if (isFirst && row.fields.size() == 1)
      hasTabs = row.fields.front().find('\t') != row.fields.front().npos;
    isFirst = false;
    printer.print(row);
  });
  printer.finish();
  if (hasTabs && !separator)
    printNote(session, "the first row holds tabs and no separator: --separator tab parts it there");
}

Json jsonOf(const std::vector<Finding>& findings) {
  Json rows = Json::array();
  for (const Finding& finding : findings)
    rows.push_back({{"question", finding.question},
                    {"answer", finding.answer.empty() ? Json() : Json(finding.answer)},
                    {"line", finding.line == 0 ? Json() : Json(finding.line)},
                    {"reason", finding.reason}});
  return rows;
}

/// Of a file, which can be read again, and of anything else, which is kept in memory.
std::vector<Finding> findingsOf(Session& session, const std::string& path) {
  if (path != "-" && openBytes(path, kKind).size)
    return inferTable([&] { return openBytes(path, kKind); }, session.calendar);
  return inferTable(readInputFile(path, kKind), session.calendar);
}

void printFindings(Session& session, const CsvArguments& arguments) {
  const std::vector<Finding> findings = findingsOf(session, arguments.file);
  if (session.options.json) {
    printJson(session.out, jsonOf(findings));
    return;
  }
  Table table({{"Question"}, {"Answer"}, {"Line", Table::kRight}, {"Because"}});
  for (const Finding& finding : findings)
    table.addRow({finding.question, finding.answer.empty() ? "ask" : finding.answer,
                  finding.line == 0 ? "" : std::to_string(finding.line), finding.reason});
  table.print(session.out);
}

}  // namespace

Job declareCsvCommand(Options& options) {
  options.describe(
      "Print the rows of separated text as text or, with --json, as an array of arrays. A "
      "semicolon\n"
      "parts fields where the first line holds one, else a comma. Blank rows and empty fields at "
      "the\n"
      "end of a row are left out, and so are blanks behind a separator.");
  auto arguments = std::make_shared<CsvArguments>();
  options.required("FILE", arguments->file, "A file, or - for the standard input");
  options.text("--delimiter", arguments->delimiter, "What parts printed values: comma or tab");
  options.text("--separator", arguments->separator,
               "What parts the file's fields: comma, semicolon or tab");
  options.text("--encoding", arguments->encoding, std::string(kEncodingNames));
  options.flag("--infer", arguments->infer,
               "Tell how the file is to be read, with the row that decided; ask where none did");
  for (const char* option : {"--delimiter", "--separator", "--encoding"})
    options.exclude("--infer", option);
  return [arguments](Session& session) {
    if (arguments->infer)
      printFindings(session, *arguments);
    else
      printRows(session, *arguments);
  };
}

}  // namespace orlftool
