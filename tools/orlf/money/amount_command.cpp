#include <ORLFoundation/decimal/ORLFDecimalAmount.h>

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

void printAmounts(Session& session, const std::vector<std::string>& texts) {
  Json rows = Json::array();
  for (const std::string& text : texts) {
    const std::optional<NSDecimalNumber> amount = orlfDecimalNumberWithFormattedString(text);
    if (!session.options.json) {
      session.out << (amount ? amount->stringValue() : "nil") << '\n';
      continue;
    }
    rows.push_back({{"text", text}, {"amount", nullptr}});
    if (amount) rows.back()["amount"] = amount->stringValue();
  }
  if (session.options.json) printJson(session.out, rows);
}

}  // namespace

Job declareAmountCommand(Options& options) {
  options.describe(
      "Read amounts as people type them ('$1,000.50', '(12.50)', '3 1/2') and print a decimal, or\n"
      "nil, a line for each. Put -- before texts that begin with a dash.");
  auto texts = std::make_shared<std::vector<std::string>>();
  options.requiredList("TEXT", *texts, "Typed amounts");
  return [texts](Session& session) { printAmounts(session, *texts); };
}

}  // namespace orlftool
