#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "cli/option_checks.h"
#include "cli/table.h"
#include "commands.h"
#include "plan/loan_table.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Json = nlohmann::ordered_json;

constexpr std::int64_t kMostPerYear = 366, kMostPeriods = 100000, kMostPlaces = 12;
constexpr int kPlacesOfRate = 10;

struct LoanArguments {
  std::string principal, rate;
  std::int64_t compounding = 12, payments = 12, periods = 0;
  DecimalRuleWords rounding{.scale = 2};
  bool schedule = false;
};

/// Throws UsageFailure unless the number is on the right side of zero.
void requireFromZero(std::string_view option, const NSDecimalNumber& number, bool zeroToo,
                     const std::string& text) {
  const NSComparisonResult order = number.compare(NSDecimalNumber::zero());
  if (order == NSOrderedDescending || (zeroToo && order == NSOrderedSame)) return;
  throw UsageFailure(std::string(option) + ": expected a number " +
                     (zeroToo ? "from 0 on" : "above 0") + ", got '" + text + "'");
}

LoanTerms readTerms(const LoanArguments& arguments) {
  LoanTerms terms;
  terms.principal = readDecimalArgument("--principal", arguments.principal);
  terms.rate = readRateArgument("--rate", arguments.rate);
  requireFromZero("--principal", terms.principal, false, arguments.principal);
  requireFromZero("--rate", terms.rate, true, arguments.rate);
  checkRange("--compounding", arguments.compounding, 1, kMostPerYear);
  checkRange("--payments", arguments.payments, 1, kMostPerYear);
  checkRange("--periods", arguments.periods, 1, kMostPeriods);
  checkRange("--scale", arguments.rounding.scale, 0, kMostPlaces);
  terms.compoundingPerYear = static_cast<std::int32_t>(arguments.compounding);
  terms.paymentsPerYear = static_cast<std::int32_t>(arguments.payments);
  terms.periods = static_cast<std::int32_t>(arguments.periods);
  terms.rounding = readDecimalRules(arguments.rounding);
  return terms;
}

Json jsonOf(const LoanRow& row) {
  return {{"number", row.number},
          {"payment", row.payment.stringValue()},
          {"interest", row.interest.stringValue()},
          {"principal", row.principal.stringValue()},
          {"balance", row.balance.stringValue()}};
}

void printJson(std::ostream& out, const LoanArguments& arguments, const LoanTerms& terms,
               const LoanTable& table) {
  Json answer{{"principal", terms.principal.stringValue()},
              {"rate", terms.rate.stringValue()},
              {"compounding", terms.compoundingPerYear},
              {"payments", terms.paymentsPerYear},
              {"periods", terms.periods},
              {"scale", arguments.rounding.scale},
              {"mode", arguments.rounding.mode},
              {"ratePerPeriod", table.ratePerPeriod.stringValue()},
              {"exactPayment", table.exactPayment.stringValue()},
              {"payment", table.payment.stringValue()},
              {"lastPayment", table.rows.back().payment.stringValue()},
              {"paid", table.paid.stringValue()},
              {"interest", table.interest.stringValue()}};
  if (arguments.schedule) {
    answer["schedule"] = Json::array();
    for (const LoanRow& row : table.rows) answer["schedule"].push_back(jsonOf(row));
  }
  out << answer.dump(2) << '\n';
}

std::string rateText(const NSDecimalNumber& rate, const std::string& locale) {
  const auto rounding = makeBehavior({.scale = kPlacesOfRate});
  return DecimalPrinter(locale, 0).text(
      *rate.decimalNumberByRoundingAccordingToBehavior(rounding.get()));
}

void printTable(std::ostream& out, const LoanTable& loan, const DecimalPrinter& money) {
  Table table({{"No.", Table::kRight},
               {"Payment", Table::kRight},
               {"Interest", Table::kRight},
               {"Principal", Table::kRight},
               {"Balance", Table::kRight}});
  for (const LoanRow& row : loan.rows)
    table.addRow({std::to_string(row.number), money.text(row.payment), money.text(row.interest),
                  money.text(row.principal), money.text(row.balance)});
  table.print(out);
}

void printText(Session& session, const LoanArguments& arguments, const LoanTable& table) {
  const std::string& locale = session.options.locale;
  const DecimalPrinter money(locale, static_cast<int>(arguments.rounding.scale));
  session.out << "Payment:        " << money.text(table.payment) << '\n'
              << "Last payment:   " << money.text(table.rows.back().payment) << '\n'
              << "Paid in all:    " << money.text(table.paid) << '\n'
              << "Interest:       " << money.text(table.interest) << '\n'
              << "Period's rate:  " << rateText(table.ratePerPeriod, locale) << '\n'
              << "Rounding:       payment and interest to " << arguments.rounding.scale
              << (arguments.rounding.scale == 1 ? " place, " : " places, ")
              << arguments.rounding.mode << "; the last payment clears the balance\n";
  if (!arguments.schedule) return;
  session.out << '\n';
  printTable(session.out, table, money);
}

void runLoan(Session& session, const LoanArguments& arguments) {
  (void)makeCalendar(session.options.zone, session.options.locale);  // refuses unknown names
  const LoanTerms terms = readTerms(arguments);
  const LoanTable table = makeLoanTable(terms);
  if (session.options.json) {
    printJson(session.out, arguments, terms, table);
  } else {
    printText(session, arguments, table);
  }
}

}  // namespace

Command addLoanCommand(CLI::App& tool) {
  CLI::App* parser =
      tool.add_subcommand("loan", "Print the level payment of a loan, and its amortization table.");
  auto arguments = std::make_shared<LoanArguments>();
  parser->add_option("--principal", arguments->principal, "What is borrowed")->required();
  parser->add_option("--rate", arguments->rate, "Nominal rate a year, 0.045 or 4.5%")->required();
  parser->add_option("--compounding", arguments->compounding, "Times a year interest is compounded")
      ->capture_default_str();
  parser->add_option("--payments", arguments->payments, "Payments a year")->capture_default_str();
  parser->add_option("--periods", arguments->periods, "Payments in all")->required();
  parser->add_flag("--schedule", arguments->schedule,
                   "Print each payment with its interest, principal and balance");
  parser
      ->add_option("--scale", arguments->rounding.scale,
                   "Places that payment and interest are rounded to; the last payment clears\n"
                   "the balance")
      ->capture_default_str();
  parser->add_option("--mode", arguments->rounding.mode, std::string(kRoundingModeHelp))
      ->capture_default_str();
  return {parser, [arguments](Session& session) { runLoan(session, *arguments); }};
}

}  // namespace orlftool
