#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>
#include <ORLFoundation/amortization/net_present_value.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDecimalSum.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <ostream>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "commands.h"
#include "io/input_file.h"
#include "plan/cash_flow_file.h"
#include "session.h"
#include "values/date_text.h"
#include "values/decimal_behavior.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int16_t kPlacesOfWorth = 6;

struct IrrArguments {
  std::string file;
  std::optional<std::string> discountRate;
};

/// The flows of a file, with those of one time summed, in years from the earliest of them.
class DatedFlows {
 public:
  DatedFlows(const std::string& file, const std::string& text, const NSCalendar& calendar)
      : file_(file) {
    std::vector<CashFlow> flows = parseCashFlows(text, file, calendar);
    if (flows.empty())
      throw JobFailure(file + ": expected lines of a date and an amount, got none");
    std::stable_sort(flows.begin(), flows.end(), [](const CashFlow& left, const CashFlow& right) {
      return orlfIsBefore(left.date, right.date);
    });
    count_ = flows.size();
    first_ = flows.front().date;
    last_ = flows.back().date;
    addAll(flows, calendar);
  }

  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] NSDate first() const { return first_; }
  [[nodiscard]] NSDate last() const { return last_; }

  [[nodiscard]] NSDecimalNumber internalRateOfReturn() const {
    const auto [least, most] = std::minmax_element(values_.begin(), values_.end());
    if (*least >= 0 || *most <= 0)
      throw JobFailure(file_ + ": expected amounts of both signs on at least two dates");
    // The search ends at a worth of 0.00001: small amounts would be worth that at any rate.
    constexpr double kEnough = 100;
    const double largest = std::max(-*least, *most);
    const double scale = largest < kEnough ? kEnough / largest : 1;
    const NSArray places(std::vector<id>(times_.size(), id(NSInteger{0})));
    const auto rate = ORLFAmortizationCalculator::internalRateOfReturnForDataset(
        places, 0, [this, scale](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
          return ORLFCashFlowPoint{times_[index], values_[index] * scale};
        });
    if (!rate) throw JobFailure(file_ + ": no rate makes the amounts worth nothing");
    return *rate;
  }

  /// To six places.
  [[nodiscard]] NSDecimalNumber worthAt(double rate) const {
    const double worth = net_present_value(times_.data(), values_.data(),
                                           static_cast<std::int64_t>(times_.size()), rate);
    if (!std::isfinite(worth)) throw JobFailure("the net present value is too large to hold");
    const auto rounding = makeBehavior({.scale = kPlacesOfWorth});
    return *NSDecimalNumber(NSDecimal::fromDouble(worth))
                .decimalNumberByRoundingAccordingToBehavior(rounding.get());
  }

 private:
  void addAll(const std::vector<CashFlow>& flows, const NSCalendar& calendar) {
    std::vector<NSDecimal> amounts;  // of the last time
    for (const CashFlow& flow : flows) {
      const double years =
          ORLFAmortizationCalculator::annualIntervalFromDate(first_, flow.date, &calendar);
      if (times_.empty() || times_.back() != years) {
        if (!times_.empty()) values_.push_back(sumOf(amounts));
        times_.push_back(years);
        amounts.clear();
      }
      amounts.push_back(flow.amount.decimalValue());
    }
    values_.push_back(sumOf(amounts));
  }

  [[nodiscard]] double sumOf(const std::vector<NSDecimal>& amounts) const {
    const NSDecimalResult sum = NSDecimalSum(amounts);
    if (sum.error == NSCalculationOverflow)
      throw JobFailure(file_ + ": the amounts of one time add up to more than a decimal holds");
    return sum.value.doubleValue();
  }

  const std::string& file_;
  std::size_t count_ = 0;
  std::vector<double> times_, values_;
  NSDate first_, last_;
};

double readDiscountRate(const std::string& text) {
  const double rate = readRateArgument("--npv", text).doubleValue();
  if (!(rate > -1)) throw UsageFailure("--npv: expected a rate above -1, got '" + text + "'");
  return rate;
}

void runIrr(Session& session, const IrrArguments& arguments) {
  const auto calendar = session.calendar;
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
  printJson(session.out, answer);
}

}  // namespace

Job declareIrrCommand(Options& options) {
  options.describe(
      "Print the internal rate of return of dated cash flows: the rate a year at which they are\n"
      "worth nothing, to within 0.00001 of the rate or of the worth.");
  auto arguments = std::make_shared<IrrArguments>();
  options.required("FILE", arguments->file,
                   "CSV file: a date and an amount on each line, a line of names before them or "
                   "not");
  options.text("--npv", arguments->discountRate,
               "Print the net present value at this rate a year instead (0.08 or 8%), on\n"
               "the earliest date of the file");
  return [arguments](Session& session) { runIrr(session, *arguments); };
}

}  // namespace orlftool
