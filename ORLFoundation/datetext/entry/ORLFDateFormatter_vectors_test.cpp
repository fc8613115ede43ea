#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>

#include <ORLFoundation/datetext/entry/ORLFDateFormatter_testing.h>
#include <ORLFoundation/datetext/entry/internal/DateScan.h>
#include <ORLFoundation/datetext/entry/internal/ShortFormat.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/text/UTF16Range.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <cstdlib>
#include <iostream>

namespace ORLFoundation {
namespace {

using namespace internal::entry;
using orlftest::Json;
using orlftest::PinnedWorld;
using orlftest::TsvRow;

void setStyles(ORLFDateFormatter& formatter, const TsvRow& row) {
  formatter.setDateStyle(static_cast<NSDateFormatterStyle>(row.unsignedInteger("date_style")));
  formatter.setTimeStyle(static_cast<NSDateFormatterStyle>(row.unsignedInteger("time_style")));
  if (row["format"]) formatter.setDateFormat(*row["format"]);
}

std::string text(std::optional<NSDate> date) {
  return date ? orlftest::vectorFromDate(*date) : "nil";
}

std::optional<std::string> textIfUnder(const NSError& error, std::string_view key) {
  return error.userInfo()->objectForKey(key).as<std::string>();
}

// Each line names what differs.
std::string differences(std::initializer_list<std::pair<const char*, std::string>> fields) {
  std::string joined;
  for (const auto& [name, difference] : fields)
    if (!difference.empty()) joined += std::string(name) + " " + difference + "; ";
  return joined;
}

std::string differencesOfError(const TsvRow& row, const std::shared_ptr<const NSError>& error) {
  if (!row["code"]) return error ? "no error expected" : "";
  if (!error) return "an error expected";
  return differences(
      {{"domain", orlftest::disagreement(std::string(NSCocoaErrorDomain), error->domain())},
       {"code", orlftest::disagreement(row.integer("code"), error->code())},
       {"description",
        orlftest::disagreement(row["description"], textIfUnder(*error, NSLocalizedDescriptionKey))},
       {"suggestion",
        orlftest::disagreement(row["suggestion"],
                               textIfUnder(*error, NSLocalizedRecoverySuggestionErrorKey))},
       {"reason", orlftest::disagreement(row["reason"],
                                         textIfUnder(*error, NSLocalizedFailureReasonErrorKey))}});
}

// What a range over all of the text, or the row's, becomes.
std::string differenceOfRange(const TsvRow& row, const ORLFDateFormatter& formatter) {
  if (!row["consumed"]) return {};
  const std::string& typed = row.text("text");
  NSRange range{0, internal::text::unitsOf(typed, typed.size())};
  if (row["range_start"])
    range = {row.unsignedInteger("range_start"), row.unsignedInteger("range_length")};
  const NSUInteger location = range.location;
  std::optional<NSDate> date;
  formatter.getObjectValue(&date, typed, &range);
  if (range.location != location) return "the range moved";
  return orlftest::disagreement(row.unsignedInteger("consumed"), range.length);
}

std::string checkReading(const TsvRow& row) {
  const LogCapture quiet;
  const PinnedWorld world(row.text("locale"), row.text("zone"),
                          *orlftest::dateFromVector(row.text("today")));
  ORLFDateFormatter formatter;
  setStyles(formatter, row);
  formatter.setAllowNilDates(row.boolean("allow_nil"));
  if (row["minimum"]) formatter.setMinimunDate(orlftest::dateFromVector(*row["minimum"]));
  if (row["two_digit_start"])
    formatter.setTwoDigitStartDate(orlftest::dateFromVector(*row["two_digit_start"]));
  std::optional<NSDate> date;
  std::shared_ptr<const NSError> error;
  NSRange range;
  if (row["range_start"])
    range = {row.unsignedInteger("range_start"), row.unsignedInteger("range_length")};
  const bool ok = formatter.getObjectValue(&date, row.text("text"),
                                           row["range_start"] ? &range : nullptr, &error);
  return differences(
      {{"ok", orlftest::disagreement(row.boolean("ok"), ok)},
       {"date", orlftest::disagreement(text(orlftest::dateFromVector(row["date"])), text(date))},
       {"error", differencesOfError(row, error)},
       {"consumed", differenceOfRange(row, formatter)}});
}

std::string checkPrinting(const TsvRow& row) {
  const LogCapture quiet;
  const PinnedWorld world(row.text("locale"), row.text("zone"), NSDate());
  ORLFDateFormatter formatter;
  setStyles(formatter, row);
  formatter.setForceWideYear(row.boolean("force_year"));
  formatter.setForceWideMonth(row.boolean("force_month"));
  formatter.setForceWideDay(row.boolean("force_day"));
  std::optional<NSDate> start;
  if (row["two_digit_start"]) start = orlftest::dateFromVector(*row["two_digit_start"]);
  formatter.setTwoDigitStartDate(start);
  const NSDate date = *orlftest::dateFromVector(row.text("date"));
  const auto printed = formatter.stringForObjectValue(date);
  ORLFDateFormatter plain;
  plain.setDateStyle(NSDateFormatterNoStyle);
  plain.setDateFormat(row.text("pattern"));
  return differences(
      {{"text", orlftest::disagreement(row.text("text"), printed.value_or("nil"))},
       {"pattern", orlftest::disagreement(row.text("text"), plain.stringFromDate(date))},
       {"format", orlftest::disagreement(row.text("format_after"), formatter.dateFormat())}});
}

TEST(ORLFDateFormatter, AgreesWithVectorsOfReading) {
  orlftest::runTsvVectors("entry_date", checkReading);
}

// Rows of the wide output with dashes have a process of their own, since the default is read once.
std::string checkPrintingUnless(bool testing, const TsvRow& row) {
  return row.boolean("testing") == testing ? checkPrinting(row) : std::string();
}

TEST(ORLFDateFormatter, AgreesWithVectorsOfPrinting) {
  orlftest::runTsvVectors("entry_date_print",
                          [](const TsvRow& row) { return checkPrintingUnless(false, row); });
}

int exitCodeOfTestingFormat() {
  const auto defaults = std::make_shared<NSUserDefaults>();
  defaults->setBool(true, ORLFDateFormatterUseTestingFormatKey);
  NSUserDefaults::setStandardUserDefaults(defaults);
  const auto report =
      orlftest::checkTsvFile(orlftest::vectorFile("entry_date_print.tsv"),
                             [](const TsvRow& row) { return checkPrintingUnless(true, row); });
  for (const std::string& line : report.disagreements) std::cerr << line << '\n';
  // Read once; and what the class registered shows again.
  defaults->removeObjectForKey(ORLFDateFormatterUseTestingFormatKey);
  const bool isRegistered =
      defaults->objectForKey(ORLFDateFormatterUseTestingFormatKey).as<bool>() == false;
  return report.passed() && isRegistered && ORLFDateFormatter::useTestingFormat() ? 0 : 1;
}

TEST(ORLFDateFormatterDeathTest, AgreesWithVectorsOfTheTestingFormat) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::exit(exitCodeOfTestingFormat()), testing::ExitedWithCode(0), "");
}

std::string checkInformation(const TsvRow& row) {
  if (row.text("op") == "dayRangeForMonth") {
    const auto calendar = orlftest::calendarIn("UTC");
    const NSRange range =
        ORLFDateFormatter::dayRangeForMonth(row.integer("month"), row.integer("year"), *calendar);
    return differences(
        {{"first", orlftest::disagreement(row.unsignedInteger("first_day"), range.location)},
         {"days", orlftest::disagreement(row.unsignedInteger("day_count"), range.length)}});
  }
  LogCapture log;
  const std::optional<bool> monthFirst = monthFirstOfShortFormat(row.text("pattern"));
  const std::vector<std::string> lines = log.lines();
  std::string difference = differences(
      {{"recognized", orlftest::disagreement(row.boolean("recognized"), monthFirst.has_value())},
       {"month first", monthFirst && *monthFirst != row.boolean("month_first") ? "differs" : ""},
       {"log", orlftest::disagreement(
                   row["log"], lines.empty() ? std::optional<std::string>() : lines.back())}});
  if (!row["locale"] || !difference.empty()) return difference;
  log.clear();
  const PinnedWorld world(*row["locale"], "UTC", NSDate());
  const ORLFDateFormatter formatter;
  const std::vector<std::string> logged = log.lines();
  return differences(
      {{"format", orlftest::disagreement(row.text("pattern"), formatter.dateFormat())},
       {"recognized", orlftest::disagreement(row.boolean("recognized"), formatter.recognized())},
       {"month first", formatter.recognized() && formatter.monthFirst() != monthFirst
                           ? std::string("differs")
                           : std::string()},
       {"log", orlftest::disagreement(
                   row["log"], logged.empty() ? std::optional<std::string>() : logged.back())}});
}

TEST(ORLFDateFormatter, AgreesWithVectorsOfFormatInformation) {
  orlftest::runTsvVectors("entry_date_info", checkInformation);
}

TEST(ORLFDateFormatter, AgreesWithVectorsOfTheScan) {
  orlftest::runJsonVectors(
      "typed_date_scan",
      {{"scan", [](const Json& in, const Json& out) {
          const auto calendar = orlftest::calendarIn("UTC");
          const auto today =
              *orlftest::dateFromVector(in.at("today").get<std::string>() + "T00:00:00Z");
          const auto date = scanDate(in.at("text").get<std::string>(),
                                     in.at("monthFirst").get<bool>(), *calendar, today);
          return orlftest::disagreement(out.is_null() ? "nil" : out.get<std::string>(),
                                        text(date).substr(0, 10));
        }}});
}

TEST(ORLFDateFormatter, AgreesWithVectorsOfFormats) {
  const auto understood = [](const Json& in, const Json& out) {
    const LogCapture log;
    const auto monthFirst = monthFirstOfShortFormat(in.get<std::string>());
    return orlftest::disagreement(
        out.dump(), monthFirst ? Json{{"monthFirst", *monthFirst}}.dump() : std::string("null"));
  };
  const auto widened = [](const Json& in, const Json& out) {
    const bool testing = in.at("useTestingFormat").get<bool>();
    const WideParts parts{.year = testing || in.at("forceWideYear").get<bool>(),
                          .month = testing || in.at("forceWideMonth").get<bool>(),
                          .day = testing || in.at("forceWideDay").get<bool>(),
                          .dashes = testing};
    return orlftest::disagreement(out.get<std::string>(),
                                  widenedFormat(in.at("format").get<std::string>(), parts));
  };
  orlftest::runJsonVectors("typed_date_format", {{"understood", understood}, {"widened", widened}});
}

}  // namespace
}  // namespace ORLFoundation
