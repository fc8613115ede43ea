#include <ORLFoundation/interchange/txf/ORLFTXFDataWriter_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using orlftest::dateFromVector;
using orlftest::disagreement;
using orlftest::Json;
using Writer = ORLFTXFDataWriter;

std::optional<std::string_view> text(const Json& value) {
  if (value.is_null()) return std::nullopt;
  return std::string_view(value.get_ref<const std::string&>());
}

std::optional<NSNumber> number(const Json& value) {
  if (value.is_null()) return std::nullopt;
  const NSDecimal decimal = NSDecimal::parse(*text(value));
  if (decimal.isNaN() && *text(value) != "NaN")
    throw std::runtime_error("no decimal: " + std::string(*text(value)));
  return decimal;
}

bool writeHeader(Writer& writer, const Json& in) {
  return writer.writeForHeaderAppName(text(in.at("appName")), dateFromVector(in.at("exportDate")));
}

bool writeSummary(Writer& writer, const Json& in) {
  return writer.writeSummaryForTaxFormCopy(in.at("copy").get<NSInteger>(),
                                           in.at("line").get<NSInteger>(), text(in.at("refNumber")),
                                           number(in.at("amount")));
}

bool writeDetail(Writer& writer, const Json& in) {
  return writer.writeDetailForTaxFormCopy({.taxFormCopy = in.at("copy").get<NSInteger>(),
                                           .lineNumber = in.at("line").get<NSInteger>(),
                                           .refNumber = text(in.at("refNumber")),
                                           .amount = number(in.at("amount")),
                                           .detailDate = dateFromVector(in.at("detailDate")),
                                           .detailAccount = text(in.at("account")),
                                           .detailCheckNumber = text(in.at("checkNumber")),
                                           .detailPayee = text(in.at("payee")),
                                           .detailMemo = text(in.at("memo")),
                                           .detailCategory = text(in.at("category"))});
}

ORLFTXFCapitalGains gainsOf(const Json& in) {
  return {.securityName = text(in.at("securityName")),
          .taxFormCopy = in.at("copy").get<NSInteger>(),
          .lineNumber = in.at("line").get<NSInteger>(),
          .shares = number(in.at("shares")),
          .costBasis = number(in.at("costBasis")),
          .grossProceeds = number(in.at("grossProceeds")),
          .purchaseDate = dateFromVector(in.at("purchaseDate")),
          .saleDate = dateFromVector(in.at("saleDate"))};
}

bool writeGainsLong(Writer& writer, const Json& in) {
  return writer.writeCapitalGainsLongForSecurityName(gainsOf(in));
}

bool writeGainsShort(Writer& writer, const Json& in) {
  return writer.writeCapitalGainsShortForSecurityName(gainsOf(in));
}

orlftest::JsonCheck record(bool (*write)(Writer&, const Json&)) {
  return [write](const Json& in, const Json& out) {
    orlftest::WrittenTXF txf;
    if (!write(txf.writer, in)) return std::string("the writer failed");
    return disagreement(out, Json(txf.text()));
  };
}

TEST(ORLFTXFDataWriter, AgreesWithVectors) {
  orlftest::runJsonVectors("interchange_txf", {{"header", record(writeHeader)},
                                               {"summary", record(writeSummary)},
                                               {"detail", record(writeDetail)},
                                               {"gainsLong", record(writeGainsLong)},
                                               {"gainsShort", record(writeGainsShort)}});
}

}  // namespace
}  // namespace ORLFoundation
