#include "interchange/csv_inference.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "cli/message_text.h"
#include "interchange/csv_amounts.h"
#include "interchange/csv_encoding.h"
#include "interchange/csv_layout.h"
#include "interchange/date_shape.h"
#include "values/date_column.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// The layouts that leave dates alone in a column, or those that part most rows where none does.
std::vector<const CsvLayout*> favouredLayouts(const std::vector<CsvLayout>& layouts) {
  std::vector<const CsvLayout*> favoured;
  for (const CsvLayout& layout : layouts)
    if (layout.columns() > 1 && !layout.dateColumns().empty()) favoured.push_back(&layout);
  if (!favoured.empty()) return favoured;
  for (const CsvLayout& layout : layouts)
    if (layout.parts()) favoured.push_back(&layout);
  return favoured;
}

bool holdsDigit(std::string_view text) {
  return std::any_of(text.begin(), text.end(), internal::base::isDigit<char>);
}

/// What stands above the first row of data.
class Headers {
 public:
  explicit Headers(std::size_t dateColumn) : dateColumn_(dateColumn) {}

  void addOther(const ORLFTabularRow& row) {
    if (firstLine_ != 0) return;
    titleLine_ = row.lineNumber;
    titles_ = row.fields.size();
    title_ = CsvLayout::cell(row.fields, dateColumn_);
  }
  void addData(const ORLFTabularRow& row) {
    if (firstLine_ != 0) return;
    firstLine_ = row.lineNumber;
    firstDate_ = CsvLayout::cell(row.fields, dateColumn_);
  }

  [[nodiscard]] std::uint64_t firstLine() const { return firstLine_; }
  [[nodiscard]] const std::string& firstDate() const { return firstDate_; }
  [[nodiscard]] Finding finding() const {
    if (titleLine_ == 0)
      return {"header", "none", "the first row holds " + quotedForMessage(firstDate_), firstLine_};
    const bool isHeader = !trimmed(title_).empty() && !holdsDigit(title_) && titles_ > 1;
    return {"header", isHeader ? "line " + std::to_string(titleLine_) : "",
            "above the first date stands " + quotedForMessage(title_), titleLine_};
  }

 private:
  const std::size_t dateColumn_;
  std::uint64_t titleLine_ = 0, firstLine_ = 0;  // 0 for none
  std::size_t titles_ = 0;
  std::string title_, firstDate_;
};

/// The orders that names of months leave, and where the last of the others went.
class NamedDates {
 public:
  void add(const DateShape& shape, std::string_view text, std::uint64_t line) {
    if (shape.namedOrders == 0) return;
    ++count_;
    const std::uint8_t left = orders_ & shape.namedOrders;
    if (left != orders_) decider_ = {std::string(text), line};
    orders_ = left;
  }
  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] const ColumnText& decider() const { return decider_; }
  [[nodiscard]] std::vector<DateOrder> orders() const {
    std::vector<DateOrder> orders;
    for (const DateOrder order : kDateOrders)
      if ((orders_ >> order & 1U) != 0) orders.push_back(order);
    return orders;
  }

 private:
  std::uint8_t orders_ = 0xFF;
  std::size_t count_ = 0;
  ColumnText decider_;
};

/// The last text that excluded an order of those that one may expect; of one row, the text that
/// left day and month one way.
ColumnText deciderOf(const DateColumn& column, DateOrder answer) {
  ColumnText decider;
  for (const DateOrder order : {DateOrder{3}, DateOrder{1}, DateOrder{2}}) {
    if (order == answer) continue;
    const auto& excluded = column.excludedBy(order);
    if (excluded && excluded->line >= decider.line) decider = *excluded;
  }
  return decider;
}

/// The dates of all date columns.
class Dates {
 public:
  explicit Dates(const std::shared_ptr<NSCalendar>& calendar)
      : numbers_(calendar, {}, std::nullopt) {}

  void add(std::string_view text, std::uint64_t line) {
    const auto shape = dateShapeOf(text);
    if (!shape) return;
    if (first_.empty()) first_ = text;
    names_.add(*shape, text, line);
    if (shape->numbers.empty()) return;
    numbers_.add(shape->numbers, line);
    written_.try_emplace(shape->numbers, trimmed(text));
  }

  [[nodiscard]] Finding finding() const {
    const bool hasNames = names_.count() > 0;
    if (hasNames && numbers_.dateCount() > 0)
      return {"date order", "", "some dates name their month and some do not", 0};
    const std::vector<DateOrder> orders = hasNames ? names_.orders() : numbers_.orders();
    // Other orders than the usual ones are too rare to be believed without being asked for.
    if (orders.size() != 1 || orders.front() > 3) return asked(orders);
    const ColumnText decider = hasNames ? names_.decider() : deciderOf(numbers_, orders.front());
    const auto found = written_.find(decider.text);
    return {"date order", std::string(wordOfDateOrder(orders.front())),
            quotedForMessage(found == written_.end() ? decider.text : found->second), decider.line};
  }

 private:
  [[nodiscard]] Finding asked(const std::vector<DateOrder>& orders) const {
    std::vector<std::string> words;
    words.reserve(orders.size());
    for (const DateOrder order : orders) words.emplace_back(wordOfDateOrder(order));
    const std::string reason =
        orders.empty() ? "no order fits all dates" : "all dates fit " + joinedWithAnd(words);
    return {"date order", "", reason + ", such as " + quotedForMessage(first_), 0};
  }

  DateColumn numbers_;
  NamedDates names_;
  std::map<std::string, std::string, std::less<>> written_;  // the cell of each three numbers
  std::string first_;
};

/// The findings on the rows of data under the only separator that is left.
class TableFindings {
 public:
  TableFindings(const CsvText& text, const CsvLayout& layout,
                const std::shared_ptr<NSCalendar>& calendar)
      : layout_(layout),
        headers_(layout.dateColumns().front()),
        dates_(calendar),
        amounts_(layout.dateColumns()) {
    text.forEachRow(layout.separator().character,
                    [this](const ORLFTabularRow& row, bool&) { add(row); });
    BalanceSearch search(amounts_.columns(), amounts_.decimalMark().answer == "comma"
                                                 ? DecimalMark::Comma
                                                 : DecimalMark::Point);
    if (!search.isNeeded()) return;
    text.forEachRow(layout.separator().character, [&](const ORLFTabularRow& row, bool&) {
      if (layout.isData(row.fields)) search.add(row.fields);
    });
    balances_ = search.balances();
  }

  [[nodiscard]] std::vector<Finding> findings() const {
    const std::size_t column = layout_.dateColumns().front();
    return {{"separator", layout_.separator().name,
             quotedForMessage(headers_.firstDate()) + " stands alone in " + columnName(column),
             headers_.firstLine()},
            headers_.finding(),
            dates_.finding(),
            amounts_.decimalMark(),
            amounts_.sign(balances_)};
  }

 private:
  void add(const ORLFTabularRow& row) {
    if (!layout_.isData(row.fields)) return headers_.addOther(row);
    headers_.addData(row);
    amounts_.add(row.fields, row.lineNumber);
    for (const std::size_t column : layout_.dateColumns())
      dates_.add(CsvLayout::cell(row.fields, column), row.lineNumber);
  }

  const CsvLayout& layout_;
  Headers headers_;
  Dates dates_;
  AmountColumns amounts_;
  std::set<std::size_t> balances_;
};

/// The findings where no column holds dates.
std::vector<Finding> findingsWithoutDates(const CsvLayout& layout) {
  return {{"separator", layout.separator().name, "it alone parts most rows", layout.firstLine()},
          {"header", "", "no row holds a date", 0},
          {"date order", "", "no column holds dates", 0},
          {"decimal mark", "", "no amount shows one", 0},
          {"sign", "", "no column holds amounts", 0}};
}

std::vector<Finding> findingsWithoutSeparator(const std::vector<const CsvLayout*>& favoured) {
  std::vector<std::string> names;
  names.reserve(favoured.size());
  for (const CsvLayout* layout : favoured) names.emplace_back(layout->separator().name);
  std::vector<Finding> findings{{"separator", "",
                                 names.empty() ? "no separator parts most rows"
                                               : joinedWithAnd(names) + " both part the rows",
                                 0}};
  for (const char* question : {"header", "date order", "decimal mark", "sign"})
    findings.push_back({question, "", "the separator has to be known first", 0});
  return findings;
}

}  // namespace

std::vector<Finding> inferTable(const ReopenedBytes& bytes,
                                const std::shared_ptr<NSCalendar>& calendar) {
  const TableEncoding encoding = inferEncoding(bytes);
  const CsvText text(bytes, encoding.readAs);
  std::vector<CsvLayout> layouts;
  layouts.reserve(kCsvSeparators.size());
  for (const CsvSeparator& separator : kCsvSeparators) layouts.emplace_back(text, separator);
  const std::vector<const CsvLayout*> favoured = favouredLayouts(layouts);
  std::vector<Finding> findings = favoured.size() != 1 ? findingsWithoutSeparator(favoured)
                                  : favoured.front()->dateColumns().empty()
                                      ? findingsWithoutDates(*favoured.front())
                                      : TableFindings(text, *favoured.front(), calendar).findings();
  findings.push_back(encoding.finding);
  return findings;
}

std::vector<Finding> inferTable(std::string_view bytes,
                                const std::shared_ptr<NSCalendar>& calendar) {
  return inferTable([bytes] { return bytesInMemory(bytes); }, calendar);
}

}  // namespace orlftool
