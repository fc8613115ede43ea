#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>
#include <ORLFoundation/amortization/net_present_value.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "commands.h"
#include "io/input_file.h"
#include "plan/cash_flow_file.h"
#include "values/date_text.h"
#include "values/decimal_behavior.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Json = nlohmann::ordered_json;

constexpr std::int16_t kPlacesOfWorth = 6;

struct IrrArguments {
  std::string file;
  std::optional<std::string> discountRate;
};

bool isEarlier(NSDate left, NSDate right) { return left.compare(right) == NSOrderedAscending; }

/// The flows as points in years from the earliest of them.
class DatedFlows {
 public:
  DatedFlows(const std::string& file, const std::string& text, const NSCalendar& calendar)
      : file_(file) {
    const std::vector<CashFlow> flows = parseCashFlows(text, file, calendar);
    if (flows.empty())
      throw JobFailure(file + ": expected lines of a date and an amount, got none");
    const auto [first, last] = std::minmax_element(flows.begin(), flows.end(),
                                                   [](const CashFlow& left, const CashFlow& right) {
                                                     return isEarlier(left.date, right.date);
                                                   });
    first_ = first->date;
    last_ = last->date;
    for (const CashFlow& flow : flows) {
      times_.push_back(
          ORLFAmortizationCalculator::annualIntervalFromDate(first_, flow.date, &calendar));
      values_.push_back(flow.amount.doubleValue());
    }
  }

  [[nodiscard]] std::size_t count() const { return times_.size(); }
  [[nodiscard]] NSDate first() const { return first_; }
  [[nodiscard]] NSDate last() const { return last_; }

  [[nodiscard]] NSDecimalNumber internalRateOfReturn() const {
    const auto [least, most] = std::minmax_element(values_.begin(), values_.end());
    if (*least >= 0 || *most <= 0 || !isEarlier(first_, last_))
      throw JobFailure(file_ + ": expected amounts of both signs on at least two dates");
    const NSArray places(std::vector<id>(count(), id(NSInteger{0})));
    const auto rate = ORLFAmortizationCalculator::internalRateOfReturnForDataset(
        places, 0, [this](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
          return ORLFCashFlowPoint{times_[index], values_[index]};
        });
    if (!rate) throw JobFailure(file_ + ": no rate makes the amounts worth nothing");
    return *rate;
  }

  /// To six places.
  [[nodiscard]] NSDecimalNumber worthAt(double rate) const {
    const double worth =
        net_present_value(times_.data(), values_.data(), static_cast<std::int64_t>(count()), rate);
    if (!std::isfinite(worth)) throw JobFailure("the net present value is too large to hold");
    const auto rounding = makeBehavior({.scale = kPlacesOfWorth});
    return *NSDecimalNumber(NSDecimal::fromDouble(worth))
                .decimalNumberByRoundingAccordingToBehavior(rounding.get());
  }

 private:
  const std::string& file_;
  std::vector<double> times_, values_;
  NSDate first_, last_;
};

double readDiscountRate(const std::string& text) {
  const double rate = readRateArgument("--npv", text).doubleValue();
  if (!(rate > -1)) throw UsageFailure("--npv: expected a rate above -1, got '" + text + "'");
  return rate;
}

void runIrr(Session& session, const IrrArguments& arguments) {
  const auto calendar = makeCalendar(session.options.zone, session.options.locale);
  std::optional<double> discountRate;
  if (arguments.discountRate) discountRate = readDiscountRate(*arguments.discountRate);
  const DatedFlows flows(arguments.file, readInputFile(arguments.file, "a CSV file of cash flows"),
                         *calendar);
  const std::string number = discountRate ? flows.worthAt(*discountRate).stringValue()
                                          : flows.internalRateOfReturn().stringValue();
  if (!session.options.json) {
    session.out << number << '\n';
    return;
  }
  Json answer{{"flows", flows.count()},
              {"from", dateTimeText(flows.first(), *calendar)},
              {"to", dateTimeText(flows.last(), *calendar)}};
  if (discountRate) answer["discountRate"] = *arguments.discountRate;
  answer[discountRate ? "netPresentValue" : "rate"] = number;
  session.out << answer.dump(2) << '\n';
}

}  // namespace

Command addIrrCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "irr",
      "Print the internal rate of return of dated cash flows: the rate a year at which they are\n"
      "worth nothing, to within 0.00001 of the rate or of the worth.");
  auto arguments = std::make_shared<IrrArguments>();
  parser
      ->add_option("FILE", arguments->file,
                   "CSV file: a date and an amount on each line, a line of names before them or "
                   "not")
      ->required();
  parser->add_option("--npv", arguments->discountRate,
                     "Print the net present value at this rate a year instead (0.08 or 8%), on\n"
                     "the earliest date of the file");
  return {parser, [arguments](Session& session) { runIrr(session, *arguments); }};
}

}  // namespace orlftool
