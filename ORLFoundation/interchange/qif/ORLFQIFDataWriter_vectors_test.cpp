#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter_testing.h>
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;

/// The arguments of a call by their labels. Texts are views into the row.
class Arguments {
 public:
  explicit Arguments(const Json& values) : values_(values) {}

  [[nodiscard]] std::optional<std::string_view> text(const char* label) const {
    const Json& value = values_.at(label);
    if (value.is_null()) return std::nullopt;
    return std::string_view(value.get_ref<const std::string&>());
  }
  [[nodiscard]] std::optional<NSDecimalNumber> decimal(const char* label) const {
    const auto words = text(label);
    if (!words) return std::nullopt;
    const NSDecimal value = NSDecimal::parse(*words);
    if (value.isNaN() && *words != "NaN")
      throw std::runtime_error("no decimal: " + std::string(*words));
    return NSDecimalNumber(value);
  }
  [[nodiscard]] std::optional<NSNumber> number(const char* label) const { return decimal(label); }
  [[nodiscard]] id object(const char* label) const { return decimal(label); }
  [[nodiscard]] id textObject(const char* label) const { return text(label); }
  [[nodiscard]] std::optional<NSDate> date(const char* label) const {
    return orlftest::dateFromVector(values_.at(label));
  }
  [[nodiscard]] std::int64_t integer(const char* label) const {
    return values_.at(label).get<std::int64_t>();
  }
  [[nodiscard]] std::int32_t code(const char* label) const {
    return static_cast<std::int32_t>(integer(label));
  }
  [[nodiscard]] bool boolean(const char* label) const { return values_.at(label).get<bool>(); }
  [[nodiscard]] std::vector<std::string> tags() const {
    const Json& value = values_.at("tags");
    return value.is_null() ? std::vector<std::string>() : value.get<std::vector<std::string>>();
  }
  [[nodiscard]] bool has(const char* label) const { return values_.contains(label); }

 private:
  const Json& values_;
};

/// Forms without a label leave its member nil.
ORLFQIFTransaction transactionOf(const Arguments& given) {
  return {.amount = given.number("amount"),
          .date = given.date("date"),
          .cleared = given.code("cleared"),
          .refNum = given.text("refNum"),
          .payee = given.text("payee"),
          .memo = given.text("memo"),
          .address = given.text("address"),
          .account = given.has("account") ? given.text("account") : std::nullopt,
          .category = given.has("category") ? given.text("category") : std::nullopt,
          .tags = given.has("tags") ? given.tags() : std::vector<std::string>()};
}

ORLFQIFSplitItem splitItemOf(const Arguments& given) {
  return {.amount = given.decimal("amount"),
          .memo = given.text("memo"),
          .account = given.has("account") ? given.text("account") : std::nullopt,
          .category = given.has("category") ? given.text("category") : std::nullopt,
          .tags = given.tags()};
}

ORLFQIFRawInvestment rawInvestmentOf(const Arguments& given) {
  return {.type = given.code("type"),
          .security = given.text("security"),
          .date = given.date("date"),
          .price = given.number("price"),
          .qField = given.number("qField"),
          .commission = given.number("commission"),
          .transactionAmount = given.number("transactionAmount"),
          .cleared = given.code("cleared"),
          .payee = given.text("payee"),
          .memo = given.text("memo"),
          .lField = given.textObject("lField"),
          .lFieldAmount = given.object("lFieldAmount")};
}

ORLFQIFInvestment investmentOf(const Arguments& given) {
  const bool isTransfer = given.has("account");
  return {.type = given.code("type"),
          .security = given.text("security"),
          .date = given.date("date"),
          .price = given.number("price"),
          .quantity = given.number("quantity"),
          .commission = given.number("commission"),
          .transactionAmount = given.number("transactionAmount"),
          .cleared = given.code("cleared"),
          .payee = given.text("payee"),
          .memo = given.text("memo"),
          .category = given.has("category") ? given.text("category") : std::nullopt,
          .account = isTransfer ? given.text("account") : std::nullopt,
          .transferAmount = isTransfer ? given.object("transferAmount") : id()};
}

using Writer = ORLFQIFDataWriter;
using Call = std::function<bool(Writer& writer, const Arguments& given, NSErrorSlot error)>;

/// A call without arguments.
Call boundary(bool (Writer::*operation)(NSErrorSlot)) {
  return [operation](Writer& writer, const Arguments& /*given*/, NSErrorSlot error) {
    return (writer.*operation)(error);
  };
}

/// A call that takes one record.
template <class Record>
Call record(bool (Writer::*operation)(const Record&, NSErrorSlot),
            Record (*read)(const Arguments& given)) {
  return [operation, read](Writer& writer, const Arguments& given, NSErrorSlot error) {
    return (writer.*operation)(read(given), error);
  };
}

ORLFQIFAccount accountOf(const Arguments& given) {
  return {.name = given.text("name"),
          .type = given.code("type"),
          .description = given.text("description"),
          .balance = given.object("balance"),
          .creditLimit = given.object("creditLimit"),
          .salesTaxRate = given.object("salesTaxRate")};
}

ORLFQIFCategory categoryOf(const Arguments& given) {
  return {.name = given.text("name"),
          .type = given.integer("type"),
          .description = given.text("description"),
          .taxible = given.boolean("taxible"),
          .taxCode = given.textObject("taxCode")};
}

ORLFQIFInvestmentSplit investmentSplitOf(const Arguments& given) {
  return {.security = given.text("security"),
          .date = given.date("date"),
          .ratio = given.number("ratio"),
          .cleared = given.code("cleared"),
          .memo = given.text("memo")};
}

template <bool (Writer::*Operation)(std::optional<std::string_view>,
                                    std::optional<std::string_view>, std::int64_t, std::int64_t,
                                    NSErrorSlot)>
bool writeSecurity(Writer& writer, const Arguments& given, NSErrorSlot error) {
  return (writer.*Operation)(given.text("name"), given.text("symbol"),
                             given.integer("securityType"), given.integer("riskType"), error);
}

template <bool (Writer::*Operation)(std::optional<std::string_view>, const std::optional<NSNumber>&,
                                    const std::optional<NSDate>&, NSErrorSlot)>
bool writePrice(Writer& writer, const Arguments& given, NSErrorSlot error) {
  return (writer.*Operation)(given.text("symbol"), given.number("price"), given.date("date"),
                             error);
}

bool beginTransactions(Writer& writer, const Arguments& given, NSErrorSlot error) {
  return writer.beginTransactionListAccountName(given.text("accountName"), given.code("type"),
                                                error);
}

const std::map<std::string, Call>& calls() {
  static const std::map<std::string, Call>& table = *new std::map<std::string, Call>{
      {"beginWriting", boundary(&Writer::beginWriting)},
      {"endWriting", boundary(&Writer::endWriting)},
      {"beginAccountList", boundary(&Writer::beginAccountList)},
      {"endAccountList", boundary(&Writer::endAccountList)},
      {"beginCategoryList", boundary(&Writer::beginCategoryList)},
      {"endCategoryList", boundary(&Writer::endCategoryList)},
      {"beginTransactionList", beginTransactions},
      {"endTransaction", boundary(&Writer::endTransaction)},
      {"endTransactionList", boundary(&Writer::endTransactionList)},
      {"beginSecurityList", boundary(&Writer::beginSecurityList)},
      {"endSecurityList", boundary(&Writer::endSecurityList)},
      {"beginSecurityPriceList", boundary(&Writer::beginSecurityPriceList)},
      {"beginSecurityPrices", boundary(&Writer::beginSecurityPrices)},
      {"endSecurityPrices", boundary(&Writer::endSecurityPrices)},
      {"endSecurityPriceList", boundary(&Writer::endSecurityPriceList)},
      {"writeAccount", record(&Writer::writeAccountName, accountOf)},
      {"writeCategory", record(&Writer::writeCategoryName, categoryOf)},
      {"writeRawNonInvestmentTransaction",
       record(&Writer::writeRawNonInvestmentTransactionAmount, transactionOf)},
      {"writeNonInvestmentTransaction",
       record(&Writer::writeNonInvestmentTransactionAmount, transactionOf)},
      {"writeNonInvestmentTransfer",
       record(&Writer::writeNonInvestmentTransferAmount, transactionOf)},
      {"writeNonInvestmentSplitTransaction",
       record(&Writer::writeNonInvestmentSplitTransactionAmount, transactionOf)},
      {"writeRawNonInvestmentSplitItem",
       record(&Writer::writeRawNonInvestmentSplitItemAmount, splitItemOf)},
      {"writeNonInvestmentSplitItem",
       record(&Writer::writeNonInvestmentSplitItemAmount, splitItemOf)},
      {"writeNonInvestmentSplitTransferItem",
       record(&Writer::writeNonInvestmentSplitTransferItemAmount, splitItemOf)},
      {"writeRawInvestmentTransaction",
       record(&Writer::writeRawInvestmentTransactionType, rawInvestmentOf)},
      {"writeInvestmentTransaction", record(&Writer::writeInvestmentTransactionType, investmentOf)},
      {"writeInvestmentSplit", record(&Writer::writeInvestmentSplitSecurity, investmentSplitOf)},
      {"writeInvestmentTransfer", record(&Writer::writeInvestmentTransferType, investmentOf)},
      {"writeRawSecurity", writeSecurity<&Writer::writeRawSecurityName>},
      {"writeSecurity", writeSecurity<&Writer::writeSecurityName>},
      {"writeRawSecurityPrice", writePrice<&Writer::writeRawSecurityPriceSymbol>},
      {"writeSecurityPrice", writePrice<&Writer::writeSecurityPriceSymbol>}};
  return table;
}

Json resultOf(bool isDone, const std::shared_ptr<const NSError>& error) {
  if (!error) return {{"ok", isDone}, {"error", nullptr}};
  const auto encoding = error->userInfo()->objectForKey(NSStringEncodingErrorKey).as<NSUInteger>();
  return {{"ok", isDone},
          {"error",
           {{"domain", error->domain()},
            {"code", error->code()},
            {"NSStringEncodingErrorKey", encoding.value()}}}};
}

TEST(ORLFQIFDataWriter, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "interchange_qif", {{"qif", [](const Json& in, const Json& out) {
                             Writer writer;
                             orlftest::pinWriter(writer, in.at("locale").get<std::string>());
                             writer.setEncoding(in.at("encoding").get<NSUInteger>());
                             Json results = Json::array();
                             for (const Json& call : in.at("calls")) {
                               std::shared_ptr<const NSError> error;
                               const Call& made = calls().at(call.at("call").get<std::string>());
                               const bool isDone = made(writer, Arguments(call.at("args")), &error);
                               results.push_back(resultOf(isDone, error));
                             }
                             const std::string bytes = orlftest::bytesWritten(*writer.stream());
                             Json got{{"results", results},
                                      {"base64", internal::base::base64Text(bytes)},
                                      {"text", nullptr}};
                             if (writer.encoding() == NSUTF8StringEncoding) got["text"] = bytes;
                             return disagreement(out, got);
                           }}});
}

}  // namespace
}  // namespace ORLFoundation
