#include "plan/loan_table.h"

#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>
#include <ORLFoundation/platform/value/NSDecimalSum.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <optional>
#include <string>

#include "cli/failure.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Calculator = ORLFAmortizationCalculator;

bool isZero(const NSDecimalNumber& number) {
  return number.compare(NSDecimalNumber::zero()) == NSOrderedSame;
}

/// What the calculator gives where there is interest; it divides by zero where there is none.
NSDecimalNumber levelPayment(const LoanTerms& terms, const NSDecimalNumber& ratePerPeriod) {
  if (isZero(ratePerPeriod))
    return terms.principal.decimalNumberByDividingBy(
        NSDecimalNumber::decimalNumberWithString(std::to_string(terms.periods)));
  return *Calculator::paymentOnInitialPrincipal(terms.principal, ratePerPeriod, terms.periods);
}

/// The least number whose digits before the point leave less than `scale` of 38 after it.
NSDecimalNumber firstTooLarge(std::int16_t scale) {
  constexpr std::int16_t kMostDigits = 38;
  return NSDecimalNumber::decimalNumberWithMantissa(
      1, static_cast<std::int16_t>(kMostDigits - scale), false);
}

class LoanTableMaker {
 public:
  explicit LoanTableMaker(const LoanTerms& terms)
      : terms_(terms),
        rounding_(makeBehavior(terms.rounding)),
        tooLarge_(firstTooLarge(terms.rounding.scale)),
        balance_(held(terms.principal)) {
    table_.ratePerPeriod = held(*Calculator::paymentPeriodRateForIntervalRate(
        terms.rate, terms.compoundingPerYear, terms.paymentsPerYear));
    table_.exactPayment = held(levelPayment(terms, table_.ratePerPeriod));
    table_.payment = rounded(table_.exactPayment);
  }

  LoanTable take() {
    table_.rows.reserve(static_cast<std::size_t>(terms_.periods));
    for (std::int32_t number = 1; number <= terms_.periods; ++number) addRow(number);
    table_.paid = held(totalOf(&LoanRow::payment));
    table_.interest = totalOf(&LoanRow::interest);
    return std::move(table_);
  }

 private:
  [[nodiscard]] NSDecimalNumber rounded(const NSDecimalNumber& number) const {
    return *held(number).decimalNumberByRoundingAccordingToBehavior(rounding_.get());
  }

  /// The number itself, which all sums on the way from it are exact with.
  [[nodiscard]] NSDecimalNumber held(const NSDecimalNumber& number) const {
    const bool isNumber = number.compare(NSDecimalNumber::notANumber()) != NSOrderedSame;
    if (isNumber && number.compare(tooLarge_) == NSOrderedAscending) return number;
    throw JobFailure(
        "the payments lie outside of what decimals hold: principal, rate or periods are out of "
        "proportion");
  }

  [[nodiscard]] NSDecimalNumber totalOf(NSDecimalNumber LoanRow::*member) const {
    std::vector<NSDecimal> values;
    values.reserve(table_.rows.size());
    for (const LoanRow& row : table_.rows) values.push_back((row.*member).decimalValue());
    return NSDecimalNumber(NSDecimalSum(values).value);
  }

  void addRow(std::int32_t number) {
    LoanRow row;
    row.number = number;
    row.interest =
        rounded(*Calculator::interestForCurrentPrincipal(balance_, table_.ratePerPeriod));
    const NSDecimalNumber owed = held(balance_.decimalNumberByAdding(row.interest));
    const bool clears =
        number == terms_.periods || table_.payment.compare(owed) == NSOrderedDescending;
    row.payment = clears ? owed : table_.payment;
    row.principal = row.payment.decimalNumberBySubtracting(row.interest);
    balance_ = row.balance = owed.decimalNumberBySubtracting(row.payment);
    table_.rows.push_back(row);
  }

  const LoanTerms& terms_;
  std::shared_ptr<NSDecimalNumberBehaviors> rounding_;
  NSDecimalNumber tooLarge_;
  NSDecimalNumber balance_;
  LoanTable table_;
};

}  // namespace

LoanTable makeLoanTable(const LoanTerms& terms) {
  try {
    return LoanTableMaker(terms).take();
  } catch (const NSException&) {
    throw JobFailure(
        "the payments lie outside of what decimals hold: principal, rate or periods "
        "are out of proportion");
  }
}

}  // namespace orlftool
