#include "plan/plan_file.h"

#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <string>
#include <vector>

#include "cli/failure.h"
#include "values/date_text.h"

namespace {

using namespace ORLFoundation;
using orlftool::parsePlanFile;
using orlftool::PlanFile;

constexpr const char* kWholePlan = R"({
  "title": "Größer",
  "zone": "America/New_York",
  "firstWeekday": 2,
  "minimumDaysInFirstWeek": 4,
  "rounding": {"scale": -3, "mode": "bankers"},
  "end": "2064-02-01T12:00:00",
  "segments": [
    {"name": "Debt", "start": "2024-02-01", "principal": "-300000", "contribution": 1514.38,
     "frequency": "quarterly", "interval": 2, "rate": "4.5%", "inflation": 0.02},
    {"start": "2054-02-01T00:00:00Z"}
  ]
})";

PlanFile parse(const std::string& text) { return parsePlanFile(text, "p.json", {}); }

/// What the failure says, "" for a plan that reads.
std::string failureOf(const std::string& text) {
  try {
    (void)parse(text);
  } catch (const orlftool::JobFailure& failure) {
    return failure.what();
  }
  return "";
}

/// A plan of one segment with further fields.
std::string segmentWith(const std::string& fields) {
  return "{\"segments\": [\n{\"start\": \"2024-01-01\",\n" + fields + "}\n]}";
}

TEST(PlanFile, ReadsEveryField) {
  const PlanFile file = parse(kWholePlan);
  EXPECT_EQ(file.title, "Größer");
  EXPECT_EQ(file.calendar->timeZone()->name(), "America/New_York");
  EXPECT_EQ(file.calendar->firstWeekday(), 2);
  EXPECT_EQ(file.calendar->minimumDaysInFirstWeek(), 4);
  ASSERT_TRUE(file.rounding);
  EXPECT_EQ(file.rounding->scale, -3);
  EXPECT_EQ(file.rounding->mode, NSRoundBankers);
  EXPECT_EQ(orlftool::dateTimeText(file.end.value(), *file.calendar), "2064-02-01T12:00:00-05:00");
  ASSERT_EQ(file.segments.size(), 2U);
  const orlftool::PlanTerms& debt = file.segments[0];
  EXPECT_EQ(debt.name, "Debt");
  EXPECT_EQ(orlftool::dateTimeText(debt.start, *file.calendar), "2024-02-01T00:00:00-05:00");
  EXPECT_EQ(debt.principal.value().stringValue(), "-300000");
  EXPECT_EQ(debt.contribution.value().stringValue(), "1514.38");
  EXPECT_EQ(debt.frequency, NSCalendarUnitQuarter);
  EXPECT_EQ(debt.interval, 2);
  EXPECT_EQ(debt.rate.value().stringValue(), "0.045");
  EXPECT_EQ(debt.inflation.value().stringValue(), "0.02");
}

TEST(PlanFile, LeftOutFieldsHaveDefaults) {
  const PlanFile file = parse(R"({"segments": [{"start": "2024-02-01"}]})");
  EXPECT_EQ(file.title, "");
  EXPECT_EQ(file.calendar->timeZone()->name(), "UTC");
  EXPECT_FALSE(file.rounding);
  EXPECT_FALSE(file.end);
  ASSERT_EQ(file.segments.size(), 1U);
  const orlftool::PlanTerms& terms = file.segments[0];
  EXPECT_FALSE(terms.principal || terms.contribution || terms.rate || terms.inflation);
  EXPECT_EQ(terms.frequency, NSCalendarUnitMonth);
  EXPECT_EQ(terms.interval, 1);
}

TEST(PlanFile, NullIsALeftOutField) {
  const PlanFile file = parse(
      R"({"title": null, "zone": null, "rounding": null, "end": null,
          "segments": [{"start": "2024-02-01", "principal": null, "interval": null}]})");
  EXPECT_FALSE(file.rounding || file.end || file.segments[0].principal);
  EXPECT_EQ(file.segments[0].interval, 1);
}

TEST(PlanFile, DecimalsAreTakenFromTheirText) {
  const auto principal = [](const std::string& text) {
    return parse(segmentWith("\"principal\": " + text)).segments[0].principal->stringValue();
  };
  EXPECT_EQ(principal("0.1000000000000000055511151231257827021"),
            "0.1000000000000000055511151231257827021");
  EXPECT_EQ(principal("12345678901234567890123456789"), "12345678901234567890123456789");
  EXPECT_EQ(principal("-9223372036854775809"), "-9223372036854775809");
  EXPECT_EQ(principal("18446744073709551616.25"), "18446744073709551616.25");
  EXPECT_EQ(principal("1.5e3"), "1500");
  EXPECT_EQ(principal("\"1.10\""), "1.1");
}

TEST(PlanFile, AZoneThatWasAskedForOverrulesTheFile) {
  orlftool::PlanFileDefaults defaults;
  EXPECT_EQ(parsePlanFile(kWholePlan, "p", defaults).calendar->timeZone()->name(),
            "America/New_York");
  defaults.zone = "Asia/Tokyo";
  EXPECT_EQ(parsePlanFile(kWholePlan, "p", defaults).calendar->timeZone()->name(), "Asia/Tokyo");
}

struct FaultRow {
  std::string name, text, failure;
};

const FaultRow kFaults[] = {
    {"NoText", "", "p.json:1: expected an object, the plan, got the end of the file"},
    {"Blanks", " \n\n ", "p.json:3: expected an object, the plan, got the end of the file"},
    {"NoJson", "plan", "p.json:1: expected an object, the plan, got 'p'"},
    {"AList", "[1]", "p.json:1: expected an object, the plan, got a list"},
    {"AText", "\"a\"", "p.json:1: expected an object, the plan, got 'a'"},
    {"EmptyObject", "{}",
     "p.json:1: segments: expected a list of at least one segment, got nothing"},
    {"EmptyList", "{\n\"segments\": []}",
     "p.json:2: segments: expected a list of at least one segment, got an empty list"},
    {"NullList", "{\"segments\": null}",
     "p.json:1: segments: expected a list of at least one segment, got null"},
    {"NoList", "{\"segments\": {}}",
     "p.json:1: segments: expected a list of at least one segment, got an object"},
    {"SegmentOfAnotherKind", "{\"segments\": [\n5\n]}",
     "p.json:2: segments[0]: expected an object, one segment, got 5"},
    {"CutOff", "{\n\"segments\": [\n",
     "p.json:3: segments[0]: expected JSON, with its commas and brackets, got the end of the file"},
    {"UnknownField", "{\n\"titel\": \"x\"}",
     "p.json:2: expected one of title, zone, firstWeekday, minimumDaysInFirstWeek, rounding, end, "
     "segments, got an unknown field 'titel'"},
    {"UnknownFieldOfASegment", segmentWith("\"Rate\": 1"),
     "p.json:3: segments[0]: expected one of name, start, principal, contribution, frequency, "
     "interval, rate, inflation, got an unknown field 'Rate'"},
    {"UnknownFieldOfRounding", "{\"rounding\": {\"scale\": 2,\n\"node\": 1}}",
     "p.json:2: rounding: expected one of scale, mode, got an unknown field 'node'"},
    {"DoubledField", segmentWith("\"rate\": 1,\n\"rate\": 2"),
     "p.json:4: segments[0].rate: expected the field once, got it a second time"},
    {"DoubledAfterNull", "{\"end\": null,\n\"end\": null}",
     "p.json:2: end: expected the field once, got it a second time"},
    {"MissingStart", "{\"segments\": [\n{\n\"rate\": 1}]}",
     "p.json:2: segments[0].start: expected an ISO 8601 date or date-time such as "
     "\"2024-01-31\", got nothing"},
    {"MissingScale", "{\n\"rounding\": {\"mode\": \"up\"}}",
     "p.json:2: rounding.scale: expected a whole number from -128 to 127, got nothing"},
    {"StartOfAnotherKind", "{\"segments\": [{\"start\": 2024}]}",
     "p.json:1: segments[0].start: expected an ISO 8601 date or date-time such as \"2024-01-31\", "
     "got 2024"},
    {"NoSuchDay", "{\"segments\": [{\"start\": \"2024-02-30\"}]}",
     "p.json:1: segments[0].start: expected an ISO 8601 date or date-time such as \"2024-01-31\", "
     "got '2024-02-30'"},
    {"NoDecimal", segmentWith("\"rate\":\n\"high\""),
     "p.json:4: segments[0].rate: expected a decimal text, a fraction or a percentage, got "
     "'high'"},
    {"NoPercentage", segmentWith("\"rate\": \"4.5 %\""),
     "p.json:3: segments[0].rate: expected a decimal text, a fraction or a percentage, got "
     "'4.5 %'"},
    {"PercentOfNoRate", segmentWith("\"principal\": \"5%\""),
     "p.json:3: segments[0].principal: expected a decimal text, got '5%'"},
    {"TooManyDigits", segmentWith("\"principal\": 1.23456789012345678901234567890123456789"),
     "p.json:3: segments[0].principal: expected a decimal text, got "
     "1.23456789012345678901234567890123456789"},
    {"NumberOutOfRange", segmentWith("\"principal\": 1e999"),
     "p.json:3: segments[0].principal: expected a decimal text, got a number out of range, "
     "'1e999'"},
    {"TrueForANumber", segmentWith("\"principal\": true"),
     "p.json:3: segments[0].principal: expected a decimal text, got true"},
    {"ListForANumber", segmentWith("\"principal\": [1]"),
     "p.json:3: segments[0].principal: expected a decimal text, got a list"},
    {"ObjectForAText", segmentWith("\"name\": {}"),
     "p.json:3: segments[0].name: expected a text, got an object"},
    {"NumberForAText", segmentWith("\"name\": 5\n"),
     "p.json:3: segments[0].name: expected a text, got 5"},
    {"UnknownFrequency", segmentWith("\"frequency\": \"hourly\""),
     "p.json:3: segments[0].frequency: expected \"daily\", \"weekly\", \"monthly\", \"quarterly\" "
     "or \"yearly\", got 'hourly'"},
    {"IntervalZero", segmentWith("\"interval\": 0"),
     "p.json:3: segments[0].interval: expected a whole number from 1 to 100000, got 0"},
    {"IntervalNegative", segmentWith("\"interval\": -1"),
     "p.json:3: segments[0].interval: expected a whole number from 1 to 100000, got -1"},
    {"IntervalNotWhole", segmentWith("\"interval\": 1.0"),
     "p.json:3: segments[0].interval: expected a whole number from 1 to 100000, got 1.0"},
    {"IntervalAsText", segmentWith("\"interval\": \"1\""),
     "p.json:3: segments[0].interval: expected a whole number from 1 to 100000, got '1'"},
    {"UnknownZone", "{\n\"zone\": \"Mars\", \"segments\": [{\"start\": \"2024-01-01\"}]}",
     "p.json:2: zone: expected a time zone such as \"America/New_York\", got 'Mars'"},
    {"FirstWeekdayOutOfRange", "{\"firstWeekday\": 8, \"segments\": [{\"start\": \"2024-01-01\"}]}",
     "p.json:1: firstWeekday: expected a whole number from 1 (Sunday) to 7, got 8"},
    {"UnknownMode",
     "{\"rounding\": {\"scale\": 2, \"mode\": \"half\"}, \"segments\": [{\"start\": "
     "\"2024-01-01\"}]}",
     "p.json:1: rounding.mode: expected \"plain\", \"down\", \"up\" or \"bankers\", got 'half'"},
    {"StartsOutOfOrder",
     "{\"segments\": [{\"start\": \"2024-01-01\"},\n{\"start\": \"2024-01-01\"}]}",
     "p.json:2: segments[1].start: expected a date after 2024-01-01, got '2024-01-01'"},
    {"EndBeforeTheLastStart",
     "{\"segments\": [{\"start\": \"2024-01-01\"}],\n\"end\": \"2023-01-01\"}",
     "p.json:2: end: expected a date after 2024-01-01, got '2023-01-01'"},
    {"MissingComma", "{\"title\": \"a\"\n\"zone\": \"UTC\"}",
     "p.json:2: expected JSON, with its commas and brackets, got '\"zone\"'"},
    {"TextWithLineEnd", "{\"title\": \"a\nb\"}", "p.json:1: title: expected a text, got '\"a'"},
    {"MisspelledTrue", "{\"title\":\n tru\n}", "p.json:2: title: expected a text, got 'tru'"},
    {"MoreAfterTheEnd", "{\"segments\": [{\"start\": \"2024-01-01\"}]}\n{}",
     "p.json:2: expected the end of the file, got '{'"},
    {"BrokenBytes", "{\"title\": \"\xFF\xFE\"}", "p.json:1: title: expected a text, got '\"?'"},
};

class PlanFileFaults : public testing::TestWithParam<FaultRow> {};

TEST_P(PlanFileFaults, AreToldInOneLine) {
  EXPECT_EQ(failureOf(GetParam().text), GetParam().failure);
}

INSTANTIATE_TEST_SUITE_P(Rows, PlanFileFaults, testing::ValuesIn(kFaults),
                         [](const auto& row) { return row.param.name; });

TEST(PlanFile, LongTextIsCutInMessages) {
  const std::string failure =
      failureOf(segmentWith("\"rate\": \"" + std::string(5000, 'x') + "\""));
  EXPECT_EQ(
      failure,
      "p.json:3: segments[0].rate: expected a decimal text, a fraction or a percentage, got '" +
          std::string(40, 'x') + "...'");
}

TEST(PlanFile, LinesAreCountedAfterNumbersAndTexts) {
  for (const char* value : {"1", "1.5", "\"1\"", "null", "-1"}) {
    const std::string failure =
        failureOf(segmentWith("\"principal\": " + std::string(value) + "\n,\n\"rate\": \"x\""));
    EXPECT_TRUE(failure.starts_with("p.json:5: segments[0].rate")) << failure;
  }
}

/// Bad input of some size ends soon, in one short line.
void expectQuickFailure(const std::string& text) {
  std::string failure;
  const double seconds = orlftest::processorSecondsOf([&] { failure = failureOf(text); });
  EXPECT_NE(failure, "");
  EXPECT_LT(failure.size(), 400U);
  EXPECT_EQ(failure.find('\n'), std::string::npos);
  EXPECT_LT(seconds, 30);
}

TEST(PlanFile, TenMegabytesOfGarbageFail) {
  constexpr std::size_t kSize = 10'000'000;
  expectQuickFailure(std::string(kSize, 'x'));
  expectQuickFailure(std::string(kSize, '\0'));
  expectQuickFailure("{\"title\": \"" + std::string(kSize, 'x'));
  expectQuickFailure("{\"title\": " + std::string(kSize, '7') + "}");
  expectQuickFailure(std::string(kSize, '\n'));
  std::string noise;
  std::uint64_t state = 42;
  while (noise.size() < kSize) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    noise += static_cast<char>(state >> 56);
  }
  expectQuickFailure(noise);
}

TEST(PlanFile, DeepNestingFails) {
  constexpr std::size_t kDepth = 5'000'000;
  expectQuickFailure(std::string(kDepth, '['));
  expectQuickFailure("{\"segments\": " + std::string(kDepth, '['));
  std::string objects;
  for (int i = 0; i < 500'000; ++i) objects += "{\"rounding\":";
  expectQuickFailure(objects);
}

TEST(PlanFile, ManySegmentsRead) {
  std::string text = "{\"segments\": [";
  for (int i = 0; i < 20000; ++i)
    text += (i > 0 ? ",\n" : "") + std::string("{\"start\": \"") + std::to_string(2024 + i) +
            "-01-01\", \"contribution\": 1}";
  EXPECT_EQ(parse(text + "]}").segments.size(), 20000U);
}

TEST(PlanFile, FilesThatDoNotReadAreToldByName) {
  const auto failure = [](const std::string& path) {
    try {
      (void)orlftool::readPlanFile(path, {});
    } catch (const orlftool::JobFailure& problem) {
      return std::string(problem.what());
    }
    return std::string();
  };
  EXPECT_EQ(failure("/no/such/file.json"),
            "/no/such/file.json: cannot be read: No such file or directory");
  EXPECT_EQ(failure("/"), "/: expected a plan file, got a directory");
  EXPECT_EQ(failure("/dev/zero"), "/dev/zero: expected a plan file of at most 64 MB, got more");
  EXPECT_EQ(failure("/dev/null"),
            "/dev/null:1: expected an object, the plan, got the end of the file");
}

}  // namespace
