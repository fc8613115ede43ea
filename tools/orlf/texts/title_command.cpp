#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/json_output.h"
#include "commands.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void printTitles(Session& session, const std::vector<std::string>& texts) {
  const auto locale = std::make_shared<NSLocale>(session.options.locale);
  Json rows = Json::array();
  for (const std::string& text : texts) {
    const std::string title = orlfTitleCase(text, locale);
    if (session.options.json) {
      rows.push_back({{"text", text}, {"title", title}});
    } else {
      session.out << title << '\n';
    }
  }
  if (session.options.json) printJson(session.out, rows);
}

}  // namespace

Job declareTitleCommand(Options& options) {
  options.describe(
      "Print texts in title case, a line for each: every word capitalized but short conjunctions,\n"
      "particles and prepositions of English. Put -- before texts that begin with a dash.");
  auto texts = std::make_shared<std::vector<std::string>>();
  options.requiredList("TEXT", *texts, "Texts");
  return [texts](Session& session) { printTitles(session, *texts); };
}

}  // namespace orlftool
