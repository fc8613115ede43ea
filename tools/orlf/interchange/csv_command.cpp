#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/message_text.h"
#include "commands.h"
#include "interchange/csv_rows.h"
#include "io/text_input.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct CsvArguments {
  std::string file;
  std::string delimiter = "tab";
  std::optional<std::string> separator, encoding;
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
  readTable(input, separator, session, [&](const ORLFTabularRow& row, bool&) {
    if (isFirst && row.fields.size() == 1)
      hasTabs = row.fields.front().find('\t') != row.fields.front().npos;
    isFirst = false;
    printer.print(row);
  });
  printer.finish();
  if (hasTabs && !separator)
    printNote(session, "the first row holds tabs and no separator: --separator tab parts it there");
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
  return [arguments](Session& session) { printRows(session, *arguments); };
}

}  // namespace orlftool
