#include "interchange/qif_records.h"

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>
#include <utility>

#include "cli/failure.h"
#include "cli/message_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using internal::base::equalsIgnoringCase;

struct NamedCode {
  std::string_view name;
  std::int32_t code;
};

constexpr std::array<NamedCode, 15> kAccountTypes{{{"bank", 0},
                                                   {"cash", 1},
                                                   {"card", 2},
                                                   {"ccard", 2},
                                                   {"investment", 3},
                                                   {"invst", 3},
                                                   {"fund", 4},
                                                   {"mutualfund", 4},
                                                   {"retirement", 5},
                                                   {"401k/403b", 5},
                                                   {"asset", 6},
                                                   {"oth a", 6},
                                                   {"liability", 7},
                                                   {"oth l", 7},
                                                   {"401k", 5}}};
constexpr std::array<NamedCode, 7> kClearedWords{
    {{"c", 1}, {"*", 1}, {"cleared", 1}, {"r", 2}, {"x", 2}, {"reconciled", 2}, {"no", 0}}};
constexpr std::array<NamedCode, 2> kCategoryTypes{{{"expense", 0}, {"income", 1}}};
constexpr std::array<NamedCode, 6> kYesOrNo{
    {{"yes", 1}, {"true", 1}, {"1", 1}, {"no", 0}, {"false", 0}, {"0", 0}}};
constexpr std::int32_t kLastAction = 36;
constexpr std::int32_t kStockSplit = 36;
constexpr std::int64_t kLastSecurityType = 3;

template <std::size_t Count>
std::optional<std::int32_t> codeNamed(const std::array<NamedCode, Count>& codes,
                                      std::string_view name) {
  const auto found = std::find_if(codes.begin(), codes.end(), [name](const NamedCode& each) {
    return equalsIgnoringCase(each.name, name);
  });
  return found == codes.end() ? std::nullopt : std::optional(found->code);
}

/// The code of a field's word, `absent` for an empty field.
template <std::size_t Count>
std::int32_t codeOf(const TypedRow& row, std::size_t field,
                    const std::array<NamedCode, Count>& codes, std::int32_t absent,
                    std::string_view expected) {
  const std::string word = row.text(field);
  if (word.empty()) return absent;
  const std::optional<std::int32_t> code = codeNamed(codes, word);
  if (!code) row.refuse(field, expected);
  return *code;
}

/// A record that was refused: only a character outside the encoding refuses one, since streams
/// throw.
void require(bool isWritten) {
  if (!isWritten) throw BadRow{"record", "characters of the output's encoding", "others"};
}

/// The head of an account's list, for the same reason.
void beginList(ORLFQIFDataWriter& writer, const QifRequest& request) {
  if (!writer.beginTransactionListAccountName(request.account, request.accountType))
    throw UsageFailure("--account: expected characters of the output's encoding, got " +
                       quotedForMessage(request.account));
}

/// The name of a category. One in brackets would be read as the account of a transfer.
std::optional<std::string> categoryOf(const TypedRow& row, std::size_t field) {
  std::optional<std::string> name = row.textIfAny(field);
  if (name && name->starts_with('['))
    row.refuse(field, "a category, which does not begin with a bracket as an account does");
  return name;
}

/// The account of a transfer, which stands in brackets.
std::optional<std::string> transferOf(const TypedRow& row, std::size_t field) {
  std::optional<std::string> account = row.textIfAny(field);
  if (account && account->find(']') != account->npos)
    row.refuse(field, "an account without a closing bracket in its name");
  return account;
}

/// nil stays nil: an amount negated where that is asked for.
std::optional<NSDecimalNumber> signedAmount(std::optional<NSDecimalNumber> amount,
                                            const QifRequest& request) {
  if (amount && request.isNegated) return orlfDecimalNumberByNegatingNumber(*amount);
  return amount;
}

class Transactions final : public QifRecords {
 public:
  explicit Transactions(QifRequest request) : request_(std::move(request)) {}

  [[nodiscard]] std::span<const FieldRule> rules() const override { return kRules; }

  void check(const TypedTable& table) const override {
    const bool hasSides = table.has(kDebit) || table.has(kCredit);
    if (table.has(kAmount) && hasSides)
      throw UsageFailure("--map: expected an amount or debit and credit, got both");
    if (!table.has(kAmount) && !hasSides)
      throw UsageFailure("--map: expected a column of amounts, or of debits and credits, got none");
  }

  void begin(ORLFQIFDataWriter& writer) const override { beginList(writer, request_); }

  void write(ORLFQIFDataWriter& writer, const TypedRow& row) const override {
    const auto refNum = row.textIfAny(kNumber), payee = row.textIfAny(kPayee);
    const auto memo = row.textIfAny(kMemo), category = categoryOf(row, kCategory);
    const auto transfer = transferOf(row, kTransfer);
    if (transfer) row.leaveOut(kCategory, "a transfer");
    require(writer.writeRawNonInvestmentTransactionAmount(
        {.amount = signedAmount(amountOf(row), request_),
         .date = row.date(kDate),
         .cleared = codeOf(row, kCleared, kClearedWords, 0, "c, r, cleared, reconciled or no"),
         .refNum = refNum,
         .payee = payee,
         .memo = memo,
         .account = transfer,
         .category = category}));
    writer.endTransaction();
  }

  void end(ORLFQIFDataWriter& writer) const override { writer.endTransactionList(); }

 private:
  enum Field : std::size_t {
    kDate,
    kAmount,
    kDebit,
    kCredit,
    kPayee,
    kMemo,
    kCategory,
    kTransfer,
    kNumber,
    kCleared
  };
  static constexpr std::array<FieldRule, 10> kRules{
      {{"date", FieldType::Date, true,
        "date|transaction date|booking date|posting date|buchungstag|datum"},
       {"amount", FieldType::Number, false, "amount|betrag|value|amount (eur)|montant"},
       {"debit", FieldType::Number, false, "debit|withdrawal|debit amount|paid out|money out"},
       {"credit", FieldType::Number, false, "credit|deposit|credit amount|paid in|money in"},
       {"payee", FieldType::Text, false, "payee|description|name|merchant name|partner name"},
       {"memo", FieldType::Text, false, "memo|notes|note|payment reference|reference"},
       {"category", FieldType::Text, false, "category"},
       {"transfer", FieldType::Text, false, "transfer"},
       {"number", FieldType::Text, false, "number|check number|checknumber|num"},
       {"cleared", FieldType::Text, false, "cleared"}}};

  /// Of debit and credit, which of them is not 0: out of the account and into it.
  [[nodiscard]] NSDecimalNumber amountOf(const TypedRow& row) const {
    if (const auto amount = row.number(kAmount)) return *amount;
    const auto debit = row.number(kDebit);
    const auto credit = row.number(kCredit);
    if (!debit && !credit) row.refuse(kAmount, "an amount");
    const bool isOut = debit && !orlfIsZero(*debit);
    const bool isIn = credit && !orlfIsZero(*credit);
    if (isOut && isIn) row.refuse(kDebit, "a debit or a credit, of which one is empty or 0");
    if (isIn) return *credit;
    if (!isOut) return NSDecimalNumber::zero();
    requireOneSign(row, *debit);
    return orlfDecimalNumberByNegatingNumber(orlfAbsoluteValue(*debit));
  }

  /// Banks write debits with a minus or without one. With both in a column, one of them is no
  /// debit.
  void requireOneSign(const TypedRow& row, const NSDecimalNumber& debit) const {
    const bool isNegative = orlfIsNegativeNumber(debit);
    if (!debitsAreNegative_) debitsAreNegative_ = isNegative;
    if (*debitsAreNegative_ != isNegative) row.refuse(kDebit, "debits of one sign in the column");
  }

  const QifRequest request_;
  mutable std::optional<bool> debitsAreNegative_;  // as the first of them is
};

class Investments final : public QifRecords {
 public:
  explicit Investments(QifRequest request) : request_(std::move(request)) {}

  [[nodiscard]] std::span<const FieldRule> rules() const override { return kRules; }
  void check(const TypedTable& /*table*/) const override {}

  void begin(ORLFQIFDataWriter& writer) const override { beginList(writer, request_); }

  void write(ORLFQIFDataWriter& writer, const TypedRow& row) const override {
    const std::int32_t action = actionOf(row);
    const auto security = row.textIfAny(kSecurity), payee = row.textIfAny(kPayee);
    const auto memo = row.textIfAny(kMemo), transfer = transferOf(row, kTransfer);
    const std::int32_t cleared =
        codeOf(row, kCleared, kClearedWords, 0, "c, r, cleared, reconciled or no");
    if (action == kStockSplit) {
      for (const Field field : {kPrice, kAmount, kCommission, kPayee, kTransfer, kTransferAmount})
        row.leaveOut(field, "a stock split");
      require(writer.writeInvestmentSplitSecurity({.security = security,
                                                   .date = row.date(kDate),
                                                   .ratio = row.number(kQuantity),
                                                   .cleared = cleared,
                                                   .memo = memo}));
    } else {
      const auto transferAmount = row.number(kTransferAmount);
      if (transferAmount && !transfer) row.refuse(kTransfer, "the account of the transfer");
      const ORLFQIFInvestment investment{
          .type = action,
          .security = security,
          .date = row.date(kDate),
          .price = row.number(kPrice),
          .quantity = row.number(kQuantity),
          .commission = row.number(kCommission),
          .transactionAmount = signedAmount(row.number(kAmount), request_),
          .cleared = cleared,
          .payee = payee,
          .memo = memo,
          .account = transfer,
          .transferAmount = transferAmount};
      require(transfer ? writer.writeInvestmentTransferType(investment)
                       : writer.writeInvestmentTransactionType(investment));
    }
    writer.endTransaction();
  }

  void end(ORLFQIFDataWriter& writer) const override { writer.endTransactionList(); }

 private:
  enum Field : std::size_t {
    kDate,
    kAction,
    kSecurity,
    kPrice,
    kQuantity,
    kAmount,
    kCommission,
    kPayee,
    kMemo,
    kTransfer,
    kTransferAmount,
    kCleared
  };
  static constexpr std::array<FieldRule, 12> kRules{
      {{"date", FieldType::Date, true, "date|trade date"},
       {"action", FieldType::Text, true, "action"},
       {"security", FieldType::Text, false, "security|name"},
       {"price", FieldType::Number, false, "price"},
       {"quantity", FieldType::Number, false, "quantity|shares"},
       {"amount", FieldType::Number, false, "amount|total"},
       {"commission", FieldType::Number, false, "commission|fee"},
       {"payee", FieldType::Text, false, "payee"},
       {"memo", FieldType::Text, false, "memo|notes"},
       {"transfer", FieldType::Text, false, "transfer"},
       {"transfer-amount", FieldType::Number, false, "transfer amount"},
       {"cleared", FieldType::Text, false, "cleared"}}};

  [[nodiscard]] static std::int32_t actionOf(const TypedRow& row) {
    const std::string word = row.text(kAction);
    for (std::int32_t action = 0; action <= kLastAction; ++action)
      if (equalsIgnoringCase(ORLFQIFDataWriter::stringForInvestmentAction(action), word))
        return action;
    row.refuse(kAction, "an action such as Buy, SellX, ReinvDiv or StkSplit");
  }

  const QifRequest request_;
};

class Securities final : public QifRecords {
 public:
  [[nodiscard]] std::span<const FieldRule> rules() const override { return kRules; }
  void check(const TypedTable& /*table*/) const override {}
  void begin(ORLFQIFDataWriter& writer) const override { writer.beginSecurityList(); }
  void end(ORLFQIFDataWriter& writer) const override { writer.endSecurityList(); }

  void write(ORLFQIFDataWriter& writer, const TypedRow& row) const override {
    const std::string name = row.text(kName);
    if (name.empty()) row.refuse(kName, "a name");
    constexpr std::array<NamedCode, 2> kRisks{{{"growth", 0}, {"none", 1}}};
    require(writer.writeSecurityName(name, row.text(kSymbol), typeOf(row),
                                     codeOf(row, kRisk, kRisks, 1, "growth or none")));
  }

 private:
  enum Field : std::size_t { kName, kSymbol, kType, kRisk };
  static constexpr std::array<FieldRule, 4> kRules{
      {{"name", FieldType::Text, true, "name|security"},
       {"symbol", FieldType::Text, false, "symbol"},
       {"type", FieldType::Text, false, "type"},
       {"risk", FieldType::Text, false, "risk"}}};

  [[nodiscard]] static std::int64_t typeOf(const TypedRow& row) {
    const std::string word = row.text(kType);
    if (word.empty()) return kLastSecurityType + 1;
    for (std::int64_t type = 0; type <= kLastSecurityType; ++type)
      if (equalsIgnoringCase(ORLFQIFDataWriter::securityTypeNameFromType(type), word)) return type;
    row.refuse(kType, "Stock, Bond, Mutual Fund or CD");
  }
};

class Prices final : public QifRecords {
 public:
  [[nodiscard]] std::span<const FieldRule> rules() const override { return kRules; }
  void check(const TypedTable& /*table*/) const override {}
  void begin(ORLFQIFDataWriter& writer) const override {
    writer.beginSecurityPriceList();
    writer.beginSecurityPrices();
  }
  void end(ORLFQIFDataWriter& writer) const override {
    writer.endSecurityPrices();
    writer.endSecurityPriceList();
  }

  void write(ORLFQIFDataWriter& writer, const TypedRow& row) const override {
    const std::string symbol = row.text(kSymbol);
    if (symbol.empty() || symbol.find('"') != std::string::npos)
      row.refuse(kSymbol, "a symbol without quotation marks");
    require(writer.writeSecurityPriceSymbol(symbol, row.number(kPrice), row.date(kDate)));
  }

 private:
  enum Field : std::size_t { kSymbol, kPrice, kDate };
  static constexpr std::array<FieldRule, 3> kRules{
      {{"symbol", FieldType::Text, true, "symbol"},
       {"price", FieldType::Number, true, "price|close"},
       {"date", FieldType::Date, true, "date"}}};
};

class Categories final : public QifRecords {
 public:
  [[nodiscard]] std::span<const FieldRule> rules() const override { return kRules; }
  void check(const TypedTable& /*table*/) const override {}
  void begin(ORLFQIFDataWriter& writer) const override { writer.beginCategoryList(); }
  void end(ORLFQIFDataWriter& writer) const override { writer.endCategoryList(); }

  void write(ORLFQIFDataWriter& writer, const TypedRow& row) const override {
    const auto name = categoryOf(row, kName);
    if (!name) row.refuse(kName, "a name");
    const auto description = row.textIfAny(kDescription);
    require(writer.writeCategoryName(
        {.name = name,
         .type = codeOf(row, kType, kCategoryTypes, 0, "income or expense"),
         .description = description,
         .taxible = codeOf(row, kTax, kYesOrNo, 0, "yes or no") != 0,
         .taxCode = row.textIfAny(kTaxCode)}));
  }

 private:
  enum Field : std::size_t { kName, kType, kDescription, kTax, kTaxCode };
  static constexpr std::array<FieldRule, 5> kRules{
      {{"name", FieldType::Text, true, "name|category"},
       {"type", FieldType::Text, false, "type"},
       {"description", FieldType::Text, false, "description"},
       {"tax", FieldType::Text, false, "tax|taxable"},
       {"tax-code", FieldType::Text, false, "tax code"}}};
};

}  // namespace

std::unique_ptr<QifRecords> makeQifRecords(std::string_view kind, const QifRequest& request) {
  if (kind == "transactions") return std::make_unique<Transactions>(request);
  if (kind == "investments") return std::make_unique<Investments>(request);
  if (kind == "securities") return std::make_unique<Securities>();
  if (kind == "prices") return std::make_unique<Prices>();
  if (kind == "categories") return std::make_unique<Categories>();
  return nullptr;
}

std::optional<std::int32_t> accountTypeNamed(std::string_view name) {
  return codeNamed(kAccountTypes, name);
}

bool holdsSecurities(std::int32_t accountType) {
  constexpr std::int32_t kFirst = 3, kLast = 5;
  return accountType >= kFirst && accountType <= kLast;
}

}  // namespace orlftool
