#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "money/typed_sum.h"
#include "session.h"

namespace orlftool {
namespace {

void runPercent(Session& session, const std::string& text) {
  const TypedSum percentage = readPercentage(session.options.locale, text);
  if (!percentage.value) throw JobFailure(quotedForMessage(text) + ": " + percentage.fault);
  if (session.options.json) {
    printJson(session.out, {{"text", text}, {"value", percentage.value->stringValue()}});
  } else {
    session.out << percentage.value->stringValue() << '\n';
  }
}

}  // namespace

Job declarePercentCommand(Options& options) {
  options.describe(
      "Read a percentage as people type it, '5' or '5%', and print it as a decimal, 0.05. All of\n"
      "the text must be read. Put -- before a text that begins with a dash.");
  auto text = std::make_shared<std::string>();
  options.required("TEXT", *text, "The percentage, in the form of the locale");
  return [text](Session& session) { runPercent(session, *text); };
}

}  // namespace orlftool
