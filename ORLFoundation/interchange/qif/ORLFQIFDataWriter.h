/// Writes a QIF stream: lists of accounts, categories, transactions, securities and their prices,
/// one call for each boundary of a list and one for each record.
///
///     ORLFQIFDataWriter writer;
///     writer.beginWriting();
///     writer.beginTransactionListAccountName("Checking", 0);
///     writer.writeNonInvestmentTransactionAmount(
///         {.amount = price, .date = day, .payee = "Grocer", .category = "Food", .tags =
///         {"trip"}});
///     writer.endTransaction();
///     writer.stream()->propertyForKey(NSStreamDataWrittenToMemoryStreamKey);
///
/// The last record reads "D3/5/24", "T12.50", "PGrocer", "LFood/trip", "^", a line each. The writer
/// does not check the order of its calls.
#pragma once

#include <ORLFoundation/interchange/qif/ORLFQIFRecords.h>
#include <ORLFoundation/interchange/qif/ORLFRecordWriter.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Its `dateFormatter` has a Gregorian calendar and the short style without a time.
class ORLFQIFDataWriter : public ORLFRecordWriter {
 public:
  /// `securityAmountFormatter`  Gives the `amountFormatter`; what is set is never read. This is
  /// required.
  [[nodiscard]] const std::shared_ptr<NSNumberFormatter>& securityAmountFormatter();
  void setSecurityAmountFormatter(std::shared_ptr<NSNumberFormatter> value);

  /// `stringForAccountType:`  1 to 7 are "Cash", "CCard", "Invst", "MutualFund", "401k/403B",
  /// "Oth A" and "Oth L"; any other value is "Bank".
  [[nodiscard]] static std::string stringForAccountType(std::int32_t type);
  /// `stringForInvestmentAction:`  1 ("Buy") to 36 ("StkSplit"); any other value is "Cash".
  [[nodiscard]] static std::string stringForInvestmentAction(std::int32_t action);
  /// `securityTypeNameFromType:`  0 to 3 are "Stock", "Bond", "Mutual Fund" and "CD"; "" otherwise.
  [[nodiscard]] static std::string securityTypeNameFromType(std::int64_t type);
  /// `securityRiskNameFromRiskType:`  0 is "Growth"; "" otherwise.
  [[nodiscard]] static std::string securityRiskNameFromRiskType(std::int64_t riskType);

  /// `writeExportHeaderName:type:error:`  "!Name:Type".
  bool writeExportHeaderName(std::string_view name, std::string_view type,
                             NSErrorSlot error = nullptr);

  /// `endWriting:`  Writes nothing and leaves the stream open. Always true.
  bool endWriting(NSErrorSlot error = nullptr);
  /// `beginAccountList:`  "!Option:AutoSwitch", then "!Account" in a write of its own.
  bool beginAccountList(NSErrorSlot error = nullptr);
  /// `endAccountList:`  "!Clear:AutoSwitch".
  bool endAccountList(NSErrorSlot error = nullptr);
  /// `beginCategoryList:`  "!Type:Cat".
  bool beginCategoryList(NSErrorSlot error = nullptr);
  /// `endCategoryList:`  Nothing; always true.
  bool endCategoryList(NSErrorSlot error = nullptr);
  /// `beginTransactionListAccountName:type:error:`  The account, and the header of its list, where
  /// mutual funds (4) and retirement accounts (5) are "Invst" too.
  bool beginTransactionListAccountName(std::optional<std::string_view> accountName,
                                       std::int32_t type, NSErrorSlot error = nullptr);
  /// `endTransaction:`  "^": ends a transaction, behind its split items.
  bool endTransaction(NSErrorSlot error = nullptr);
  /// `endTransactionList:`  Nothing; always true.
  bool endTransactionList(NSErrorSlot error = nullptr);
  /// `beginSecurityList:`  "!Type:Security".
  bool beginSecurityList(NSErrorSlot error = nullptr);
  /// `endSecurityList:`  "^", a second one behind the last security. This is required.
  bool endSecurityList(NSErrorSlot error = nullptr);
  /// `beginSecurityPriceList:`  "!Type:Prices".
  bool beginSecurityPriceList(NSErrorSlot error = nullptr);
  /// `beginSecurityPrices:`  Nothing; always true.
  bool beginSecurityPrices(NSErrorSlot error = nullptr);
  /// `endSecurityPrices:`  "^".
  bool endSecurityPrices(NSErrorSlot error = nullptr);
  /// `endSecurityPriceList:`  Nothing; always true.
  bool endSecurityPriceList(NSErrorSlot error = nullptr);

  /// `writeAccountName:type:description:balance:creditLimit:salesTaxRate:error:`
  bool writeAccountName(const ORLFQIFAccount& account, NSErrorSlot error = nullptr);
  /// `writeCategoryName:type:description:taxible:taxCode:error:`
  bool writeCategoryName(const ORLFQIFCategory& category, NSErrorSlot error = nullptr);

  /// `writeRawNonInvestmentTransactionAmount:date:cleared:refNum:payee:memo:address:account:category:tags:error:`
  /// The amount keeps its sign. An account takes the place of the category. ":" in a tag and "/" in
  /// a category become "-". `endTransaction` is left to the caller.
  bool writeRawNonInvestmentTransactionAmount(const ORLFQIFTransaction& transaction,
                                              NSErrorSlot error = nullptr);
  /// `writeNonInvestmentTransactionAmount:date:cleared:refNum:payee:memo:address:category:tags:error:`
  /// Without the account.
  bool writeNonInvestmentTransactionAmount(const ORLFQIFTransaction& transaction,
                                           NSErrorSlot error = nullptr);
  /// `writeNonInvestmentTransferAmount:date:cleared:refNum:payee:memo:address:account:tags:error:`
  /// Without the category.
  bool writeNonInvestmentTransferAmount(const ORLFQIFTransaction& transaction,
                                        NSErrorSlot error = nullptr);
  /// `writeNonInvestmentSplitTransactionAmount:date:cleared:refNum:payee:memo:address:error:`
  /// Without account, category and tags; split items follow.
  bool writeNonInvestmentSplitTransactionAmount(const ORLFQIFTransaction& transaction,
                                                NSErrorSlot error = nullptr);
  /// `writeRawNonInvestmentSplitItemAmount:memo:account:category:tags:error:`  10.00 is written as
  /// "$-10.00", while the transaction's own amount keeps its sign. This is required.
  bool writeRawNonInvestmentSplitItemAmount(const ORLFQIFSplitItem& item,
                                            NSErrorSlot error = nullptr);
  /// `writeNonInvestmentSplitItemAmount:memo:category:tags:error:`  Without the account.
  bool writeNonInvestmentSplitItemAmount(const ORLFQIFSplitItem& item, NSErrorSlot error = nullptr);
  /// `writeNonInvestmentSplitTransferItemAmount:memo:account:tags:error:`  Without the category.
  bool writeNonInvestmentSplitTransferItemAmount(const ORLFQIFSplitItem& item,
                                                 NSErrorSlot error = nullptr);

  /// `writeRawInvestmentTransactionType:security:date:price:qField:commission:transactionAmount:cleared:payee:memo:lField:lFieldAmount:error:`
  bool writeRawInvestmentTransactionType(const ORLFQIFRawInvestment& transaction,
                                         NSErrorSlot error = nullptr);
  /// `writeInvestmentTransactionType:security:date:price:quantity:commission:transactionAmount:cleared:payee:memo:category:error:`
  /// Without account and transfer amount.
  bool writeInvestmentTransactionType(const ORLFQIFInvestment& transaction,
                                      NSErrorSlot error = nullptr);
  /// `writeInvestmentSplitSecurity:date:ratio:cleared:memo:error:`
  bool writeInvestmentSplitSecurity(const ORLFQIFInvestmentSplit& split,
                                    NSErrorSlot error = nullptr);
  /// `writeInvestmentTransferType:security:date:price:quantity:commission:transactionAmount:cleared:payee:memo:account:transferAmount:error:`
  /// The account stands in brackets, "[(null)]" for nil.
  bool writeInvestmentTransferType(const ORLFQIFInvestment& transaction,
                                   NSErrorSlot error = nullptr);

  /// `writeRawSecurityName:symbol:securityType:riskType:error:`  nil names and symbols are empty.
  bool writeRawSecurityName(std::optional<std::string_view> name,
                            std::optional<std::string_view> symbol, std::int64_t securityType,
                            std::int64_t riskType, NSErrorSlot error = nullptr);
  /// `writeSecurityName:symbol:securityType:riskType:error:`  The same.
  bool writeSecurityName(std::optional<std::string_view> name,
                         std::optional<std::string_view> symbol, std::int64_t securityType,
                         std::int64_t riskType, NSErrorSlot error = nullptr);
  /// `writeRawSecurityPriceSymbol:price:date:error:`  A grouped price stands bare between the
  /// commas, as its locale writes it.
  bool writeRawSecurityPriceSymbol(std::optional<std::string_view> symbol,
                                   const std::optional<NSNumber>& price,
                                   const std::optional<NSDate>& date, NSErrorSlot error = nullptr);
  /// `writeSecurityPriceSymbol:price:date:error:`  The same.
  bool writeSecurityPriceSymbol(std::optional<std::string_view> symbol,
                                const std::optional<NSNumber>& price,
                                const std::optional<NSDate>& date, NSErrorSlot error = nullptr);

  [[nodiscard]] std::string className() const override { return "ORLFQIFDataWriter"; }

 private:
  [[nodiscard]] std::shared_ptr<NSDateFormatter> newDateFormatter() const override;

  std::shared_ptr<NSNumberFormatter> securityAmountFormatter_;
};

}  // namespace ORLFoundation
