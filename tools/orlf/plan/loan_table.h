/// The amortization table of a loan with level payments, in decimals.
///
///     LoanTable table = makeLoanTable({.principal = tenThousand, .rate = fivePercent,
///                                      .periods = 24});
///     table.rows.back().balance;  // 0, exactly
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <cstdint>
#include <vector>

#include "values/decimal_behavior.h"

namespace orlftool {

struct LoanTerms {
  ORLFoundation::NSDecimalNumber principal;
  ORLFoundation::NSDecimalNumber rate;  // nominal, a year
  std::int32_t compoundingPerYear = 12;
  std::int32_t paymentsPerYear = 12;
  std::int32_t periods = 0;
  DecimalRules rounding{.scale = 2};
};

struct LoanRow {
  std::int32_t number = 0;  // from 1
  ORLFoundation::NSDecimalNumber payment, interest, principal, balance;
};

struct LoanTable {
  ORLFoundation::NSDecimalNumber ratePerPeriod;
  /// The level payment before it is rounded.
  ORLFoundation::NSDecimalNumber exactPayment;
  ORLFoundation::NSDecimalNumber payment;
  ORLFoundation::NSDecimalNumber paid, interest;  // in all
  std::vector<LoanRow> rows;
};

/// One row a payment. The level payment and each interest are rounded by the terms' rule; the last
/// payment is what is owed then, so that the balance ends at exactly zero, and a payment is never
/// more than what is owed. Without interest the principal is paid in equal parts. Throws JobFailure
/// where a number leaves the range of doubles, in which the period's rate is found, or has more
/// than 38 digits at the terms' scale.
[[nodiscard]] LoanTable makeLoanTable(const LoanTerms& terms);

}  // namespace orlftool
