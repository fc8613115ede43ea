#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "cli/table.h"
#include "commands.h"
#include "io/input_file.h"
#include "session.h"
#include "values/date_column.h"
#include "values/date_text.h"
#include "values/trimmed.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct InferArguments {
  std::string file;
  std::optional<std::string> column, year;
  std::vector<std::string> orders;
  bool all = false;
};

std::vector<DateOrder> readOrders(const std::vector<std::string>& words) {
  std::vector<DateOrder> orders;
  for (const std::string& word : words) {
    const std::optional<DateOrder> order = dateOrderNamed(word);
    if (!order)
      throw UsageFailure("--orders: expected " + std::string(kDateOrderWords) + ", got " +
                         quotedForMessage(word));
    orders.push_back(*order);
  }
  return orders;
}

std::optional<std::int64_t> readOption(std::string_view name,
                                       const std::optional<std::string>& text, std::int64_t most) {
  if (!text) return std::nullopt;
  return readWholeArgument(name, *text, 1, most);
}

bool contains(const std::vector<DateOrder>& orders, DateOrder order) {
  return std::find(orders.begin(), orders.end(), order) != orders.end();
}

/// The lines of a text that are not blank.
std::vector<ColumnText> linesOf(std::string_view text) {
  std::vector<ColumnText> lines;
  for (std::uint64_t line = 1; !text.empty(); ++line) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view whole = trimmed(text.substr(0, end));
    if (!whole.empty()) lines.push_back({std::string(whole), line});
    text.remove_prefix(end);
    text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<std::size_t>(text.size(), 1));
  }
  return lines;
}

/// The fields of a column, counted from 1; empty where a row ends before it.
std::vector<ColumnText> fieldsOf(std::string_view text, std::size_t column) {
  std::vector<ColumnText> fields;
  orlfEnumerateTabularRows(text, orlfTabularSeparator(text), [&](const ORLFTabularRow& row, bool&) {
    const bool isThere = column <= row.fields.size();
    fields.push_back({std::string(isThere ? row.fields[column - 1] : ""), row.lineNumber});
  });
  return fields;
}

std::vector<ColumnText> readTexts(const InferArguments& arguments) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  const auto column = readOption("--column", arguments.column, 1'000'000);
  const std::string bytes = readInputFile(arguments.file, "a file of dates");
  std::string_view text = bytes;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  return column ? fieldsOf(text, static_cast<std::size_t>(*column)) : linesOf(text);
}

/// Counts what a note tells of, and keeps the first.
class Remarks {
 public:
  void add(const ColumnText& text) {
    if (count_++ == 0) first_ = text;
  }
  [[nodiscard]] bool isEmpty() const { return count_ == 0; }
  /// "what: 3, the first on line 7: 'x'".
  void print(Session& session, std::string_view what) const {
    if (count_ == 0) return;
    std::string note = std::string(what) + ": ";
    note += count_ == 1 ? "" : std::to_string(count_) + ", the first on ";
    printNote(session,
              note + "line " + std::to_string(first_.line) + ", " + quotedForMessage(first_.text));
  }

 private:
  std::size_t count_ = 0;
  ColumnText first_;
};

/// A column read from a file, the orders asked for, and the dates.
class Inference {
 public:
  Inference(Session& session, const InferArguments& arguments)
      : session_(session),
        asked_(readOrders(arguments.orders)),
        column_(session.calendar, asked_, yearOf(arguments)),
        wantsAll_(arguments.all) {
    bool isFirst = true;
    for (ColumnText& text : readTexts(arguments)) {
      const bool isHeader = isFirst && text.text.find_first_of("0123456789") == text.text.npos;
      isFirst = false;
      if (isHeader) continue;
      const bool hasNumbers = column_.add(text.text, text.line);
      if (!hasNumbers) unread_.add(text);
      rows_.push_back({std::move(text), hasNumbers, {}});
    }
    if (column_.dateCount() == 0) failForLackOfDates(arguments);
    orders_ = column_.orders();
    isAnswer_ = orders_.size() == 1 && (asked_.empty() || contains(asked_, orders_.front()));
  }

  void print() {
    readDates();
    if (session_.options.json) {
      printJson(session_.out, json());
    } else {
      printOrders();
      if (!orders_.empty()) printDates();
    }
    printNotes();
    const bool isDone = wantsAll_ || (isAnswer_ && unknownDays_.isEmpty());
    session_.exitCode = isDone ? kExitSuccess : kExitFailedJob;
  }

 private:
  struct Row {
    ColumnText source;
    bool hasNumbers;
    std::vector<std::optional<std::string>> dates;  // by order
  };

  static std::optional<std::uint64_t> yearOf(const InferArguments& arguments) {
    const auto year = readOption("--year", arguments.year, 9999);
    return year ? std::optional(static_cast<std::uint64_t>(*year)) : std::nullopt;
  }

  [[noreturn]] void failForLackOfDates(const InferArguments& arguments) const {
    const std::string got = rows_.empty()
                                ? "none"
                                : quotedForMessage(rows_.front().source.text) + " on line " +
                                      std::to_string(rows_.front().source.line);
    throw JobFailure(arguments.file + ": expected dates of three numbers, got " + got);
  }

  void readDates() {
    for (Row& row : rows_) {
      for (const DateOrder order : orders_) {
        const auto date = column_.read(row.source.text, order).date;
        row.dates.push_back(date ? std::optional(shortDateText(*date, *session_.calendar))
                                 : std::nullopt);
      }
      const bool isMissing = std::count(row.dates.begin(), row.dates.end(), std::nullopt) != 0;
      if (row.hasNumbers && isMissing) unknownDays_.add(row.source);
    }
  }

  /// "remains", or why an order does not.
  [[nodiscard]] std::string stateOf(DateOrder order) const {
    if (const auto& text = column_.excludedBy(order))
      return "excluded by line " + std::to_string(text->line) + ": " + quotedForMessage(text->text);
    const bool isLeft = contains(orders_, order);
    if (asked_.empty()) return isLeft ? "remains" : "fits, but is unusual";
    if (contains(asked_, order)) return "remains";
    return isLeft ? "remains, but was not asked for" : "fits, but was not asked for";
  }

  void printOrders() {
    Table table({{"Order"}, {"State"}});
    for (const DateOrder order : kDateOrders)
      table.addRow({std::string(wordOfDateOrder(order)), stateOf(order)});
    table.print(session_.out);
  }

  void printDates() {
    std::vector<Table::Column> columns{{"Line", Table::kRight}, {"Text"}};
    for (const DateOrder order : orders_) columns.push_back({std::string(wordOfDateOrder(order))});
    Table table(std::move(columns));
    for (const Row& row : rows_) {
      std::vector<std::string> cells{std::to_string(row.source.line),
                                     quotedForMessage(row.source.text)};
      for (const auto& date : row.dates) cells.push_back(date.value_or("-"));
      table.addRow(std::move(cells));
    }
    session_.out << '\n';
    table.print(session_.out);
  }

  [[nodiscard]] Json json() const {
    Json remaining = Json::array(), excluded = Json::array(), rows = Json::array();
    for (const DateOrder order : orders_) remaining.push_back(wordOfDateOrder(order));
    for (const DateOrder order : kDateOrders)
      if (const auto& text = column_.excludedBy(order))
        excluded.push_back(
            {{"order", wordOfDateOrder(order)}, {"line", text->line}, {"text", text->text}});
    for (const Row& row : rows_) {
      Json entry{{"line", row.source.line}, {"text", row.source.text}};
      for (std::size_t index = 0; index < orders_.size(); ++index) {
        const auto& date = row.dates[index];
        entry[std::string(wordOfDateOrder(orders_[index]))] = date ? Json(*date) : Json(nullptr);
      }
      rows.push_back(std::move(entry));
    }
    return {{"orders", std::move(remaining)},
            {"excluded", std::move(excluded)},
            {"dates", std::move(rows)}};
  }

  void printNotes() {
    unread_.print(session_, "no date of three numbers");
    unknownDays_.print(session_, "no date of the calendar under an order that is left");
    if (orders_.empty()) {
      printNote(session_, "no order fits all dates");
    } else if (!wantsAll_ && !isAnswer_) {
      // Where one that was asked for fits, no other is left.
      const bool isAskedFor = asked_.empty() || contains(asked_, orders_.front());
      printNote(session_,
                isAskedFor ? "several orders fit: name the right one with --orders, or take --all"
                           : "no order that was asked for fits all dates");
    }
  }

  Session& session_;
  std::vector<DateOrder> asked_;
  DateColumn column_;
  bool wantsAll_;
  std::vector<Row> rows_;
  std::vector<DateOrder> orders_;
  bool isAnswer_ = false;
  Remarks unread_, unknownDays_;
};

}  // namespace

Job declareInferDatesCommand(Options& options) {
  options.describe(
      "Find the order of day, month and year in a file's dates, and print the dates. Exits with 1\n"
      "where the dates leave no order, or more than one. A first line without digits is passed "
      "over.");
  auto arguments = std::make_shared<InferArguments>();
  options.required("FILE", arguments->file,
                   "A file with a date on each line, or - for the standard input");
  options.text(
      "--column", arguments->column,
      "The dates' column, from 1, in separated text: semicolons where the first line holds "
      "one, else commas");
  options.list("--orders", arguments->orders,
               "The orders to choose from: " + std::string(kDateOrderWords) + " (dmy,mdy,ymd)");
  options.text("--year", arguments->year,
               "The current year: years of two digits lie up to one year behind it (today's)");
  options.flag("--all", arguments->all, "Take as many orders as the dates leave");
  return [arguments](Session& session) { Inference(session, *arguments).print(); };
}

}  // namespace orlftool
