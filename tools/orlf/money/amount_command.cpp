#include <ORLFoundation/decimal/ORLFDecimalAmount.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/common_options.h"
#include "commands.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void printAmounts(Session& session, const std::vector<std::string>& texts) {
  nlohmann::ordered_json rows = nlohmann::ordered_json::array();
  for (const std::string& text : texts) {
    const std::optional<NSDecimalNumber> amount = orlfDecimalNumberWithFormattedString(text);
    if (!session.options.json) {
      session.out << (amount ? amount->stringValue() : "nil") << '\n';
      continue;
    }
    rows.push_back({{"text", text}, {"amount", nullptr}});
    if (amount) rows.back()["amount"] = amount->stringValue();
  }
  if (session.options.json)
    session.out << rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace

Command addAmountCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "amount",
      "Read amounts as people type them ('$1,000.50', '(12.50)', '3 1/2') and print a decimal, or\n"
      "nil, a line for each. Put -- before texts that begin with a dash.");
  auto texts = std::make_shared<std::vector<std::string>>();
  parser->add_option("TEXT", *texts, "Typed amounts")->required();
  return {parser, [texts](Session& session) { printAmounts(session, *texts); }};
}

}  // namespace orlftool
