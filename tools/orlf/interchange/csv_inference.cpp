#include "interchange/csv_inference.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <algorithm>
#include <map>
#include <utility>

#include "cli/message_text.h"
#include "interchange/cell_shapes.h"
#include "interchange/csv_amounts.h"
#include "interchange/csv_layout.h"
#include "io/text_input.h"
#include "values/date_column.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// The text of a file, and what its bytes tell of their encoding.
struct Decoding {
  std::string text;
  Finding finding;
};

/// The line on which the byte at a place stands.
std::uint64_t lineOf(std::string_view bytes, std::size_t place) {
  return 1 + lineEndsIn(bytes.substr(0, place));
}

/// The line around a place, for a message.
std::string lineAt(std::string_view bytes, std::size_t place) {
  const std::size_t before = bytes.substr(0, place).find_last_of("\r\n");
  const std::size_t start = before == bytes.npos ? 0 : before + 1;
  return std::string(bytes.substr(start, bytes.find_first_of("\r\n", place) - start));
}

Decoding decodingOf(std::string_view bytes) {
  const auto decoded = [bytes](NSStringEncoding encoding) {
    return stringWithData(NSData(bytes), encoding);
  };
  const auto told = [](const char* name, std::string reason, std::uint64_t line) {
    return Finding{"encoding", name, std::move(reason), line};
  };
  if (bytes.starts_with("\xEF\xBB\xBF") && internal::base::isUTF8(bytes))
    return {std::string(bytes.substr(3)), told("utf-8", "a byte order mark", 1)};
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
    if (auto text = decoded(NSUTF16StringEncoding))
      return {std::move(*text), told("utf-16", "a byte order mark", 1)};
  const auto* const beyond = std::find_if_not(bytes.begin(), bytes.end(),
                                              [](char c) { return internal::base::isASCII(c); });
  const auto place = static_cast<std::size_t>(beyond - bytes.begin());
  if (bytes.find('\0') != bytes.npos)
    return {std::string(bytes),
            {"encoding", "", "it holds zero bytes, as utf-16be and utf-16le do", 0}};
  if (place == bytes.size())
    return {std::string(bytes), told("ascii", "no row holds any other character", 0)};
  if (internal::base::isUTF8(bytes))
    return {std::string(bytes),
            told("utf-8", quotedForMessage(lineAt(bytes, place)), lineOf(bytes, place))};
  std::string reason = "bytes beyond ASCII that are no utf-8";
  for (const NSStringEncoding encoding :
       {NSWindowsCP1252StringEncoding, NSISOLatin1StringEncoding, NSMacOSRomanStringEncoding})
    if (const auto text = stringWithData(NSData(lineAt(bytes, place)), encoding))
      reason += "; " + std::string(nameOfEncoding(encoding)) + " reads " + quotedForMessage(*text);
  auto text = decoded(NSWindowsCP1252StringEncoding);
  if (!text) text = decoded(NSISOLatin1StringEncoding);
  return {std::move(*text), {"encoding", "", reason, lineOf(bytes, place)}};
}

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

Finding separatorFinding(const std::vector<const CsvLayout*>& favoured) {
  Finding finding{"separator", "", "", 0};
  if (favoured.empty()) {
    finding.reason = "no separator parts most rows";
  } else if (favoured.size() > 1) {
    for (const CsvLayout* layout : favoured)
      finding.reason +=
          (finding.reason.empty() ? "" : " and ") + std::string(layout->separator().name);
    finding.reason += " both part the rows";
  } else {
    const CsvLayout& layout = *favoured.front();
    const bool hasDates = !layout.data().empty();
    const CsvRow& row = hasDates ? *layout.data().front() : layout.rows().front();
    finding.answer = layout.separator().name;
    finding.line = row.line;
    finding.reason = hasDates
                         ? quotedForMessage(CsvLayout::cell(row, layout.dateColumns().front())) +
                               " stands alone in " + columnName(layout.dateColumns().front())
                         : "it alone parts most rows";
  }
  return finding;
}

bool holdsDigit(std::string_view text) {
  return std::any_of(text.begin(), text.end(), internal::base::isDigit<char>);
}

Finding headerFinding(const CsvLayout& layout) {
  Finding finding{"header", "", "no row holds a date", 0};
  if (layout.data().empty()) return finding;
  const CsvRow& first = *layout.data().front();
  const std::size_t column = layout.dateColumns().front();
  if (&first == &layout.rows().front())
    return {"header", "none",
            "the first row holds " + quotedForMessage(CsvLayout::cell(first, column)), first.line};
  const CsvRow& above = *(&first - 1);
  const std::string_view title = trimmed(CsvLayout::cell(above, column));
  const bool isHeader = !title.empty() && !holdsDigit(title) && above.cells.size() > 1;
  finding.line = above.line;
  finding.reason =
      "above the first date stands " + quotedForMessage(CsvLayout::cell(above, column));
  if (isHeader) finding.answer = "line " + std::to_string(above.line);
  return finding;
}

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

Finding dateOrderFinding(const CsvLayout& layout, const std::shared_ptr<NSCalendar>& calendar) {
  Finding finding{"date order", "", "no column holds dates", 0};
  DateColumn numbers(calendar, {}, std::nullopt);
  NamedDates names;
  std::map<std::string, std::string, std::less<>> written;  // the cell of each three numbers
  std::string first;
  for (const CsvRow* row : layout.data()) {
    for (const std::size_t column : layout.dateColumns()) {
      const std::string_view text = CsvLayout::cell(*row, column);
      const auto shape = dateShapeOf(text);
      if (!shape) continue;
      if (first.empty()) first = text;
      names.add(*shape, text, row->line);
      if (shape->numbers.empty()) continue;
      numbers.add(shape->numbers, row->line);
      written.emplace(shape->numbers, trimmed(text));
    }
  }
  if (first.empty()) return finding;
  if (names.count() > 0 && numbers.dateCount() > 0) {
    finding.reason = "some dates name their month and some do not";
    return finding;
  }
  const std::vector<DateOrder> orders = names.count() > 0 ? names.orders() : numbers.orders();
  // Other orders than the usual ones are too rare to be believed without being asked for.
  if (orders.size() != 1 || orders.front() > 3) {
    finding.reason = orders.empty() ? "no order fits all dates" : "all dates fit";
    for (const DateOrder order : orders)
      finding.reason +=
          (order == orders.front() ? " " : " and ") + std::string(wordOfDateOrder(order));
    finding.reason += ", such as " + quotedForMessage(first);
    return finding;
  }
  const ColumnText decider =
      names.count() > 0 ? names.decider() : deciderOf(numbers, orders.front());
  return {"date order", std::string(wordOfDateOrder(orders.front())),
          quotedForMessage(names.count() > 0 ? decider.text : written[decider.text]), decider.line};
}

}  // namespace

std::vector<Finding> inferTable(std::string_view bytes,
                                const std::shared_ptr<NSCalendar>& calendar) {
  Decoding decoding = decodingOf(bytes);
  std::vector<CsvLayout> layouts;
  layouts.reserve(kCsvSeparators.size());
  for (const CsvSeparator& separator : kCsvSeparators)
    layouts.emplace_back(decoding.text, separator);
  const std::vector<const CsvLayout*> favoured = favouredLayouts(layouts);
  std::vector<Finding> findings{separatorFinding(favoured)};
  if (favoured.size() == 1) {
    const CsvLayout& layout = *favoured.front();
    AmountFindings amounts = amountFindings(layout);
    findings.push_back(headerFinding(layout));
    findings.push_back(dateOrderFinding(layout, calendar));
    findings.push_back(std::move(amounts.decimalMark));
    findings.push_back(std::move(amounts.sign));
  } else {
    for (const char* question : {"header", "date order", "decimal mark", "sign"})
      findings.push_back({question, "", "the separator has to be known first", 0});
  }
  findings.push_back(std::move(decoding.finding));
  return findings;
}

}  // namespace orlftool
