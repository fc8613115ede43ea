#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/interchange/qif/ORLFRecordText.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <algorithm>
#include <span>

namespace ORLFoundation {

using namespace internal::qif;

namespace {

constexpr std::string_view kEnd = "^\n";
constexpr std::int32_t kStockSplit = 36;

std::string replaced(std::string_view text, char character, char by) {
  std::string result(text);
  std::replace(result.begin(), result.end(), character, by);
  return result;
}

std::string inBrackets(std::optional<std::string_view> account) {
  return "[" + std::string(account.value_or(kNilText)) + "]";
}

/// "/first:second:third"; empty without tags.
std::string textOfTags(std::span<const std::string> tags) {
  std::string text;
  for (const std::string& tag : tags) text += (text.empty() ? "/" : ":") + replaced(tag, ':', '-');
  return text;
}

/// The line that says where an amount goes; none when nothing says so.
void addTarget(ORLFRecordText& record, std::string_view mark,
               std::optional<std::string_view> account, std::optional<std::string_view> category,
               std::span<const std::string> tags) {
  if (!account && !category && tags.empty()) return;
  record.add(mark);
  if (account) {
    record.add(inBrackets(account));
  } else if (category) {
    record.add(replaced(*category, '/', '-'));
  }
  record.add(textOfTags(tags)).add("\n");
}

void addDescription(ORLFRecordText& record, std::optional<std::string_view> description) {
  if (description && !description->empty()) record.addLine("D", description);
}

void addCleared(ORLFRecordText& record, std::int32_t cleared) {
  if (cleared == ORLFQIFCleared) record.add("Cc\n");
  if (cleared == ORLFQIFReconciled) record.add("CR\n");
}

/// Negative types are unknown ones.
std::string_view lineOfCategoryType(std::int64_t type) {
  if (type == 1) return "I\n";
  return type == 0 || type == 2 ? "E\n" : "";
}

}  // namespace

bool ORLFQIFDataWriter::writeAccountName(const ORLFQIFAccount& account, NSErrorSlot error) {
  ORLFRecordText record;
  record.addLine("N", account.name).addLine("T", stringForAccountType(account.type));
  record.addPresentObject("R", account.salesTaxRate);
  addDescription(record, account.description);
  record.addPresentObject("L", account.creditLimit).addPresentObject("B", account.balance);
  return writeStringToStream(record.add(kEnd).text(), error);
}

bool ORLFQIFDataWriter::writeCategoryName(const ORLFQIFCategory& category, NSErrorSlot error) {
  ORLFRecordText record;
  record.addLine("N", category.name).add(lineOfCategoryType(category.type));
  addDescription(record, category.description);
  if (category.taxible) record.add("T\n");
  record.addPresentObject("R", category.taxCode);
  return writeStringToStream(record.add(kEnd).text(), error);
}

bool ORLFQIFDataWriter::writeRawNonInvestmentTransactionAmount(
    const ORLFQIFTransaction& transaction, NSErrorSlot error) {
  ORLFRecordText record;
  record.addLine("D", *dateFormatter(), transaction.date);
  record.addLine("T", *amountFormatter(), transaction.amount.value_or(NSDecimalNumber::zero()));
  addCleared(record, transaction.cleared);
  record.addPresent("N", transaction.refNum);
  record.addPresent("P", transaction.payee).addPresent("M", transaction.memo);
  addTarget(record, "L", transaction.account, transaction.category, transaction.tags);
  return writeStringToStream(record.text(), error);
}

bool ORLFQIFDataWriter::writeNonInvestmentTransactionAmount(const ORLFQIFTransaction& transaction,
                                                            NSErrorSlot error) {
  ORLFQIFTransaction raw = transaction;
  raw.account = std::nullopt;
  return writeRawNonInvestmentTransactionAmount(raw, error);
}

bool ORLFQIFDataWriter::writeNonInvestmentTransferAmount(const ORLFQIFTransaction& transaction,
                                                         NSErrorSlot error) {
  ORLFQIFTransaction raw = transaction;
  raw.category = std::nullopt;
  return writeRawNonInvestmentTransactionAmount(raw, error);
}

bool ORLFQIFDataWriter::writeNonInvestmentSplitTransactionAmount(
    const ORLFQIFTransaction& transaction, NSErrorSlot error) {
  ORLFQIFTransaction raw = transaction;
  raw.account = std::nullopt;
  raw.category = std::nullopt;
  raw.tags.clear();
  return writeRawNonInvestmentTransactionAmount(raw, error);
}

bool ORLFQIFDataWriter::writeRawNonInvestmentSplitItemAmount(const ORLFQIFSplitItem& item,
                                                             NSErrorSlot error) {
  const NSDecimalNumber amount =
      item.amount ? orlfDecimalNumberByNegatingNumber(*item.amount) : NSDecimalNumber::zero();
  ORLFRecordText record;
  record.addPresent("E", item.memo);
  addTarget(record, "S", item.account, item.category, item.tags);
  record.addLine("$", *amountFormatter(), amount);
  return writeStringToStream(record.text(), error);
}

bool ORLFQIFDataWriter::writeNonInvestmentSplitItemAmount(const ORLFQIFSplitItem& item,
                                                          NSErrorSlot error) {
  ORLFQIFSplitItem raw = item;
  raw.account = std::nullopt;
  return writeRawNonInvestmentSplitItemAmount(raw, error);
}

bool ORLFQIFDataWriter::writeNonInvestmentSplitTransferItemAmount(const ORLFQIFSplitItem& item,
                                                                  NSErrorSlot error) {
  ORLFQIFSplitItem raw = item;
  raw.category = std::nullopt;
  return writeRawNonInvestmentSplitItemAmount(raw, error);
}

bool ORLFQIFDataWriter::writeRawInvestmentTransactionType(const ORLFQIFRawInvestment& transaction,
                                                          NSErrorSlot error) {
  const NSNumberFormatter& amounts = *amountFormatter();
  ORLFRecordText record;
  record.addLine("D", *dateFormatter(), transaction.date);
  record.addLine("N", stringForInvestmentAction(transaction.type));
  record.addPresent("Y", transaction.security);
  record.addPresent("I", amounts, transaction.price).addPresent("Q", amounts, transaction.qField);
  record.addPresent("T", amounts, transaction.transactionAmount);
  record.addPresent("O", amounts, transaction.commission);
  addCleared(record, transaction.cleared);
  record.addPresent("P", transaction.payee).addPresent("M", transaction.memo);
  record.addPresentObject("L", transaction.lField);
  record.addPresentObject("$", transaction.lFieldAmount);
  return writeStringToStream(record.text(), error);
}

namespace {

/// An investment as its lines stand, without a target.
ORLFQIFRawInvestment rawOf(const ORLFQIFInvestment& transaction) {
  return {.type = transaction.type,
          .security = transaction.security,
          .date = transaction.date,
          .price = transaction.price,
          .qField = transaction.quantity,
          .commission = transaction.commission,
          .transactionAmount = transaction.transactionAmount,
          .cleared = transaction.cleared,
          .payee = transaction.payee,
          .memo = transaction.memo};
}

}  // namespace

bool ORLFQIFDataWriter::writeInvestmentTransactionType(const ORLFQIFInvestment& transaction,
                                                       NSErrorSlot error) {
  return writeRawInvestmentTransactionType(rawOf(transaction), error);
}

bool ORLFQIFDataWriter::writeInvestmentSplitSecurity(const ORLFQIFInvestmentSplit& split,
                                                     NSErrorSlot error) {
  return writeRawInvestmentTransactionType({.type = kStockSplit,
                                            .security = split.security,
                                            .date = split.date,
                                            .qField = split.ratio,
                                            .cleared = split.cleared,
                                            .memo = split.memo},
                                           error);
}

bool ORLFQIFDataWriter::writeInvestmentTransferType(const ORLFQIFInvestment& transaction,
                                                    NSErrorSlot error) {
  ORLFQIFRawInvestment raw = rawOf(transaction);
  raw.lField = inBrackets(transaction.account);
  raw.lFieldAmount = transaction.transferAmount;
  return writeRawInvestmentTransactionType(raw, error);
}

bool ORLFQIFDataWriter::writeRawSecurityName(std::optional<std::string_view> name,
                                             std::optional<std::string_view> symbol,
                                             std::int64_t securityType, std::int64_t riskType,
                                             NSErrorSlot error) {
  ORLFRecordText record;
  record.addLine("N", name.value_or("")).addLine("S", symbol.value_or(""));
  record.addLine("T", securityTypeNameFromType(securityType));
  record.addLine("G", securityRiskNameFromRiskType(riskType));
  return writeStringToStream(record.add(kEnd).text(), error);
}

bool ORLFQIFDataWriter::writeSecurityName(std::optional<std::string_view> name,
                                          std::optional<std::string_view> symbol,
                                          std::int64_t securityType, std::int64_t riskType,
                                          NSErrorSlot error) {
  return writeRawSecurityName(name, symbol, securityType, riskType, error);
}

bool ORLFQIFDataWriter::writeRawSecurityPriceSymbol(std::optional<std::string_view> symbol,
                                                    const std::optional<NSNumber>& price,
                                                    const std::optional<NSDate>& date,
                                                    NSErrorSlot error) {
  ORLFRecordText record;
  record.add("\"").add(symbol.value_or("")).add("\",");
  record.add(numberText(*amountFormatter(), price));
  record.add(",\"").add(dateText(*dateFormatter(), date));
  return writeStringToStream(record.add("\"\n").text(), error);
}

bool ORLFQIFDataWriter::writeSecurityPriceSymbol(std::optional<std::string_view> symbol,
                                                 const std::optional<NSNumber>& price,
                                                 const std::optional<NSDate>& date,
                                                 NSErrorSlot error) {
  return writeRawSecurityPriceSymbol(symbol, price, date, error);
}

}  // namespace ORLFoundation
