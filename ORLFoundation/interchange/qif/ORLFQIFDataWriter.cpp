#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>

#include <ORLFoundation/interchange/qif/ORLFRecordText.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <utility>

namespace ORLFoundation {

using namespace internal::qif;

namespace {

constexpr std::int32_t kInvestmentAccount = 3;
constexpr std::int32_t kMutualFundAccount = 4;
constexpr std::int32_t kRetirementAccount = 5;

/// The type under which an account's transactions are listed.
std::int32_t typeOfList(std::int32_t accountType) {
  const bool holdsSecurities =
      accountType == kMutualFundAccount || accountType == kRetirementAccount;
  return holdsSecurities ? kInvestmentAccount : accountType;
}

}  // namespace

std::shared_ptr<NSDateFormatter> ORLFQIFDataWriter::newDateFormatter() const {
  auto formatter = std::make_shared<NSDateFormatter>();
  formatter->setCalendar(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian));
  formatter->setDateStyle(NSDateFormatterShortStyle);
  formatter->setTimeStyle(NSDateFormatterNoStyle);
  return formatter;
}

const std::shared_ptr<NSNumberFormatter>& ORLFQIFDataWriter::securityAmountFormatter() {
  return amountFormatter();
}

void ORLFQIFDataWriter::setSecurityAmountFormatter(std::shared_ptr<NSNumberFormatter> value) {
  securityAmountFormatter_ = std::move(value);
}

bool ORLFQIFDataWriter::writeExportHeaderName(std::string_view name, std::string_view type,
                                              NSErrorSlot error) {
  ORLFRecordText header;
  header.add("!").add(name).add(":").add(type).add("\n");
  return writeStringToStream(header.text(), error);
}

bool ORLFQIFDataWriter::endWriting(NSErrorSlot /*error*/) { return true; }

bool ORLFQIFDataWriter::beginAccountList(NSErrorSlot error) {
  return writeExportHeaderName("Option", "AutoSwitch", error) &&
         writeStringToStream("!Account\n", error);
}

bool ORLFQIFDataWriter::endAccountList(NSErrorSlot error) {
  return writeExportHeaderName("Clear", "AutoSwitch", error);
}

bool ORLFQIFDataWriter::beginCategoryList(NSErrorSlot error) {
  return writeExportHeaderName("Type", "Cat", error);
}

bool ORLFQIFDataWriter::endCategoryList(NSErrorSlot /*error*/) { return true; }

bool ORLFQIFDataWriter::beginTransactionListAccountName(std::optional<std::string_view> accountName,
                                                        std::int32_t type, NSErrorSlot error) {
  ORLFRecordText header;
  header.add("!Account\n").addLine("N", accountName).addLine("T", stringForAccountType(type));
  header.addLine("^\n!Type:", stringForAccountType(typeOfList(type)));
  return writeStringToStream(header.text(), error);
}

bool ORLFQIFDataWriter::endTransaction(NSErrorSlot error) {
  return writeStringToStream("^\n", error);
}

bool ORLFQIFDataWriter::endTransactionList(NSErrorSlot /*error*/) { return true; }

bool ORLFQIFDataWriter::beginSecurityList(NSErrorSlot error) {
  return writeStringToStream("!Type:Security\n", error);
}

bool ORLFQIFDataWriter::endSecurityList(NSErrorSlot error) {
  return writeStringToStream("^\n", error);
}

bool ORLFQIFDataWriter::beginSecurityPriceList(NSErrorSlot error) {
  return writeStringToStream("!Type:Prices\n", error);
}

bool ORLFQIFDataWriter::beginSecurityPrices(NSErrorSlot /*error*/) { return true; }

bool ORLFQIFDataWriter::endSecurityPrices(NSErrorSlot error) {
  return writeStringToStream("^\n", error);
}

bool ORLFQIFDataWriter::endSecurityPriceList(NSErrorSlot /*error*/) { return true; }

}  // namespace ORLFoundation
