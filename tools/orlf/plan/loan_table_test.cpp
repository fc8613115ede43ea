#include "plan/loan_table.h"

#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>
#include <gtest/gtest.h>

#include <cmath>

#include "cli/failure.h"

namespace {

using namespace ORLFoundation;
using orlftool::LoanRow;
using orlftool::LoanTable;
using orlftool::LoanTerms;

NSDecimalNumber number(const char* text) { return NSDecimalNumber::decimalNumberWithString(text); }

LoanTerms terms(const char* principal, const char* rate, std::int32_t periods) {
  return {.principal = number(principal), .rate = number(rate), .periods = periods};
}

bool isZero(const NSDecimalNumber& value) {
  return value.compare(NSDecimalNumber::zero()) == NSOrderedSame;
}

TEST(LoanTable, ClearsTheBalanceExactlyWhateverTheTerms) {
  for (const char* principal : {"0.01", "1", "999.99", "250000", "1234567.891"})
    for (const char* rate : {"0", "0.0001", "0.045", "0.3", "2"})
      for (const std::int32_t periods : {1, 2, 12, 361})
        for (const auto mode : {NSRoundPlain, NSRoundDown, NSRoundUp, NSRoundBankers}) {
          LoanTerms loan = terms(principal, rate, periods);
          loan.rounding.mode = mode;
          const LoanTable table = orlftool::makeLoanTable(loan);
          ASSERT_EQ(table.rows.size(), static_cast<std::size_t>(periods));
          EXPECT_TRUE(isZero(table.rows.back().balance)) << principal << ' ' << rate;
        }
}

TEST(LoanTable, AddsUpInEachRowAndInAll) {
  const LoanTable table = orlftool::makeLoanTable(terms("250000", "0.045", 360));
  NSDecimalNumber balance = number("250000"), paid, interest, principal;
  for (const LoanRow& row : table.rows) {
    EXPECT_EQ(row.interest.decimalNumberByAdding(row.principal), row.payment) << row.number;
    balance = balance.decimalNumberBySubtracting(row.principal);
    EXPECT_EQ(row.balance, balance) << row.number;
    paid = paid.decimalNumberByAdding(row.payment);
    interest = interest.decimalNumberByAdding(row.interest);
    principal = principal.decimalNumberByAdding(row.principal);
  }
  EXPECT_EQ(principal, number("250000"));
  EXPECT_EQ(table.paid, paid);
  EXPECT_EQ(table.interest, interest);
  EXPECT_EQ(table.payment, number("1266.71"));
  EXPECT_NEAR(table.exactPayment.doubleValue(), 1266.7132745647017, 1e-9);
}

TEST(LoanTable, LevelPaymentsButTheLastAreEqual) {
  const LoanTable table = orlftool::makeLoanTable(terms("1000", "0.12", 12));
  for (std::size_t i = 0; i + 1 < table.rows.size(); ++i)
    EXPECT_EQ(table.rows[i].payment, number("88.85"));
  EXPECT_EQ(table.rows.back().payment, number("88.84"));
}

TEST(LoanTable, TakesCompoundingAndPaymentsApart) {
  LoanTerms loan = terms("250000", "0.06", 300);
  loan.compoundingPerYear = 2;
  const LoanTable table = orlftool::makeLoanTable(loan);
  EXPECT_NEAR(table.ratePerPeriod.doubleValue(), std::pow(1.03, 2.0 / 12) - 1, 1e-15);
}

TEST(LoanTable, WithoutInterestPaysEqualParts) {
  const LoanTable table = orlftool::makeLoanTable(terms("100", "0", 3));
  EXPECT_EQ(table.payment, number("33.33"));
  EXPECT_EQ(table.rows.back().payment, number("33.34"));
  EXPECT_TRUE(isZero(table.interest));
}

TEST(LoanTable, NeverTakesMoreThanIsOwed) {
  const LoanTable table = orlftool::makeLoanTable(terms("0.03", "0.05", 5));
  EXPECT_EQ(table.paid, number("0.03"));
  EXPECT_TRUE(isZero(table.rows[2].balance));
  EXPECT_TRUE(isZero(table.rows[3].payment));
}

TEST(LoanTable, RoundsByItsRule) {
  LoanTerms loan = terms("1000", "0.05", 7);
  loan.rounding = {.scale = 0, .mode = NSRoundUp};
  for (const LoanRow& row : orlftool::makeLoanTable(loan).rows) {
    EXPECT_EQ(row.payment.stringValue().find('.'), std::string::npos);
    EXPECT_EQ(row.interest.stringValue().find('.'), std::string::npos);
  }
}

TEST(LoanTable, RefusesPaymentsThatDecimalsDoNotHold) {
  EXPECT_THROW((void)orlftool::makeLoanTable(terms("1e30", "90000", 100000)), orlftool::JobFailure);
}

}  // namespace
