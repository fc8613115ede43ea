// The formatters of the short forms are made once in a process, in its locale and zone: the rows of
// each locale and zone run in a process of their own.
#include <ORLFoundation/datetext/intervals/ORLFDateIntervalFormatter.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <utility>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using orlftest::TsvRow;

/// Locale and zone.
using World = std::pair<std::string, std::string>;

void enter(const World& world) {
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>(world.first));
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName(world.second));
}

template <class Formatter>
void setUp(Formatter& formatter, const char* zone, NSUInteger dateStyle, NSUInteger timeStyle) {
  const auto calendar = orlftest::calendarIn(zone);
  formatter.setTimeZone(calendar->timeZone());
  formatter.setCalendar(calendar);
  formatter.setDateStyle(static_cast<NSDateIntervalFormatterStyle>(dateStyle));
  formatter.setTimeStyle(static_cast<NSDateIntervalFormatterStyle>(timeStyle));
}

World worldOf(const TsvRow& row) { return {row.text("default_locale"), row.text("default_zone")}; }

/// What the base class prints from the row's start to the end that is shown.
std::optional<std::string> baseText(const TsvRow& row) {
  NSDateIntervalFormatter base;
  setUp(base, row.text("zone").c_str(), row.unsignedInteger("date_style"),
        row.unsignedInteger("time_style"));
  return base.stringFromDate(orlftest::dateFromVector(row["from"]),
                             orlftest::dateFromVector(row["shown_end"]));
}

std::string checkSpan(const TsvRow& row) {
  LogCapture log;
  ORLFDateIntervalFormatter formatter;
  setUp(formatter, row.text("zone").c_str(), row.unsignedInteger("date_style"),
        row.unsignedInteger("time_style"));
  formatter.setUseCompactFormat(row.boolean("compact"));
  formatter.setIncludeEndDateInRange(row.boolean("include_end"));
  const auto text = formatter.stringFromDate(orlftest::dateFromVector(row["from"]),
                                             orlftest::dateFromVector(row["to"]));
  const auto expected = row.text("way") == "base" ? baseText(row) : row["text"];
  std::string logged;
  for (const std::string& line : log.lines())
    if (line.starts_with("Condition Failed")) logged += line;
  const bool isLogged = row["logged"] ? logged.ends_with(" " + *row["logged"]) : logged.empty();
  if (!isLogged) return "logged " + logged;
  return orlftest::disagreement(expected, text);
}

/// Ends the process, with 0 when all rows of a world agree.
[[noreturn]] void runRowsOf(const World& world) {
  enter(world);
  const auto report = orlftest::checkTsvFile(
      orlftest::vectorFile("entry_interval.tsv"), [&world](const TsvRow& row) {
        return worldOf(row) == world ? checkSpan(row) : std::string();
      });
  for (const std::string& line : report.disagreements) std::cerr << line << '\n';
  std::exit(report.passed() ? 0 : 1);
}

TEST(ORLFDateIntervalFormatterWorlds, AgreeWithVectorsOfEntry) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  std::map<World, bool> worlds;
  const auto collected = orlftest::checkTsvFile(orlftest::vectorFile("entry_interval.tsv"),
                                                [&worlds](const TsvRow& row) {
                                                  worlds[worldOf(row)] = false;
                                                  return std::string();
                                                });
  ASSERT_TRUE(collected.passed());
  for (auto& world : worlds) {
    SCOPED_TRACE(world.first.first + " " + world.first.second);
    EXPECT_EXIT(runRowsOf(world.first), testing::ExitedWithCode(0), "");
    world.second = !testing::Test::HasFailure();
  }
  orlftest::runTsvVectors("entry_interval", [&worlds](const TsvRow& row) {
    return worlds.at(worldOf(row)) ? "" : "the rows of its locale and zone failed";
  });
}

NSDate dayOf(const Json& text) {
  return *orlftest::dateFromVector(text.get<std::string>() + "T00:00:00Z");
}

std::string checkTypedSpan(const Json& in, const Json& out) {
  ORLFDateIntervalFormatter formatter;
  setUp(formatter, "UTC", 1, 0);
  formatter.setUseCompactFormat(true);
  formatter.setIncludeEndDateInRange(in.at("includeEndDateInRange").get<bool>());
  return orlftest::disagreement(
      out.get<std::string>(),
      formatter.stringFromDate(dayOf(in.at("from")), dayOf(in.at("to"))).value_or("nil"));
}

[[noreturn]] void runTypedSpans() {
  enter({"en_US", "UTC"});
  const auto report = orlftest::checkJsonFile(orlftest::vectorFile("typed_span.jsonl"),
                                              {{"stringFromDate", &checkTypedSpan}});
  for (const std::string& line : report.disagreements) std::cerr << line << '\n';
  std::exit(report.passed() ? 0 : 1);
}

TEST(ORLFDateIntervalFormatterWorlds, AgreeWithVectorsOfTypedSpans) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(runTypedSpans(), testing::ExitedWithCode(0), "");
  const bool agrees = !HasFailure();
  const auto check = [agrees](const Json& /*in*/, const Json& /*out*/) {
    return std::string(agrees ? "" : "the rows failed in their process");
  };
  orlftest::runJsonVectors("typed_span", {{"stringFromDate", check}});
}

}  // namespace
}  // namespace ORLFoundation
