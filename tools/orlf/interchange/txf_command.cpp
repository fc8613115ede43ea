#include <ORLFoundation/interchange/txf/ORLFTXFDataWriter.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <array>
#include <memory>
#include <span>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/message_text.h"
#include "commands.h"
#include "interchange/record_file.h"
#include "interchange/record_formats.h"
#include "interchange/typed_table.h"
#include "io/text_input.h"
#include "session.h"
#include "values/date_text.h"
#include "values/whole_number.h"
#include "version.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct TxfArguments {
  TableRequest table;
  std::string kind = "gains";
  std::string output;
  std::optional<std::string> exportDate, outputEncoding;
};

enum GainsField : std::size_t {
  kSecurity,
  kShares,
  kBought,
  kSold,
  kCost,
  kProceeds,
  kGainsCopy,
  kGainsLine
};
constexpr std::array<FieldRule, 8> kGainsRules{
    {{"security", FieldType::Text, true, "security|name"},
     {"shares", FieldType::Number, true, "shares|quantity"},
     {"bought", FieldType::Date, true, "bought|date acquired|purchase date"},
     {"sold", FieldType::Date, true, "sold|date sold|sale date"},
     {"cost", FieldType::Number, true, "cost|cost basis"},
     {"proceeds", FieldType::Number, true, "proceeds|gross proceeds"},
     {"copy", FieldType::Text, false, "copy"},
     {"line", FieldType::Text, false, "line"}}};

enum AmountField : std::size_t {
  kReference,
  kAmount,
  kCopy,
  kLine,
  kDate,
  kAccount,
  kCheck,
  kPayee,
  kMemo,
  kCategory
};
constexpr std::array<FieldRule, 10> kDetailRules{
    {{"reference", FieldType::Text, true, "reference|refnum|number"},
     {"amount", FieldType::Number, true, "amount"},
     {"copy", FieldType::Text, false, "copy"},
     {"line", FieldType::Text, false, "line"},
     {"date", FieldType::Date, true, "date"},
     {"account", FieldType::Text, false, "account"},
     {"check", FieldType::Text, false, "check|check number"},
     {"payee", FieldType::Text, false, "payee"},
     {"memo", FieldType::Text, false, "memo"},
     {"category", FieldType::Text, false, "category"}}};
/// A summary has the first of these.
constexpr std::size_t kSummaryFields = kLine + 1;

/// A whole number from 1 on, 1 for an empty field.
NSInteger placeOf(const TypedRow& row, std::size_t field) {
  const std::string text = row.text(field);
  if (text.empty()) return 1;
  const std::optional<std::int64_t> place = readWholeNumber(text);
  if (!place || *place < 1) row.refuse(field, "a whole number from 1 on");
  return *place;
}

/// More than a year, the day of the purchase not counted.
bool isHeldLong(const ORLFTXFCapitalGains& gains, const NSCalendar& calendar) {
  const auto year = calendar.dateByAddingUnit(NSCalendarUnitYear, 1, *gains.purchaseDate, 0);
  return year && gains.saleDate->compare(*year) == NSOrderedDescending;
}

void requireTaxRecord(bool isWritten) {
  if (!isWritten)
    throw BadRow{"record", "characters of the output's encoding, none cut in half by a column",
                 "others"};
}

void writeGains(ORLFTXFDataWriter& writer, const TypedRow& row, const NSCalendar& calendar) {
  const std::string security = row.text(kSecurity);
  if (security.empty()) row.refuse(kSecurity, "a name");
  const ORLFTXFCapitalGains gains{.securityName = security,
                                  .taxFormCopy = placeOf(row, kGainsCopy),
                                  .lineNumber = placeOf(row, kGainsLine),
                                  .shares = row.number(kShares),
                                  .costBasis = row.number(kCost),
                                  .grossProceeds = row.number(kProceeds),
                                  .purchaseDate = row.date(kBought),
                                  .saleDate = row.date(kSold)};
  requireTaxRecord(isHeldLong(gains, calendar)
                       ? writer.writeCapitalGainsLongForSecurityName(gains)
                       : writer.writeCapitalGainsShortForSecurityName(gains));
}

std::string referenceOf(const TypedRow& row) {
  std::string text = row.text(kReference);
  const std::optional<std::int64_t> number = readWholeNumber(text);
  if (!number || *number < 1) row.refuse(kReference, "the number of a tax line such as 287");
  return text;
}

void writeSummary(ORLFTXFDataWriter& writer, const TypedRow& row, const NSCalendar& /*calendar*/) {
  const std::string reference = referenceOf(row);
  requireTaxRecord(writer.writeSummaryForTaxFormCopy(placeOf(row, kCopy), placeOf(row, kLine),
                                                     reference, row.number(kAmount)));
}

void writeDetail(ORLFTXFDataWriter& writer, const TypedRow& row, const NSCalendar& /*calendar*/) {
  const std::string account = row.text(kAccount), check = row.text(kCheck);
  const std::string payee = row.text(kPayee), memo = row.text(kMemo);
  const std::string category = row.text(kCategory), reference = referenceOf(row);
  requireTaxRecord(writer.writeDetailForTaxFormCopy({.taxFormCopy = placeOf(row, kCopy),
                                                     .lineNumber = placeOf(row, kLine),
                                                     .refNumber = reference,
                                                     .amount = row.number(kAmount),
                                                     .detailDate = row.date(kDate),
                                                     .detailAccount = account,
                                                     .detailCheckNumber = check,
                                                     .detailPayee = payee,
                                                     .detailMemo = memo,
                                                     .detailCategory = category}));
}

struct RecordKind {
  std::string_view name;
  std::span<const FieldRule> rules;
  void (*write)(ORLFTXFDataWriter& writer, const TypedRow& row, const NSCalendar& calendar);
};
const std::array<RecordKind, 3> kKinds{
    {{"gains", kGainsRules, writeGains},
     {"summary", std::span<const FieldRule>(kDetailRules).first(kSummaryFields), writeSummary},
     {"detail", kDetailRules, writeDetail}}};

const RecordKind& kindNamed(const std::string& name) {
  for (const RecordKind& kind : kKinds)
    if (kind.name == name) return kind;
  throw UsageFailure("--kind: expected gains, summary or detail, got " + quotedForMessage(name));
}

void prepare(ORLFTXFDataWriter& writer, const NSCalendar& calendar) {
  writer.setDateFormatter(newRecordDateFormatter(calendar));
  writer.setAmountFormatter(newRecordNumberFormatter(kCurrencyDigits));
  writer.setSecuritySharesFormatter(newRecordNumberFormatter(0));
}

void runTxf(Session& session, const TxfArguments& arguments) {
  const NSCalendar& calendar = *session.calendar;
  const RecordKind& kind = kindNamed(arguments.kind);
  const NSDate exported = arguments.exportDate
                              ? readDateOption("--export-date", *arguments.exportDate, calendar)
                              : NSDate::date();
  const NSUInteger encoding = readEncodingOption(arguments.outputEncoding, "--output-encoding")
                                  .value_or(NSUTF8StringEncoding);
  ORLFTXFDataWriter writer;
  prepare(writer, calendar);
  TypedTable table(session, arguments.table, kind.rules);
  requireOtherFile(arguments.output, arguments.table.file);
  table.judge();
  TypedTable::Counts counts;
  writeRecordFile(arguments.output, [&](const std::shared_ptr<NSOutputStream>& stream) {
    writer.setStream(stream);
    writer.setEncoding(beginText(*stream, encoding));
    writer.beginWriting();
    writer.writeForHeaderAppName("orlf " + std::string(kToolVersion), exported);
    counts = table.forEach([&](const TypedRow& row) { kind.write(writer, row, calendar); });
  });
  printCounts(session, arguments.output, counts);
}

}  // namespace

Job declareTxfCommand(Options& options) {
  options.describe(
      "Write the rows of a table as TXF: sales of securities, long after more than a year, or\n"
      "amounts of tax lines. Dates are written MM/DD/YYYY and amounts without grouping and with a\n"
      "point. Where the table leaves doubt, or a row cannot be read, nothing is written.");
  auto arguments = std::make_shared<TxfArguments>();
  declareTableOptions(options, arguments->table);
  options.required("-o,--output", arguments->output, "The TXF file to write");
  options.text("--kind", arguments->kind, "gains, summary or detail");
  options.text("--export-date", arguments->exportDate, "The date in the header (today)");
  options.text("--output-encoding", arguments->outputEncoding,
               "The encoding of the TXF file (utf-8)");
  return [arguments](Session& session) { runTxf(session, *arguments); };
}

}  // namespace orlftool
