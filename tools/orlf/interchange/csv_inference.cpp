#include "interchange/csv_inference.h"

#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>
#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "cli/message_text.h"
#include "interchange/cell_shapes.h"
#include "io/text_input.h"
#include "values/date_column.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct Row {
  std::vector<std::string> cells;
  std::uint64_t line = 0;
};

struct Separator {
  char character;
  const char* name;
};
constexpr std::array<Separator, 3> kSeparators{{{',', "comma"}, {';', "semicolon"}, {'\t', "tab"}}};

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

/// A text parted by one separator, and what the columns then hold.
class Layout {
 public:
  Layout(std::string_view text, Separator separator) : separator_(separator) {
    orlfEnumerateTabularRows(text, separator.character, [this](const ORLFTabularRow& row, bool&) {
      rows_.push_back({{row.fields.begin(), row.fields.end()}, row.lineNumber});
      columns_ = std::max(columns_, row.fields.size());
    });
    findDateColumns();
    if (!dateColumns_.empty()) findData();
  }

  [[nodiscard]] Separator separator() const { return separator_; }
  [[nodiscard]] const std::vector<Row>& rows() const { return rows_; }
  [[nodiscard]] std::size_t columns() const { return columns_; }
  [[nodiscard]] const std::vector<std::size_t>& dateColumns() const { return dateColumns_; }
  /// The rows with a date in the first of the date columns.
  [[nodiscard]] const std::vector<const Row*>& data() const { return data_; }
  /// Whether most rows have more than one field.
  [[nodiscard]] bool parts() const {
    const auto parted = std::count_if(rows_.begin(), rows_.end(),
                                      [](const Row& row) { return row.cells.size() > 1; });
    return 2 * static_cast<std::size_t>(parted) > rows_.size();
  }
  static std::string_view cell(const Row& row, std::size_t column) {
    return column < row.cells.size() ? std::string_view(row.cells[column]) : std::string_view();
  }

 private:
  /// Columns in which at least half of the rows from the first date on hold one, and at least half
  /// as many as the fullest.
  void findDateColumns() {
    std::vector<std::size_t> dates(columns_);
    std::vector<std::size_t> counted(columns_);
    for (const Row& row : rows_) {
      for (std::size_t column = 0; column < columns_; ++column) {
        const bool isDate = dateShapeOf(cell(row, column)).has_value();
        dates[column] += isDate ? 1 : 0;
        counted[column] += dates[column] > 0 ? 1 : 0;
      }
    }
    const std::size_t most = columns_ == 0 ? 0 : *std::max_element(dates.begin(), dates.end());
    for (std::size_t column = 0; column < columns_ && most > 0; ++column)
      if (2 * dates[column] >= std::max(counted[column], most)) dateColumns_.push_back(column);
  }

  void findData() {
    for (const Row& row : rows_)
      if (dateShapeOf(cell(row, dateColumns_.front()))) data_.push_back(&row);
  }

  Separator separator_;
  std::vector<Row> rows_;
  std::size_t columns_ = 0;
  std::vector<std::size_t> dateColumns_;
  std::vector<const Row*> data_;
};

std::string columnName(std::size_t column) { return "column " + std::to_string(column + 1); }

/// The layouts that leave dates alone in a column, or those that part most rows where none does.
std::vector<const Layout*> favouredLayouts(const std::vector<Layout>& layouts) {
  std::vector<const Layout*> favoured;
  for (const Layout& layout : layouts)
    if (layout.columns() > 1 && !layout.dateColumns().empty()) favoured.push_back(&layout);
  if (!favoured.empty()) return favoured;
  for (const Layout& layout : layouts)
    if (layout.parts()) favoured.push_back(&layout);
  return favoured;
}

Finding separatorFinding(const std::vector<const Layout*>& favoured) {
  Finding finding{"separator", "", "", 0};
  if (favoured.empty()) {
    finding.reason = "no separator parts most rows";
  } else if (favoured.size() > 1) {
    for (const Layout* layout : favoured)
      finding.reason +=
          (finding.reason.empty() ? "" : " and ") + std::string(layout->separator().name);
    finding.reason += " both part the rows";
  } else {
    const Layout& layout = *favoured.front();
    const bool hasDates = !layout.data().empty();
    const Row& row = hasDates ? *layout.data().front() : layout.rows().front();
    finding.answer = layout.separator().name;
    finding.line = row.line;
    finding.reason = hasDates ? quotedForMessage(Layout::cell(row, layout.dateColumns().front())) +
                                    " stands alone in " + columnName(layout.dateColumns().front())
                              : "it alone parts most rows";
  }
  return finding;
}

bool holdsDigit(std::string_view text) {
  return std::any_of(text.begin(), text.end(), internal::base::isDigit<char>);
}

Finding headerFinding(const Layout& layout) {
  Finding finding{"header", "", "no row holds a date", 0};
  if (layout.data().empty()) return finding;
  const Row& first = *layout.data().front();
  const std::size_t column = layout.dateColumns().front();
  if (&first == &layout.rows().front())
    return {"header", "none",
            "the first row holds " + quotedForMessage(Layout::cell(first, column)), first.line};
  const Row& above = *(&first - 1);
  const std::string_view title = trimmed(Layout::cell(above, column));
  const bool isHeader = !title.empty() && !holdsDigit(title) && above.cells.size() > 1;
  finding.line = above.line;
  finding.reason = "above the first date stands " + quotedForMessage(Layout::cell(above, column));
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

Finding dateOrderFinding(const Layout& layout, const std::shared_ptr<NSCalendar>& calendar) {
  Finding finding{"date order", "", "no column holds dates", 0};
  DateColumn numbers(calendar, {}, std::nullopt);
  NamedDates names;
  std::map<std::string, std::string, std::less<>> written;  // the cell of each three numbers
  std::string first;
  for (const Row* row : layout.data()) {
    for (const std::size_t column : layout.dateColumns()) {
      const std::string_view text = Layout::cell(*row, column);
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

/// One column of amounts.
struct AmountColumn {
  std::size_t column = 0;
  std::vector<std::optional<AmountShape>> shapes;  // one for each row of data
  std::size_t filled = 0;
  bool isMoney = false;
};

/// Columns in which nearly all filled cells are amounts, one of them at least with a mark, a sign
/// or a currency: whole numbers alone may be anything.
std::vector<AmountColumn> amountColumns(const Layout& layout) {
  std::vector<AmountColumn> columns;
  const auto& dates = layout.dateColumns();
  for (std::size_t column = 0; column < layout.columns(); ++column) {
    if (std::find(dates.begin(), dates.end(), column) != dates.end()) continue;
    AmountColumn amounts{.column = column, .shapes = {}};
    std::size_t fitting = 0;
    for (const Row* row : layout.data()) {
      const std::string_view text = trimmed(Layout::cell(*row, column));
      auto shape = amountShapeOf(text);
      amounts.filled += text.empty() ? 0 : 1;
      fitting += shape ? 1 : 0;
      if (shape)
        amounts.isMoney = amounts.isMoney || shape->hasMark || shape->hasCurrency ||
                          shape->sign != AmountSign::None;
      amounts.shapes.push_back(std::move(shape));
    }
    if (amounts.isMoney && 10 * fitting >= 9 * amounts.filled)
      columns.push_back(std::move(amounts));
  }
  return columns;
}

Finding decimalMarkFinding(const Layout& layout, const std::vector<AmountColumn>& columns) {
  Finding finding{"decimal mark", "", "no amount shows one", 0};
  std::array<Finding, 2> deciders;
  bool isOpen = false;
  for (const AmountColumn& amounts : columns) {
    for (std::size_t at = 0; at < amounts.shapes.size(); ++at) {
      const auto& shape = amounts.shapes[at];
      if (!shape || !shape->hasMark) continue;
      const Row& row = *layout.data()[at];
      isOpen = isOpen || shape->marks == kBothMarks;
      if (shape->marks == kBothMarks) continue;
      Finding& decider = deciders.at(shape->marks == kPointMark ? 0 : 1);
      if (decider.line == 0)
        decider = {"decimal mark", shape->marks == kPointMark ? "point" : "comma",
                   quotedForMessage(Layout::cell(row, amounts.column)) + " in " +
                       columnName(amounts.column),
                   row.line};
    }
  }
  if (deciders[0].line != 0 && deciders[1].line != 0) {
    finding.reason = deciders[0].reason + " and " + deciders[1].reason + " contradict each other";
    return finding;
  }
  if (deciders[0].line != 0) return deciders[0];
  if (deciders[1].line != 0) return deciders[1];
  if (isOpen) finding.reason = "every mark may part thousands or a fraction";
  return finding;
}

/// Whether a column is the balance behind the amounts of another: neighbours differ by an amount.
bool isBalanceOf(const AmountColumn& balance, const AmountColumn& amounts, DecimalMarks mark) {
  std::size_t fitting = 0;
  std::size_t pairs = 0;
  const auto signedValue = [mark](const AmountShape& shape) {
    const bool isOut = shape.sign != AmountSign::None && shape.sign != AmountSign::Plus;
    return (isOut ? -1 : 1) * shape.hundredths(mark);
  };
  for (std::size_t at = 1; at < balance.shapes.size(); ++at) {
    const auto& here = balance.shapes[at];
    const auto& before = balance.shapes[at - 1];
    if (!here || !before) continue;
    const double step = std::abs(signedValue(*here) - signedValue(*before));
    for (const std::size_t row : {at, at - 1}) {
      if (!amounts.shapes[row] || std::abs(amounts.shapes[row]->hundredths(mark) - step) > 0.5)
        continue;
      ++fitting;
      break;
    }
    ++pairs;
  }
  return pairs >= 2 && 10 * fitting >= 9 * pairs;
}

void dropBalances(std::vector<AmountColumn>& columns, DecimalMarks mark) {
  std::vector<AmountColumn> kept;
  for (const AmountColumn& column : columns) {
    const bool isBalance =
        std::any_of(columns.begin(), columns.end(), [&](const AmountColumn& other) {
          return other.column != column.column && isBalanceOf(column, other, mark);
        });
    if (!isBalance) kept.push_back(column);
  }
  columns = std::move(kept);
}

const char* nameOfSign(AmountSign sign) {
  switch (sign) {
    case AmountSign::Minus:
      return "minus";
    case AmountSign::TrailingMinus:
      return "trailing minus";
    default:
      return "brackets";
  }
}

/// The signs below zero of a column, each with the first row that has it.
std::map<AmountSign, std::size_t> negativesOf(const AmountColumn& amounts) {
  std::map<AmountSign, std::size_t> negatives;
  for (std::size_t at = 0; at < amounts.shapes.size(); ++at) {
    const auto& shape = amounts.shapes[at];
    if (shape && shape->sign != AmountSign::None && shape->sign != AmountSign::Plus)
      negatives.emplace(shape->sign, at);
  }
  return negatives;
}

/// Whether of two columns each row fills one, and both are filled somewhere.
bool areExclusive(const AmountColumn& left, const AmountColumn& right) {
  const auto isFilled = [](const std::optional<AmountShape>& shape) {
    return shape && !shape->isZero();
  };
  std::size_t lefts = 0;
  std::size_t rights = 0;
  for (std::size_t at = 0; at < left.shapes.size(); ++at) {
    const bool isLeft = isFilled(left.shapes[at]);
    if (isLeft == isFilled(right.shapes[at])) return false;
    (isLeft ? lefts : rights) += 1;
  }
  return lefts > 0 && rights > 0;
}

Finding columnsFinding(const Layout& layout, const std::vector<AmountColumn>& columns) {
  Finding finding{"sign", "", "no amount is below zero, and no two columns share the rows", 0};
  std::size_t pairs = 0;
  for (const AmountColumn& left : columns) {
    for (const AmountColumn& right : columns) {
      if (right.column <= left.column || !areExclusive(left, right)) continue;
      ++pairs;
      finding.answer =
          "columns " + std::to_string(left.column + 1) + " and " + std::to_string(right.column + 1);
      finding.reason = "each row fills one of them";
      finding.line = layout.data().front()->line;
    }
  }
  if (pairs <= 1) return finding;
  return {"sign", "", "several pairs of columns share the rows", 0};
}

Finding signFinding(const Layout& layout, std::vector<AmountColumn> columns,
                    const std::string& decimalMark) {
  if (columns.empty()) return {"sign", "", "no column holds amounts", 0};
  dropBalances(columns, decimalMark == "comma" ? kCommaMark : kPointMark);
  std::map<AmountSign, Finding> found;
  std::size_t signedColumns = 0;
  std::size_t fullColumns = 0;
  for (const AmountColumn& amounts : columns) {
    const auto negatives = negativesOf(amounts);
    signedColumns += negatives.empty() ? 0 : 1;
    fullColumns += negatives.empty() && amounts.filled == amounts.shapes.size() ? 1 : 0;
    for (const auto& [sign, at] : negatives) {
      const Row& row = *layout.data()[at];
      found.emplace(sign, Finding{"sign", nameOfSign(sign),
                                  quotedForMessage(Layout::cell(row, amounts.column)) + " in " +
                                      columnName(amounts.column),
                                  row.line});
    }
  }
  if (found.empty()) return columnsFinding(layout, columns);
  if (found.size() > 1) return {"sign", "", "amounts below zero are written in several ways", 0};
  // A column without signs beside one with them may hold the amounts, and the other a balance.
  if (signedColumns > 1 || fullColumns > 0)
    return {"sign", "",
            signedColumns > 1 ? "several columns hold amounts below zero"
                              : "one column holds amounts below zero and another does not",
            found.begin()->second.line};
  return found.begin()->second;
}

}  // namespace

std::vector<Finding> inferTable(std::string_view bytes,
                                const std::shared_ptr<NSCalendar>& calendar) {
  Decoding decoding = decodingOf(bytes);
  std::vector<Layout> layouts;
  layouts.reserve(kSeparators.size());
  for (const Separator& separator : kSeparators) layouts.emplace_back(decoding.text, separator);
  const std::vector<const Layout*> favoured = favouredLayouts(layouts);
  std::vector<Finding> findings{separatorFinding(favoured)};
  if (favoured.size() == 1) {
    const Layout& layout = *favoured.front();
    const std::vector<AmountColumn> amounts = amountColumns(layout);
    findings.push_back(headerFinding(layout));
    findings.push_back(dateOrderFinding(layout, calendar));
    findings.push_back(decimalMarkFinding(layout, amounts));
    findings.push_back(signFinding(layout, amounts, findings.back().answer));
  } else {
    for (const char* question : {"header", "date order", "decimal mark", "sign"})
      findings.push_back({question, "", "the separator has to be known first", 0});
  }
  findings.push_back(std::move(decoding.finding));
  return findings;
}

}  // namespace orlftool
