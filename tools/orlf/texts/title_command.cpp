#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "commands.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void printTitles(Session& session, const std::vector<std::string>& texts) {
  if (!isKnownLocale(session.options.locale))
    throw UsageFailure("--locale: unknown locale '" + session.options.locale + "'");
  const auto locale = std::make_shared<NSLocale>(session.options.locale);
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const std::string& text : texts) {
    const std::string title = orlfTitleCase(text, locale);
    if (session.options.json) {
      rows.push_back({{"text", text}, {"title", title}});
    } else {
      session.out << title << '\n';
    }
  }
  if (session.options.json)
    session.out << rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace

Command addTitleCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "title",
      "Print texts in title case, a line for each: every word capitalized but short conjunctions,\n"
      "particles and prepositions of English. Put -- before texts that begin with a dash.");
  auto texts = std::make_shared<std::vector<std::string>>();
  parser->add_option("TEXT", *texts, "Texts")->required();
  return {parser, [texts](Session& session) { printTitles(session, *texts); }};
}

}  // namespace orlftool
