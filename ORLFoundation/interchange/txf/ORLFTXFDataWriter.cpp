#include <ORLFoundation/interchange/txf/ORLFTXFDataWriter.h>

#include <ORLFoundation/interchange/qif/ORLFRecordText.h>
#include <ORLFoundation/interchange/txf/internal/ORLFColumnText.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/stream/EncodedText.h>

#include <array>
#include <utility>

namespace ORLFoundation {

using namespace internal::qif;
using namespace internal::txf;

namespace {

constexpr std::size_t kPayeeWidth = 40;
constexpr std::size_t kMemoWidth = 40;
constexpr std::size_t kCategoryWidth = 15;
constexpr std::string_view kEnd = "^\n";

/// The lines that every amount of a tax form begins with.
void addPlace(ORLFRecordText& record, std::string_view refNumber, NSInteger copy, NSInteger line) {
  record.addLine("N", refNumber);
  record.addLine("C", std::to_string(copy)).addLine("L", std::to_string(line));
}

}  // namespace

std::shared_ptr<NSDateFormatter> ORLFTXFDataWriter::newDateFormatter() const {
  auto formatter = std::make_shared<NSDateFormatter>();
  formatter->setDateFormat("MM/dd/yyyy");
  return formatter;
}

const std::shared_ptr<NSNumberFormatter>& ORLFTXFDataWriter::securitySharesFormatter() {
  if (!securitySharesFormatter_) {
    securitySharesFormatter_ = std::make_shared<NSNumberFormatter>();
    securitySharesFormatter_->setNumberStyle(NSNumberFormatterDecimalStyle);
  }
  return securitySharesFormatter_;
}

void ORLFTXFDataWriter::setSecuritySharesFormatter(std::shared_ptr<NSNumberFormatter> value) {
  securitySharesFormatter_ = std::move(value);
}

std::string ORLFTXFDataWriter::padString(std::string_view string, NSUInteger toLength) {
  return padded(string, toLength);
}

bool ORLFTXFDataWriter::writeForHeaderAppName(std::optional<std::string_view> appName,
                                              const std::optional<NSDate>& exportDate,
                                              NSErrorSlot error) {
  ORLFRecordText record;
  record.add("V042\n").addLine("A", appName).addLine("D", *dateFormatter(), exportDate);
  return writeStringToStream(record.add(kEnd).text(), error);
}

bool ORLFTXFDataWriter::writeSummaryForTaxFormCopy(NSInteger copy, NSInteger lineNumber,
                                                   const id& refNumber,
                                                   const std::optional<NSNumber>& amount,
                                                   NSErrorSlot error) {
  ORLFRecordText record;
  addPlace(record.add("TS\n"), refNumber.description(), copy, lineNumber);
  record.addLine("$", *amountFormatter(), amount);
  return writeStringToStream(record.add(kEnd).text(), error);
}

std::optional<std::string> ORLFTXFDataWriter::columnsOf(const ORLFTXFDetail& detail) {
  const std::array columns{accountColumn(detail.detailAccount.value_or("")),
                           checkNumberColumn(detail.detailCheckNumber.value_or("")),
                           textColumn(detail.detailPayee.value_or(""), kPayeeWidth),
                           textColumn(detail.detailMemo.value_or(""), kMemoWidth),
                           textColumn(detail.detailCategory.value_or(""), kCategoryWidth)};
  std::string line = dateText(*dateFormatter(), detail.detailDate);
  for (const std::optional<std::string>& column : columns) {
    if (!column) return std::nullopt;
    line.append(" ").append(*column);
  }
  return line;
}

bool ORLFTXFDataWriter::writeDetailForTaxFormCopy(const ORLFTXFDetail& detail, NSErrorSlot error) {
  const std::optional<std::string> columns = columnsOf(detail);
  if (!columns) return internal::stream::refuseEncoding(encoding(), error);
  ORLFRecordText record;
  addPlace(record.add("TD\n"), detail.refNumber.description(), detail.taxFormCopy,
           detail.lineNumber);
  record.addLine("$", *amountFormatter(), detail.amount).addLine("X", *columns);
  return writeStringToStream(record.add(kEnd).text(), error);
}

bool ORLFTXFDataWriter::writeCapitalGains(std::string_view refNumber,
                                          const ORLFTXFCapitalGains& gains, NSErrorSlot error) {
  ORLFRecordText record;
  addPlace(record.add("TD\n"), refNumber, gains.taxFormCopy, gains.lineNumber);
  record.add("P").add(numberText(*securitySharesFormatter(), gains.shares));
  record.addLine(" ", gains.securityName);
  record.addLine("D", *dateFormatter(), gains.purchaseDate);
  record.addLine("D", *dateFormatter(), gains.saleDate);
  record.addLine("$", *amountFormatter(), gains.costBasis);
  record.addLine("$", *amountFormatter(), gains.grossProceeds);
  return writeStringToStream(record.add(kEnd).text(), error);
}

bool ORLFTXFDataWriter::writeCapitalGainsLongForSecurityName(const ORLFTXFCapitalGains& gains,
                                                             NSErrorSlot error) {
  return writeCapitalGains("323", gains, error);
}

bool ORLFTXFDataWriter::writeCapitalGainsShortForSecurityName(const ORLFTXFCapitalGains& gains,
                                                              NSErrorSlot error) {
  return writeCapitalGains("321", gains, error);
}

}  // namespace ORLFoundation
