#include <ORLFoundation/platform/base/CivilDays.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "chart/chart_text.h"
#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/table.h"
#include "cli/words.h"
#include "commands.h"
#include "io/atomic_file.h"
#include "plan/plan_chart.h"
#include "plan/plan_file.h"
#include "plan/plan_model.h"
#include "plan/plan_report.h"
#include "session.h"
#include "values/date_text.h"
#include "values/decimal_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

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
  constexpr double kThreeYears = 3.0 * 366 * internal::base::civil::kSecondsPerDay;
  return to.timeIntervalSinceDate(from) > kThreeYears ? NSCalendarUnitYear : NSCalendarUnitMonth;
}

/// The first date lies after the last: names the one that was typed.
[[noreturn]] void refuseOrder(const PlanArguments& arguments, const PlanDates& dates,
                              const NSCalendar& calendar) {
  if (!arguments.from && arguments.to)
    throw UsageFailure("--to: expected a date that is not before " +
                       shortDateText(dates.from, calendar) + ", got '" + *arguments.to + "'");
  throw UsageFailure("--from: expected a date that is not after " +
                     shortDateText(dates.to, calendar) + ", got '" +
                     arguments.from.value_or(shortDateText(dates.from, calendar)) + "'");
}

PlanDates readDates(const PlanArguments& arguments, const PlanModel& model) {
  const NSCalendar& calendar = model.calendar();
  PlanDates dates;
  for (const std::string& text : arguments.on)
    dates.on.push_back(readDateOption("--on", text, calendar));
  dates.from = readOptionalDate("--from", arguments.from, calendar).value_or(model.start());
  dates.to = readOptionalDate("--to", arguments.to, calendar).value_or(model.horizon());
  const std::optional<NSDate> end = model.file.end;
  if (end && dates.to.compare(*end) == NSOrderedDescending) dates.to = *end;
  dates.closes = end == dates.to;
  if (dates.from.compare(dates.to) == NSOrderedDescending) refuseOrder(arguments, dates, calendar);
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

constexpr int kMostPlacesShown = 38;

/// The digits after the point that amounts of the plan have at least.
int placesOf(const PlanModel& model) {
  return std::clamp<int>(model.file.rounding ? model.file.rounding->scale : 2, 0, kMostPlacesShown);
}

/// Prints a column of a report with as many digits after the point as its longest number has.
DecimalPrinter columnPrinter(const PlanReport& report,
                             std::optional<NSDecimalNumber> PlanRow::*column, int leastPlaces,
                             const std::string& locale) {
  int places = leastPlaces;
  for (const PlanRow& row : report.rows)
    if (row.*column) places = std::max(places, placesAfterPoint(*(row.*column)));
  return DecimalPrinter(locale, std::min(places, kMostPlacesShown));
}

Json jsonOf(const std::optional<NSDecimalNumber>& number) {
  return number ? Json(number->stringValue()) : Json(nullptr);
}

Json jsonOf(const PlanExtreme& extreme, const NSCalendar& calendar) {
  if (!extreme.balance || !extreme.date) return nullptr;
  return {{"date", dateTimeText(*extreme.date, calendar)}, {"balance", jsonOf(extreme.balance)}};
}

/// What one run prints and writes.
class PlanJob {
 public:
  PlanJob(Session& session, const PlanArguments& arguments, const PlanModel& model)
      : session_(session),
        arguments_(arguments),
        model_(model),
        printer_(session.options.locale, placesOf(model)) {}

  void solve() {
    const NSDecimalNumber target = readDecimalArgument("--solve-principal", *arguments_.target);
    const NSDate date = readDateOption("--on", arguments_.on.front(), model_.calendar());
    const SolvedPrincipal solved = solvePrincipal(model_, target, date);
    if (session_.options.json) {
      printJson(session_.out, {{"principal", jsonOf(solved.principal)},
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
      printJson(session_.out, jsonReport(report));
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
    if (!model_.file.title.empty()) session_.out << visibleText(model_.file.title) << "\n\n";
    const auto printer = [&](std::optional<NSDecimalNumber> PlanRow::*column) {
      return columnPrinter(report, column, placesOf(model_), session_.options.locale);
    };
    const DecimalPrinter balances = printer(&PlanRow::balance);
    const DecimalPrinter contributions = printer(&PlanRow::contributions);
    Table table(
        {{"Date", Table::kLeft}, {"Balance", Table::kRight}, {"Contributions", Table::kRight}});
    for (const PlanRow& row : report.rows)
      table.addRow({dayText(row.date), balances.text(row.balance, kAbsent),
                    contributions.text(row.contributions, kAbsent)});
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
  const PlanFileDefaults defaults{.zone = session.options.zone, .locale = session.options.locale};
  const PlanModel model = makePlanModel(readPlanFile(arguments.file, defaults));
  for (const std::string& warning : planWarnings(model.file)) printNote(session, warning);
  PlanJob job(session, arguments, model);
  if (arguments.target) {
    job.solve();
  } else {
    job.report();
  }
}

}  // namespace

Job declarePlanCommand(Options& options) {
  options.describe(
      "Print a table of dates, balances and contributions of a plan file, and draw it.");
  auto arguments = std::make_shared<PlanArguments>();
  options.required("FILE", arguments->file, "Plan file (JSON)");
  options.list("--on", arguments->on, "Dates to tell the balance on");
  options.text("--every", arguments->every,
               "A row every day, week, month, quarter or year from --from to --to");
  options.text("--from", arguments->from, "First date (the plan's start)");
  options.text("--to", arguments->to, "Last date (the plan's end; ten years on for an open plan)");
  options.flag("--exclusive", arguments->exclusive,
               "Where a segment begins, tell the balance that the one before it leaves");
  options.text("--chart", arguments->chart, "Draw a chart into a .svg, .png or .pdf file");
  options.text("--csv", arguments->csv, "Write the table into a CSV file");
  options.text("--solve-principal", arguments->target,
               "Find the starting principal that leads to this balance on the date of --on");
  return [arguments](Session& session) { runPlan(session, *arguments); };
}

}  // namespace orlftool
