#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <memory>
#include <string>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/message_text.h"
#include "commands.h"
#include "interchange/qif_records.h"
#include "interchange/record_file.h"
#include "interchange/record_formats.h"
#include "interchange/typed_table.h"
#include "io/text_input.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int32_t kInvestmentAccount = 3;

struct QifArguments {
  TableRequest table;
  std::string kind = "transactions";
  std::optional<std::string> account, type, outputEncoding;
  std::string output;
  bool isNegated = false;
};

/// The kinds that belong to an account need its name, the others have no place for it.
QifRequest readRequest(const QifArguments& arguments) {
  const bool isOfSecurities = arguments.kind == "investments";
  const bool needsAccount = isOfSecurities || arguments.kind == "transactions";
  QifRequest request;
  request.accountType = isOfSecurities ? kInvestmentAccount : 0;
  request.isNegated = arguments.isNegated;
  if (!needsAccount) {
    if (arguments.account || arguments.type || arguments.isNegated)
      throw UsageFailure("--account, --type and --negate do not go with --kind " + arguments.kind);
    return request;
  }
  request.account = inOneLine(arguments.account.value_or(""));
  if (request.account.empty()) throw UsageFailure("--account: expected the name of the account");
  if (!arguments.type) return request;
  const std::optional<std::int32_t> type = accountTypeNamed(*arguments.type);
  if (!type)
    throw UsageFailure("--type: expected " + std::string(kAccountTypeNames) + ", got " +
                       quotedForMessage(*arguments.type));
  if (holdsSecurities(*type) != isOfSecurities)
    throw UsageFailure("--type " + *arguments.type + " does not go with --kind " + arguments.kind);
  request.accountType = *type;
  return request;
}

TypedTable::Counts writeRecords(Session& session, TypedTable& table, const QifRecords& records,
                                const std::shared_ptr<NSOutputStream>& stream,
                                NSUInteger encoding) {
  ORLFQIFDataWriter writer;
  writer.setStream(stream);
  writer.setEncoding(beginText(*stream, encoding));
  writer.setDateFormatter(newRecordDateFormatter(*session.calendar));
  writer.setAmountFormatter(newRecordNumberFormatter(kCurrencyDigits));
  writer.beginWriting();
  records.begin(writer);
  const TypedTable::Counts counts =
      table.forEach([&](const TypedRow& row) { records.write(writer, row); });
  records.end(writer);
  writer.endWriting();
  return counts;
}

void runQif(Session& session, const QifArguments& arguments) {
  if (!makeQifRecords(arguments.kind, {}))
    throw UsageFailure("--kind: expected " + std::string(kQifKindNames) + ", got " +
                       quotedForMessage(arguments.kind));
  const std::unique_ptr<QifRecords> records =
      makeQifRecords(arguments.kind, readRequest(arguments));
  const NSUInteger encoding = readEncodingOption(arguments.outputEncoding, "--output-encoding")
                                  .value_or(NSUTF8StringEncoding);
  TypedTable table(session, arguments.table, records->rules());
  requireOtherFile(arguments.output, arguments.table.file);
  table.judge();
  records->check(table);
  TypedTable::Counts counts;
  writeRecordFile(arguments.output, [&](const std::shared_ptr<NSOutputStream>& stream) {
    counts = writeRecords(session, table, *records, stream, encoding);
  });
  printCounts(session, arguments.output, counts);
}

}  // namespace

Job declareQifCommand(Options& options) {
  options.describe(
      "Write the rows of a bank's table as QIF. Dates are written MM/DD/YYYY and amounts without\n"
      "grouping and with a point, whatever the locale is. Where the table leaves doubt about its\n"
      "dates or its decimal mark, or a row cannot be read, nothing is written.");
  auto arguments = std::make_shared<QifArguments>();
  declareTableOptions(options, arguments->table);
  options.required("-o,--output", arguments->output, "The QIF file to write");
  options.text("--kind", arguments->kind, std::string(kQifKindNames));
  options.text("--account", arguments->account, "The name of the account");
  options.text("--type", arguments->type, "Of the account: " + std::string(kAccountTypeNames));
  options.flag("--negate", arguments->isNegated, "Write amounts with the opposite sign");
  options.text("--output-encoding", arguments->outputEncoding,
               "The encoding of the QIF file (utf-8)");
  return [arguments](Session& session) { runQif(session, *arguments); };
}

}  // namespace orlftool
