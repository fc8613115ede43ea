#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/table.h"
#include "commands.h"
#include "plan/loan_table.h"
#include "session.h"
#include "values/decimal_behavior.h"
#include "values/decimal_text.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int64_t kMostPerYear = 366, kMostPeriods = 100000, kMostPlaces = 12;
constexpr int kPlacesOfRate = 10;

struct LoanArguments {
  std::string principal, rate;
  std::string compounding = "12", payments = "12", periods;
  std::string scale = "2", mode = "plain";
  bool schedule = false;
};

bool isAboveZero(const NSDecimalNumber& number) {
  return number.compare(NSDecimalNumber::zero()) == NSOrderedDescending;
}

std::string placesText(int places) {
  return std::to_string(places) + (places == 1 ? " place" : " places");
}

/// A rate of 1 or more without a percent sign is a percentage whose sign was forgotten.
NSDecimalNumber readLoanRate(const std::string& text) {
  const NSDecimalNumber rate = readRateArgument("--rate", text);
  if (rate.compare(NSDecimalNumber::zero()) == NSOrderedAscending)
    throw UsageFailure("--rate: expected a number from 0 on, got '" + text + "'");
  if (!text.ends_with('%') && rate.compare(NSDecimalNumber::one()) != NSOrderedAscending)
    throw UsageFailure("--rate: expected a rate below 1 or one with a percent sign, " + text +
                       "%, got '" + text + "'");
  return rate;
}

/// As typed, then rounded: what is left of it must be borrowed money still.
NSDecimalNumber readPrincipal(const std::string& text, const DecimalRules& rounding) {
  const NSDecimalNumber typed = readDecimalArgument("--principal", text);
  if (!isAboveZero(typed))
    throw UsageFailure("--principal: expected a number above 0, got '" + text + "'");
  const NSDecimalNumber principal =
      *typed.decimalNumberByRoundingAccordingToBehavior(makeBehavior(rounding).get());
  if (!isAboveZero(principal))
    throw UsageFailure("--principal: expected a number that is above 0 when it is rounded to " +
                       placesText(rounding.scale) + ", got '" + text + "'");
  return principal;
}

LoanTerms readTerms(const LoanArguments& arguments) {
  LoanTerms terms;
  terms.rate = readLoanRate(arguments.rate);
  const auto number = [](std::string_view option, const std::string& text, std::int64_t most) {
    return static_cast<std::int32_t>(readWholeArgument(option, text, 1, most));
  };
  terms.compoundingPerYear = number("--compounding", arguments.compounding, kMostPerYear);
  terms.paymentsPerYear = number("--payments", arguments.payments, kMostPerYear);
  terms.periods = number("--periods", arguments.periods, kMostPeriods);
  (void)readWholeArgument("--scale", arguments.scale, 0, kMostPlaces);
  terms.rounding = readDecimalRules({.scale = arguments.scale, .mode = arguments.mode});
  terms.principal = readPrincipal(arguments.principal, terms.rounding);
  return terms;
}

Json jsonOf(const LoanRow& row) {
  return {{"number", row.number},
          {"payment", row.payment.stringValue()},
          {"interest", row.interest.stringValue()},
          {"principal", row.principal.stringValue()},
          {"balance", row.balance.stringValue()}};
}

Json jsonOf(const LoanArguments& arguments, const LoanTerms& terms, const LoanTable& table) {
  Json answer{{"principal", terms.principal.stringValue()},
              {"rate", terms.rate.stringValue()},
              {"compounding", terms.compoundingPerYear},
              {"payments", terms.paymentsPerYear},
              {"periods", terms.periods},
              {"scale", terms.rounding.scale},
              {"mode", arguments.mode},
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
  return answer;
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

void printText(Session& session, const LoanArguments& arguments, const LoanTerms& terms,
               const LoanTable& table) {
  const int places = terms.rounding.scale;
  const std::string& locale = session.options.locale;
  const DecimalPrinter money(locale, places);
  session.out << "Payment:        " << money.text(table.payment) << '\n'
              << "Last payment:   " << money.text(table.rows.back().payment) << '\n'
              << "Paid in all:    " << money.text(table.paid) << '\n'
              << "Interest:       " << money.text(table.interest) << '\n'
              << "Period's rate:  " << rateText(table.ratePerPeriod, locale) << '\n'
              << "Rounding:       payment and interest to " << placesText(places) << ", "
              << arguments.mode << "; the last payment clears the balance\n";
  if (!arguments.schedule) return;
  session.out << '\n';
  printTable(session.out, table, money);
}

void runLoan(Session& session, const LoanArguments& arguments) {
  const LoanTerms terms = readTerms(arguments);
  const LoanTable table = makeLoanTable(terms);
  if (session.options.json) {
    printJson(session.out, jsonOf(arguments, terms, table));
  } else {
    printText(session, arguments, terms, table);
  }
}

}  // namespace

Job declareLoanCommand(Options& options) {
  options.describe("Print the level payment of a loan, and its amortization table.");
  auto arguments = std::make_shared<LoanArguments>();
  options.required("--principal", arguments->principal, "What is borrowed");
  options.required("--rate", arguments->rate, "Nominal rate a year, 0.045 or 4.5%");
  options.text("--compounding", arguments->compounding, "Times a year interest is compounded");
  options.text("--payments", arguments->payments, "Payments a year");
  options.required("--periods", arguments->periods, "Payments in all");
  options.flag("--schedule", arguments->schedule,
               "Print each payment with its interest, principal and balance");
  options.text("--scale", arguments->scale,
               "Places that principal, payment and interest are rounded to; the last payment\n"
               "clears the balance");
  options.text("--mode", arguments->mode, kRoundingModeHelp);
  return [arguments](Session& session) { runLoan(session, *arguments); };
}

}  // namespace orlftool
