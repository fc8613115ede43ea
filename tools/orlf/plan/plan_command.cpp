#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/common_options.h"
#include "cli/failure.h"
#include "cli/table.h"
#include "cli/words.h"
#include "commands.h"
#include "io/atomic_file.h"
#include "plan/plan_chart.h"
#include "plan/plan_file.h"
#include "plan/plan_model.h"
#include "plan/plan_report.h"
#include "values/date_text.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Json = nlohmann::ordered_json;

constexpr std::string_view kAbsent = "-";

struct PlanArguments {
  std::string file;
  std::vector<std::string> on;
  std::optional<std::string> every, from, to, target;
  bool exclusive = false;
  std::string chart, csv;
};

std::optional<NSDate> readOptionalDate(std::string_view option,
                                       const std::optional<std::string>& text,
                                       const NSCalendar& calendar) {
  return text ? std::optional(readDateOption(option, *text, calendar)) : std::nullopt;
}

/// Years, and months for plans of three years or less.
NSCalendarUnit usualSpacing(NSDate from, NSDate to) {
  constexpr double kThreeYears = 3 * 366 * 86400.0;
  return to.timeIntervalSinceDate(from) > kThreeYears ? NSCalendarUnitYear : NSCalendarUnitMonth;
}

PlanDates readDates(const PlanArguments& arguments, const PlanModel& model) {
  const NSCalendar& calendar = model.calendar();
  PlanDates dates;
  for (const std::string& text : arguments.on)
    dates.on.push_back(readDateOption("--on", text, calendar));
  dates.from = readOptionalDate("--from", arguments.from, calendar).value_or(model.start());
  dates.to = readOptionalDate("--to", arguments.to, calendar).value_or(model.horizon());
  if (dates.from.compare(dates.to) == NSOrderedDescending)
    throw UsageFailure("--from: expected a date that is not after " +
                       shortDateText(dates.to, calendar) + ", got " +
                       shortDateText(dates.from, calendar));
  if (arguments.every) {
    dates.every = unitNamed(*arguments.every);
    if (!dates.every)
      throw UsageFailure("--every: expected day, week, month, quarter or year, got '" +
                         *arguments.every + "'");
  } else if (dates.on.empty()) {
    dates.every = usualSpacing(dates.from, dates.to);
  }
  return dates;
}

void checkArguments(const PlanArguments& arguments) {
  if (!arguments.chart.empty() && !isChartPath(arguments.chart))
    throw UsageFailure("--chart: expected a file that ends in .svg, .png or .pdf, got '" +
                       arguments.chart + "'");
  if (!arguments.target) return;
  if (arguments.on.size() != 1) throw UsageFailure("--solve-principal needs one date, --on DATE");
  if (arguments.every || !arguments.chart.empty() || !arguments.csv.empty())
    throw UsageFailure("--solve-principal goes together with --on alone");
}

DecimalPrinter printerOf(const PlanModel& model, const std::string& locale) {
  const int scale = model.file.rounding ? model.file.rounding->scale : 2;
  return DecimalPrinter(locale, std::clamp(scale, 0, 38));
}

Json jsonOf(const std::optional<NSDecimalNumber>& number) {
  return number ? Json(number->stringValue()) : Json(nullptr);
}

Json jsonOf(const PlanExtreme& extreme, const NSCalendar& calendar) {
  if (!extreme.balance || !extreme.date) return nullptr;
  return {{"date", dateTimeText(*extreme.date, calendar)}, {"balance", jsonOf(extreme.balance)}};
}

void printJson(Session& session, const Json& answer) {
  session.out << answer.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

/// What one run prints and writes.
class PlanJob {
 public:
  PlanJob(Session& session, const PlanArguments& arguments, const PlanModel& model)
      : session_(session),
        arguments_(arguments),
        model_(model),
        printer_(printerOf(model, session.options.locale)) {}

  void solve() {
    const NSDecimalNumber target = readDecimalArgument("--solve-principal", *arguments_.target);
    const NSDate date = readDateOption("--on", arguments_.on.front(), model_.calendar());
    const SolvedPrincipal solved = solvePrincipal(model_, target, date);
    if (session_.options.json) {
      printJson(session_, {{"principal", jsonOf(solved.principal)},
                           {"start", dateTimeText(model_.start(), model_.calendar())},
                           {"target", jsonOf(target)},
                           {"on", dateTimeText(date, model_.calendar())},
                           {"balance", jsonOf(solved.balance)}});
      return;
    }
    session_.out << "A starting principal of " << printer_.text(solved.principal) << " on "
                 << dayText(model_.start()) << " leads to "
                 << printer_.text(solved.balance, kAbsent) << " on " << dayText(date) << ".\n";
  }

  void report() {
    const PlanDates dates = readDates(arguments_, model_);
    const PlanReport report = makePlanReport(model_, dates, arguments_.exclusive);
    if (!arguments_.csv.empty()) writeFileAtomically(arguments_.csv, csvText(report));
    if (!arguments_.chart.empty()) drawChart(chartBetween(dates), arguments_.chart);
    if (session_.options.json) {
      printJson(session_, jsonReport(report));
    } else {
      printReport(report);
    }
  }

 private:
  [[nodiscard]] std::string dayText(NSDate date) const {
    return shortDateText(date, model_.calendar());
  }

  [[nodiscard]] Chart chartBetween(const PlanDates& dates) const {
    Chart chart = makePlanChart(model_, dates.from, dates.to, session_.options.locale);
    if (chart.title.empty()) chart.title = std::filesystem::path(arguments_.file).stem().string();
    return chart;
  }

  void printReport(const PlanReport& report) {
    if (!model_.file.title.empty()) session_.out << model_.file.title << "\n\n";
    Table table(
        {{"Date", Table::kLeft}, {"Balance", Table::kRight}, {"Contributions", Table::kRight}});
    for (const PlanRow& row : report.rows)
      table.addRow({dayText(row.date), printer_.text(row.balance, kAbsent),
                    printer_.text(row.contributions, kAbsent)});
    table.print(session_.out);
    session_.out << '\n';
    printExtreme("Peak:    ", report.peak);
    printExtreme("Trough:  ", report.trough);
    if (!arguments_.csv.empty()) session_.out << "Table:   " << arguments_.csv << '\n';
    if (!arguments_.chart.empty()) session_.out << "Chart:   " << arguments_.chart << '\n';
  }

  void printExtreme(std::string_view name, const PlanExtreme& extreme) {
    session_.out << name;
    if (extreme.balance && extreme.date) {
      session_.out << printer_.text(*extreme.balance) << " on " << dayText(*extreme.date) << '\n';
    } else {
      session_.out << "none\n";
    }
  }

  [[nodiscard]] Json jsonReport(const PlanReport& report) const {
    const NSCalendar& calendar = model_.calendar();
    Json rows = Json::array();
    for (const PlanRow& row : report.rows)
      rows.push_back({{"date", dateTimeText(row.date, calendar)},
                      {"balance", jsonOf(row.balance)},
                      {"contributions", jsonOf(row.contributions)}});
    Json answer{{"title", model_.file.title},
                {"zone", calendar.timeZone()->name()},
                {"rows", std::move(rows)},
                {"peak", jsonOf(report.peak, calendar)},
                {"trough", jsonOf(report.trough, calendar)}};
    if (!arguments_.csv.empty()) answer["csv"] = arguments_.csv;
    if (!arguments_.chart.empty()) answer["chart"] = arguments_.chart;
    return answer;
  }

  [[nodiscard]] std::string csvText(const PlanReport& report) const {
    const auto plain = [](const std::optional<NSDecimalNumber>& number) {
      return number ? number->stringValue() : std::string();
    };
    std::string text = "date,balance,contributions\n";
    for (const PlanRow& row : report.rows)
      text += dateTimeText(row.date, model_.calendar()) + ',' + plain(row.balance) + ',' +
              plain(row.contributions) + '\n';
    return text;
  }

  Session& session_;
  const PlanArguments& arguments_;
  const PlanModel& model_;
  DecimalPrinter printer_;
};

void runPlan(Session& session, const PlanArguments& arguments) {
  checkArguments(arguments);
  // Refuses an unknown zone or locale as wrong usage, before the file is looked at.
  (void)makeCalendar(session.options.zone, session.options.locale);
  const PlanModel model =
      makePlanModel(readPlanFile(arguments.file, {.zone = session.options.zone,
                                                  .zoneOverrulesFile = session.options.zoneWasGiven,
                                                  .locale = session.options.locale}));
  PlanJob job(session, arguments, model);
  if (arguments.target) {
    job.solve();
  } else {
    job.report();
  }
}

}  // namespace

Command addPlanCommand(CLI::App& tool) {
  CLI::App* parser = tool.add_subcommand(
      "plan", "Print a table of dates, balances and contributions of a plan file, and draw it.");
  auto arguments = std::make_shared<PlanArguments>();
  parser->add_option("FILE", arguments->file, "Plan file (JSON)")->required();
  parser->add_option("--on", arguments->on, "Dates to tell the balance on");
  parser->add_option("--every", arguments->every,
                     "A row every day, week, month, quarter or year from --from to --to");
  parser->add_option("--from", arguments->from, "First date (the plan's start)");
  parser->add_option("--to", arguments->to,
                     "Last date (the plan's end; ten years on for an open plan)");
  parser->add_flag("--exclusive", arguments->exclusive,
                   "Where a segment begins, tell the balance that the one before it leaves");
  parser->add_option("--chart", arguments->chart, "Draw a chart into a .svg, .png or .pdf file");
  parser->add_option("--csv", arguments->csv, "Write the table into a CSV file");
  parser->add_option("--solve-principal", arguments->target,
                     "Find the starting principal that leads to this balance on the date of --on");
  return {parser, [arguments](Session& session) { runPlan(session, *arguments); }};
}

}  // namespace orlftool
