#include <ORLFoundation/platform/format/NSDateFormatter.h>

#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using orlftest::Json;

// The platform's answer where ICU gives the same, else ICU's own.
const Json& expectedOf(const Json& row) {
  return row.at("same").get<bool>() ? row.at("out") : row.at("icu72");
}

void setUp(NSDateFormatter& formatter, const char* locale) {
  formatter.setLocale(std::make_shared<NSLocale>(locale));
  formatter.setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
}

void setUp(NSDateFormatter& formatter, const Json& in) {
  setUp(formatter, in.at("locale").get<std::string>().c_str());
}

TEST(NSDateFormatter, AgreesWithVectorsOfStyles) {
  orlftest::runJsonRows("formats_date", [](const Json& row) {
    const Json& in = row.at("in");
    NSDateFormatter formatter;
    setUp(formatter, in);
    formatter.setDateStyle(in.at("dateStyle").get<NSDateFormatterStyle>());
    formatter.setTimeStyle(in.at("timeStyle").get<NSDateFormatterStyle>());
    const NSDate date = *orlftest::dateFromVector(in.at("date"));
    return orlftest::disagreement(expectedOf(row).get<std::string>(),
                                  formatter.stringFromDate(date));
  });
}

TEST(NSDateFormatter, AgreesWithVectorsOfFormats) {
  orlftest::runJsonRows("formats_pattern", [](const Json& row) {
    const Json& in = row.at("in");
    NSDateFormatter formatter;
    setUp(formatter, in);
    formatter.setDateFormat(in.at("pattern").get<std::string>());
    const NSDate date = *orlftest::dateFromVector(in.at("date"));
    return orlftest::disagreement(expectedOf(row).get<std::string>(),
                                  formatter.stringFromDate(date));
  });
}

TEST(NSDateFormatter, AgreesWithVectorsOfTemplates) {
  orlftest::runJsonRows("formats_template", [](const Json& row) {
    const Json& in = row.at("in");
    const auto format = in.at("template").get<std::string>();
    const auto locale = std::make_shared<NSLocale>(in.at("locale").get<std::string>());
    return orlftest::disagreement(expectedOf(row).get<std::string>(),
                                  NSDateFormatter::dateFormatFromTemplate(format, 0, locale));
  });
}

TEST(NSDateFormatter, AgreesWithVectorsOfMonths) {
  orlftest::runJsonRows("formats_symbols", [](const Json& row) {
    NSDateFormatter formatter;
    setUp(formatter, row.at("in"));
    return orlftest::disagreement(expectedOf(row).dump(),
                                  Json(formatter.shortMonthSymbols()).dump());
  });
}

TEST(NSDateFormatter, AgreesWithVectorsOfReading) {
  orlftest::runJsonRows("formats_read_date", [](const Json& row) {
    NSDateFormatter formatter;
    setUp(formatter, "en_US_POSIX");
    formatter.setDateFormat(row.at("in").at("pattern").get<std::string>());
    const auto date = formatter.dateFromString(row.at("in").at("text").get<std::string>());
    formatter.setDateFormat("yyyy-MM-dd'T'HH:mm:ss'Z'");
    const Json& expected = expectedOf(row);
    return orlftest::disagreement(expected.is_null() ? "nil" : expected.get<std::string>(),
                                  date ? formatter.stringFromDate(*date) : "nil");
  });
}

}  // namespace
}  // namespace ORLFoundation
