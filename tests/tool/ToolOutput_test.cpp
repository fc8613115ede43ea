// What the case files cannot show: JSON, files that commands write, output that fails.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>
#include <streambuf>
#include <string>

#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>

namespace {

using Json = nlohmann::json;
using orlftest::runTool;
using orlftest::ToolRun;

std::string example(const std::string& name) {
  return std::string(ORLF_SOURCE_DIR) + "/examples/" + name;
}

Json jsonOf(std::vector<std::string> arguments) {
  arguments.emplace_back("--json");
  const ToolRun run = runTool(arguments);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.err, "");
  return Json::parse(run.out);
}

class ToolOutput : public orlftest::TemporaryFolderTest {};

TEST_F(ToolOutput, EveryCommandHasHelp) {
  for (const char* command :
       {"dates",          "describe", "schedule", "fiscal",     "plan",         "loan",  "irr",
        "axis",           "amount",   "round",    "decimal",    "link",         "title", "email",
        "template-image", "csv",      "ofx2xml",  "xml-escape", "xml-unescape", "qif",   "txf",
        "xml-events"}) {
    const ToolRun run = runTool({command, "--help"});
    EXPECT_EQ(run.exitCode, 0) << command;
    EXPECT_EQ(run.err, "") << command;
    EXPECT_NE(run.out.find("--help"), std::string::npos) << command;
    EXPECT_NE(run.out.find("--tz"), std::string::npos) << command;
  }
  EXPECT_NE(runTool({"--help"}).out.find("amount"), std::string::npos);
}

TEST_F(ToolOutput, DatesAsJson) {
  EXPECT_EQ(jsonOf({"dates", "--freq", "monthly", "--start", "2024-01-31", "--count", "2"}),
            Json::parse(R"json({"zone": "UTC", "dates": ["2024-01-31T00:00:00+00:00",
                                                     "2024-02-29T00:00:00+00:00"]})json"));
  const ToolRun none = runTool({"dates", "--json", "--freq", "yearly", "--by-month", "2",
                                "--by-monthday", "30", "--start", "2024-01-31"});
  EXPECT_EQ(none.exitCode, 0);
  EXPECT_EQ(Json::parse(none.out)["dates"], Json::array());
  EXPECT_EQ(none.err, "orlf dates: no date matches the rule\n");
}

TEST_F(ToolOutput, DatesOfARuleTextAsJson) {
  EXPECT_EQ(jsonOf({"dates", "--rule", "RRULE:FREQ=MONTHLY;BYDAY=-1FR", "--start", "2024-01-01",
                    "--count", "1", "--tz", "America/New_York"}),
            Json::parse(R"json({"zone": "America/New_York",
                                "dates": ["2024-01-26T00:00:00-05:00"]})json"));
}

TEST_F(ToolOutput, DescriptionsAsJson) {
  EXPECT_EQ(jsonOf({"describe", "RRULE:FREQ=DAILY"}),
            Json::parse(R"json({"rule": "RRULE:FREQ=DAILY",
                                "description": "repeats daily."})json"));
  EXPECT_EQ(jsonOf({"describe", "--freq", "quarterly"}),
            Json::parse(R"json({"description": "repeats quarterly."})json"));
}

TEST_F(ToolOutput, SchedulesAsJson) {
  EXPECT_EQ(jsonOf({"schedule", "biweekly", "--including", "2024-05-15T09:30", "--count", "2",
                    "--tz", "America/New_York"}),
            Json::parse(R"json({"pattern": "biweekly", "zone": "America/New_York",
                                "paymentsPerYear": 26,
                                "dates": ["2024-05-15T00:00:00-04:00",
                                          "2024-05-29T00:00:00-04:00"]})json"));
}

TEST_F(ToolOutput, FiscalDatesAsJson) {
  EXPECT_EQ(jsonOf({"fiscal", "2020-08-15", "--year-start", "7-1"}),
            Json::parse(R"json({"year": 2021, "quarter": 1, "month": 2, "week": 7,
                                "yearStart": "2020-07-01T00:00:00+00:00",
                                "quarterStart": "2020-07-01T00:00:00+00:00",
                                "monthStart": "2020-08-01T00:00:00+00:00"})json"));
}

TEST_F(ToolOutput, LoansAsJson) {
  const Json loan =
      jsonOf({"loan", "--principal", "1000", "--rate", "12%", "--periods", "2", "--schedule"});
  EXPECT_EQ(loan["payment"], "507.51");
  EXPECT_EQ(loan["lastPayment"], "507.51");
  EXPECT_EQ(loan["paid"], "1015.02");
  EXPECT_EQ(loan["interest"], "15.02");
  EXPECT_EQ(loan["schedule"], Json::parse(R"json([
      {"number": 1, "payment": "507.51", "interest": "10", "principal": "497.51",
       "balance": "502.49"},
      {"number": 2, "payment": "507.51", "interest": "5.02", "principal": "502.49",
       "balance": "0"}])json"));
  EXPECT_FALSE(jsonOf({"loan", "--principal", "1000", "--rate", "12%", "--periods", "2"})
                   .contains("schedule"));
}

TEST_F(ToolOutput, RatesOfReturnAsJson) {
  write("flows.csv", "2023-01-01,-100\n2024-01-01,110\n");
  const Json rate = jsonOf({"irr", path("flows.csv")});
  EXPECT_NEAR(std::stod(rate["rate"].get<std::string>()), 0.1, 0.00001);
  EXPECT_EQ(rate["flows"], 2);
  EXPECT_EQ(rate["from"], "2023-01-01T00:00:00+00:00");
  EXPECT_EQ(rate["to"], "2024-01-01T00:00:00+00:00");
  const Json worth = jsonOf({"irr", path("flows.csv"), "--npv", "8%"});
  EXPECT_EQ(worth["discountRate"], "8%");
  EXPECT_EQ(worth["netPresentValue"], "1.851852");
  EXPECT_FALSE(worth.contains("rate"));
}

TEST_F(ToolOutput, AxesAsJson) {
  EXPECT_EQ(jsonOf({"axis", "0", "5000", "--steps", "3"}),
            Json::parse(R"json({"min": 0.0, "max": 5000.0, "stepSize": 2500.0, "stepCount": 2,
                                "steps": [{"value": 0.0, "label": "0"},
                                          {"value": 2500.0, "label": "2.5K"},
                                          {"value": 5000.0, "label": "5K"}]})json"));
}

TEST_F(ToolOutput, AmountsAsJson) {
  EXPECT_EQ(jsonOf({"amount", "(1,234.50)", "5 USD"}),
            Json::parse(R"json([{"text": "(1,234.50)", "amount": "-1234.5"},
                            {"text": "5 USD", "amount": null}])json"));
  EXPECT_EQ(jsonOf({"amount", "\xFF 5"}).size(), 1U);
}

TEST_F(ToolOutput, SumsAsJson) {
  EXPECT_EQ(jsonOf({"round", "2.345", "--scale", "2", "--mode", "bankers"})["result"], "2.34");
  EXPECT_EQ(
      jsonOf({"decimal", "divide", "1", "3", "--scale", "4"}),
      Json::parse(R"json({"operation": "divide", "a": "1", "b": "3", "result": "0.3333"})json"));
  EXPECT_EQ(jsonOf({"decimal", "divide", "1", "0", "--on-error", "nil"})["result"], nullptr);
}

TEST_F(ToolOutput, LinksAsJson) {
  write("handlers.txt", "accept /a\ndecline a/b\naccept /x\n");
  const std::string handlers = "--handlers=" + path("handlers.txt");
  EXPECT_EQ(jsonOf({"link", "https://x.org/a/b%20c", handlers}),
            Json::parse(R"json({"url": "https://x.org/a/b%20c", "path": "/a/b c",
                                "order": ["/a/b", "/a", "/x"],
                                "asked": [{"prefix": "/a/b", "accepted": false},
                                          {"prefix": "/a", "accepted": true}],
                                "handled": true, "handler": "/a"})json"));
  const Json nothing = jsonOf({"link", "https://x.org/%FF", handlers});
  EXPECT_EQ(nothing["path"], nullptr);
  EXPECT_EQ(nothing["asked"], Json::array());
  EXPECT_EQ(nothing["handled"], false);
  EXPECT_EQ(nothing["handler"], nullptr);
}

TEST_F(ToolOutput, TitlesAsJson) {
  EXPECT_EQ(jsonOf({"title", "cash at bank"}),
            Json::parse(R"json([{"text": "cash at bank", "title": "Cash at Bank"}])json"));
  EXPECT_EQ(jsonOf({"title", "\xFF of"})[0]["title"], "\uFFFD of");
}

TEST_F(ToolOutput, AddressesAsJson) {
  const ToolRun run = runTool({"email", "a@b.de", "a@b", "--json"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(Json::parse(run.out), Json::parse(R"json([{"text": "a@b.de", "isEmailAddress": true},
                                                      {"text": "a@b", "isEmailAddress": false}])json"));
}

TEST_F(ToolOutput, PlanAsJsonAgreesWithItsTable) {
  const Json plan = jsonOf({"plan", example("mortgage.json")});
  EXPECT_EQ(plan["zone"], "America/New_York");
  ASSERT_EQ(plan["rows"].size(), 41U);
  EXPECT_EQ(plan["rows"][0]["date"], "2024-02-01T00:00:00-05:00");
  EXPECT_EQ(plan["rows"][0]["balance"], "-300000");
  EXPECT_EQ(plan["rows"][1]["contributions"], "18172.56");
  EXPECT_EQ(plan["trough"]["balance"], "-300000");
  EXPECT_EQ(plan["trough"]["date"], plan["rows"][0]["date"]);
  EXPECT_EQ(plan["peak"]["balance"], plan["rows"][40]["balance"]);
}

TEST_F(ToolOutput, SolvedPrincipalIsWhatTheFileSays) {
  const Json answer = jsonOf(
      {"plan", example("savings.json"), "--solve-principal", "100000", "--on", "2045-01-01"});
  EXPECT_EQ(answer["start"], "2025-01-01T00:00:00+01:00");
  EXPECT_EQ(answer["target"], "100000");
  EXPECT_NEAR(std::stod(answer["balance"].get<std::string>()), 100000, 0.05);
}

TEST_F(ToolOutput, TableAndChartAreWritten) {
  const ToolRun run = runTool({"plan", example("retirement.json"), "--csv", path("t.csv"),
                               "--chart", path("c.svg"), "--every", "quarter"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_NE(run.out.find(path("c.svg")), std::string::npos);
  EXPECT_NE(read("c.svg").find("<svg"), std::string::npos);
  const std::string table = read("t.csv");
  EXPECT_TRUE(
      table.starts_with("date,balance,contributions\n"
                        "2027-01-01T00:00:00-06:00,640000,0\n"))
      << table.substr(0, 200);
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 1 + 28 * 4 + 1);
  EXPECT_EQ(names().size(), 2U);
}

TEST_F(ToolOutput, AFailedPlanWritesNothing) {
  const ToolRun run =
      runTool({"plan", path("absent.json"), "--csv", path("t.csv"), "--chart", path("c.svg")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "orlf plan: " + path("absent.json") + ": cannot be read: No such file or directory\n");
  EXPECT_TRUE(names().empty());
}

TEST_F(ToolOutput, ChartsThatCannotBeWrittenFailTheJob) {
  const ToolRun run =
      runTool({"plan", example("savings.json"), "--chart", path("no/such/folder/c.png")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
}

TEST_F(ToolOutput, FileNamesWithLineEndsStayInOneLine) {
  const ToolRun run = runTool({"plan", "no\nsuch\nfile"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "orlf plan: no such file: cannot be read: No such file or directory\n");
}

/// Takes nothing.
class FullStream : public std::streambuf {};

TEST_F(ToolOutput, OutputThatCannotBeWrittenFailsTheJob) {
  FullStream full;
  std::ostream out(&full);
  std::ostringstream err;
  EXPECT_EQ(orlftool::runTool({"round", "1", "--scale", "0"}, out, err), 1);
  EXPECT_EQ(err.str(), "orlf round: the output cannot be written\n");
}

TEST_F(ToolOutput, LinesOfTheLogComeOnce) {
  const ToolRun run = runTool({"amount", "3 7/2", "3 7/2"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "3\n3\n");
  EXPECT_EQ(run.err, "orlf: Cannot append improper fraction to end of amount: 3\n");
}

}  // namespace
