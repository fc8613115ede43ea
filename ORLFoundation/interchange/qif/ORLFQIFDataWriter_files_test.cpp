// Whole files, byte by byte. What a reader of QIF can take of them, `scripts/check-qif` reads back;
// the others hold what it has no words for.
#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>

#include <string>

namespace ORLFoundation {
namespace {

using orlftest::date;

using QIF = ORLFQIFDataWriter;

NSDecimalNumber number(const std::string& text) {
  return NSDecimalNumber::decimalNumberWithString(text);
}

void writeAccounts(QIF& qif) {
  qif.beginAccountList();
  qif.writeAccountName({.name = "Checking", .type = 0, .description = "Everyday account"});
  qif.writeAccountName({.name = "Wallet", .type = 1});
  qif.writeAccountName(
      {.name = "Card", .type = 2, .description = "Plastic", .creditLimit = number("5000")});
  qif.writeAccountName({.name = "Broker", .type = 3, .balance = number("12.5")});
  qif.writeAccountName({.name = "House", .type = 6, .salesTaxRate = number("7.5")});
  qif.writeAccountName({.name = "Mortgage", .type = 7, .description = ""});
  qif.endAccountList();
}

void writeCategories(QIF& qif) {
  qif.beginCategoryList();
  qif.writeCategoryName({.name = "Food", .type = 0, .description = "Groceries"});
  qif.writeCategoryName({.name = "Salary", .type = 1, .taxible = true, .taxCode = 460});
  qif.writeCategoryName({.name = "Travel:Hotel", .type = 2});
  qif.endCategoryList();
}

void writeChecking(QIF& qif) {
  qif.beginTransactionListAccountName("Checking", 0);
  qif.writeNonInvestmentTransactionAmount({.amount = number("2500"),
                                           .date = date("2024-01-31T00:00:00Z"),
                                           .cleared = ORLFQIFReconciled,
                                           .payee = "Employer",
                                           .category = "Salary"});
  qif.endTransaction();
  qif.writeNonInvestmentTransactionAmount({.amount = number("-1234.56"),
                                           .date = date("2024-02-29T00:00:00Z"),
                                           .cleared = ORLFQIFCleared,
                                           .refNum = "1017",
                                           .payee = "Grocer & Söhne",
                                           .memo = "weekly",
                                           .category = "Food/Out",
                                           .tags = {"a:b", "c"}});
  qif.endTransaction();
  qif.writeNonInvestmentTransferAmount({.amount = number("-300"),
                                        .date = date("1999-12-31T00:00:00Z"),
                                        .payee = "To the wallet",
                                        .account = "Wallet"});
  qif.endTransaction();
  qif.writeNonInvestmentSplitTransactionAmount({.amount = number("-150.25"),
                                                .date = date("2024-03-01T00:00:00Z"),
                                                .refNum = "1018",
                                                .payee = "Hotel",
                                                .memo = "in three parts"});
  qif.writeNonInvestmentSplitItemAmount({.amount = number("100"), .category = "Travel:Hotel"});
  qif.writeNonInvestmentSplitItemAmount(
      {.amount = number("60.25"), .category = "Food", .tags = {"trip"}});
  qif.writeNonInvestmentSplitTransferItemAmount({.amount = number("-10"), .account = "Card"});
  qif.endTransaction();
  qif.writeNonInvestmentTransactionAmount({.date = date("2024-03-02T00:00:00Z"), .payee = "Void"});
  qif.endTransaction();
  qif.endTransactionList();
}

void writeOtherLists(QIF& qif) {
  struct List {
    const char* account;
    std::int32_t type;
    const char* amount;
  };
  for (const auto& [account, type, amount] :
       {List{"Wallet", 1, "-4.5"}, List{"Card", 2, "-80"}, List{"House", 6, "250000"},
        List{"Mortgage", 7, "-1999.99"}}) {
    qif.beginTransactionListAccountName(account, type);
    qif.writeNonInvestmentTransactionAmount({.amount = number(amount),
                                             .date = date("2024-04-15T00:00:00Z"),
                                             .payee = account,
                                             .category = "Food"});
    qif.endTransaction();
    qif.endTransactionList();
  }
}

/// The actions that readers know, and the numbers of those that they do not.
constexpr std::int32_t kKnownActions[] = {1,  2,  3,  4,  9,  10, 11, 12, 13, 14,
                                          15, 16, 17, 18, 19, 20, 23, 24, 25, 26,
                                          27, 28, 29, 30, 31, 32, 33, 34, 35};
constexpr std::int32_t kOtherActions[] = {0, 5, 6, 7, 8, 21, 22};

void writeInvestment(QIF& qif, std::int32_t action) {
  qif.writeInvestmentTransactionType({.type = action,
                                      .security = "Acme",
                                      .date = date("2024-05-06T00:00:00Z"),
                                      .price = number("12.5"),
                                      .quantity = number(std::to_string(action + 1)),
                                      .commission = number("1.25"),
                                      .transactionAmount = number("101.25"),
                                      .cleared = action % 3,
                                      .payee = "Floor",
                                      .memo = "order"});
  qif.endTransaction();
}

void writeBroker(QIF& qif) {
  qif.beginTransactionListAccountName("Broker", 3);
  for (const std::int32_t action : kKnownActions) writeInvestment(qif, action);
  qif.writeInvestmentTransferType({.type = 2,
                                   .security = "Acme",
                                   .date = date("2024-06-07T00:00:00Z"),
                                   .price = number("10"),
                                   .quantity = number("100"),
                                   .transactionAmount = number("1000"),
                                   .account = "Checking",
                                   .transferAmount = number("1000")});
  qif.endTransaction();
  qif.endTransactionList();
}

void writeSecurities(QIF& qif) {
  qif.beginSecurityList();
  for (std::int64_t type = 0; type < 5; ++type)
    qif.writeSecurityName("Paper " + std::to_string(type), "P" + std::to_string(type), type,
                          type % 2);
  qif.writeSecurityName(std::nullopt, std::nullopt, 0, 0);
  qif.endSecurityList();
}

void writeLedger(QIF& qif) {
  writeAccounts(qif);
  writeCategories(qif);
  writeChecking(qif);
  writeOtherLists(qif);
  writeBroker(qif);
}

void writePrices(QIF& qif) {
  qif.beginSecurityPriceList();
  qif.beginSecurityPrices();
  qif.writeSecurityPriceSymbol("ACM", number("1234.5"), date("2024-02-29T00:00:00Z"));
  qif.writeSecurityPriceSymbol("ACM", number("0.125"), date("1999-12-31T00:00:00Z"));
  qif.writeSecurityPriceSymbol(std::nullopt, number("7"), date("2024-03-01T00:00:00Z"));
  qif.endSecurityPrices();
  qif.endSecurityPriceList();
}

void writeStockSplits(QIF& qif) {
  qif.beginTransactionListAccountName("Broker", 3);
  for (const std::int32_t cleared : {0, 1, 2}) {
    qif.writeInvestmentSplitSecurity({.security = "Acme",
                                      .date = date("2024-05-06T00:00:00Z"),
                                      .ratio = number("20"),
                                      .cleared = cleared,
                                      .memo = "two for one"});
    qif.endTransaction();
  }
  qif.endTransactionList();
}

void writeFunds(QIF& qif) {
  qif.beginAccountList();
  qif.writeAccountName({.name = "Fund", .type = 4});
  qif.writeAccountName({.name = "Retirement", .type = 5});
  qif.endAccountList();
  qif.beginTransactionListAccountName("Fund", 4);
  writeInvestment(qif, 1);
  qif.endTransactionList();
  qif.beginTransactionListAccountName("Retirement", 5);
  writeInvestment(qif, 3);
  qif.endTransactionList();
}

void writeActions(QIF& qif) {
  qif.beginTransactionListAccountName("Broker", 3);
  for (const std::int32_t action : kOtherActions) writeInvestment(qif, action);
  qif.endTransactionList();
}

void writeSplitMemos(QIF& qif) {
  qif.beginTransactionListAccountName("Checking", 0);
  qif.writeNonInvestmentSplitTransactionAmount(
      {.amount = number("-30"), .date = date("2024-03-01T00:00:00Z"), .payee = "Shop"});
  qif.writeNonInvestmentSplitItemAmount(
      {.amount = number("10"), .memo = "first", .category = "Food"});
  qif.writeNonInvestmentSplitItemAmount({.amount = number("20"), .memo = ""});
  qif.writeNonInvestmentSplitTransferItemAmount({.memo = "last", .account = "Card"});
  qif.endTransaction();
  qif.endTransactionList();
}

struct FileCase {
  const char* name;
  void (*write)(QIF& qif);
};
const FileCase kFiles[] = {
    {"ledger", writeLedger},        {"prices", writePrices},   {"stock_splits", writeStockSplits},
    {"funds", writeFunds},          {"actions", writeActions}, {"split_memos", writeSplitMemos},
    {"securities", writeSecurities}};

TEST(ORLFQIFDataWriterFiles, AreAsTheyAreKept) {
  for (const FileCase& each : kFiles) {
    orlftest::WrittenQIF written;
    each.write(written.writer);
    EXPECT_EQ(written.text(), orlftest::contentOf(std::string(ORLF_SOURCE_DIR) +
                                                  "/tests/data/qif/" + each.name + ".qif"))
        << each.name;
  }
}

}  // namespace
}  // namespace ORLFoundation
