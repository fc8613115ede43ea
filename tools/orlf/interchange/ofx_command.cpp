#include <algorithm>
#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "commands.h"
#include "interchange/ofx_document.h"
#include "io/input_file.h"
#include "io/text_input.h"
#include "session.h"

namespace orlftool {
namespace {

struct OfxArguments {
  std::string file;
  std::optional<std::string> encoding;
  bool pretty = false;
};

void printXml(Session& session, const OfxArguments& arguments) {
  const OfxOptions options{readEncodingOption(arguments.encoding), arguments.pretty};
  const std::string bytes = readInputFile(arguments.file, "an OFX file");
  const std::string name = arguments.file == "-" ? "standard input" : arguments.file;
  const OfxDocument document = convertOfx(bytes, name, options);
  constexpr std::size_t kMostNotes = 20;
  for (std::size_t at = 0; at < std::min(document.notes.size(), kMostNotes); ++at)
    printNote(session, name + ": " + document.notes[at]);
  if (document.notes.size() > kMostNotes)
    printNote(session, name + ": and " + std::to_string(document.notes.size() - kMostNotes) +
                           " more remarks of these kinds");
  session.out << document.xml;
}

}  // namespace

Job declareOfxToXmlCommand(Options& options) {
  options.describe(
      "Print an OFX statement, or other SGML whose leaf elements have no end tags, as XML in "
      "UTF-8.\n"
      "It is read in the encoding that its header or declaration names. What is missing or wrong "
      "is\n"
      "told and converted as it stands.");
  auto arguments = std::make_shared<OfxArguments>();
  options.required("FILE", arguments->file, "A file, or - for the standard input");
  options.text("--encoding", arguments->encoding, std::string(kEncodingNames));
  options.flag("--pretty", arguments->pretty, "Each element on a line of its own, indented");
  return [arguments](Session& session) { printXml(session, *arguments); };
}

}  // namespace orlftool
