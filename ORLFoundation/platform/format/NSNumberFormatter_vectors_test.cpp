
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::Json;

void setUp(NSNumberFormatter& formatter, const Json& in) {
  formatter.setLocale(std::make_shared<NSLocale>(in.at("locale").get<std::string>()));
  formatter.setNumberStyle(static_cast<NSNumberFormatterStyle>(in.at("style").get<NSUInteger>()));
}

/// What rows without agreement are held to is what ICU gives.
const Json& expected(const Json& row) {
  return row.at(row.at("same").get<bool>() ? "out" : "icu72");
}

std::string checkWriting(const Json& row) {
  const Json& in = row.at("in");
  NSNumberFormatter formatter;
  setUp(formatter, in);
  if (!in.at("minFraction").is_null())
    formatter.setMinimumFractionDigits(in.at("minFraction").get<NSInteger>());
  if (!in.at("maxFraction").is_null())
    formatter.setMaximumFractionDigits(in.at("maxFraction").get<NSInteger>());
  if (!in.at("grouping").is_null())
    formatter.setUsesGroupingSeparator(in.at("grouping").get<bool>());
  return orlftest::disagreement(expected(row).get<std::string>(),
                                formatter.stringFromDouble(in.at("value").get<double>()));
}

std::string checkReading(const Json& row) {
  const Json& in = row.at("in");
  NSNumberFormatter formatter;
  setUp(formatter, in);
  formatter.setLenient(in.at("lenient").get<bool>());
  std::optional<NSNumber> value;
  NSRange range{0, in.at("text").get<std::string>().size()};
  const bool read = formatter.getObjectValue(&value, in.at("text").get<std::string>(), &range);
  if (expected(row).is_null()) return read ? "expected nil, got " + value->stringValue() : "";
  if (!read) return "expected " + expected(row).dump() + ", got nil";
  const std::string number =
      orlftest::realDisagreement(expected(row).get<double>(), value->doubleValue(), 1e-15);
  if (!number.empty()) return number;
  return orlftest::disagreement(in.at("consumed").get<NSUInteger>(), range.length);
}

TEST(NSNumberFormatter, AgreesWithVectorsOfWriting) {
  orlftest::runJsonRows("formats_number", checkWriting);
}

TEST(NSNumberFormatter, AgreesWithVectorsOfReading) {
  orlftest::runJsonRows("formats_read", checkReading);
}

}  // namespace
}  // namespace ORLFoundation
