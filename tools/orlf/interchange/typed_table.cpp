#include "interchange/typed_table.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <limits>
#include <ostream>
#include <utility>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "interchange/csv_rows.h"
#include "io/text_input.h"
#include "values/trimmed.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::string_view kDateForm = "a date of the column's format";
constexpr int kMostDigits = 15;

DecimalMark markNamed(const std::string& name) {
  if (name == "point") return DecimalMark::Point;
  if (name == "comma") return DecimalMark::Comma;
  throw UsageFailure("--decimal: expected point or comma, got " + quotedForMessage(name));
}

/// The file is read twice, which a pipe does not stand.
void requirePlainFile(const std::string& path) {
  if (path == "-") throw JobFailure("standard input: expected a file that can be read twice");
  struct stat status {};
  if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode))
    throw JobFailure(path + ": expected a file that can be read twice");
}

/// The length of a line end or another control character at the front of a text, 0 for none.
std::size_t lengthOfControl(std::string_view text) {
  constexpr std::array<std::string_view, 3> kLineEnds{"\u0085", "\u2028", "\u2029"};
  constexpr unsigned char kFirstPrinted = 0x20, kDelete = 0x7F;
  const auto first = static_cast<unsigned char>(text.front());
  if (text.starts_with("\r\n")) return 2;
  if (first < kFirstPrinted || first == kDelete) return 1;
  for (const std::string_view end : kLineEnds)
    if (text.starts_with(end)) return end.size();
  return 0;
}

/// The writers' formatters keep 15 digits.
bool isTooLong(const NSDecimalNumber& number) {
  NSDecimal::Mantissa limit = 1;
  for (int digit = 0; digit < kMostDigits; ++digit) limit *= 10;
  return number.decimalValue().compacted().mantissa() >= limit;
}

}  // namespace

std::string inOneLine(std::string_view text) {
  std::string line;
  while (!text.empty()) {
    const std::size_t control = lengthOfControl(text);
    line += control == 0 ? text.front() : ' ';
    text.remove_prefix(std::max<std::size_t>(control, 1));
  }
  return std::string(trimmed(line));
}

void declareTableOptions(Options& options, TableRequest& request) {
  options.required("FILE", request.file, "The table, separated text");
  options.text("--map", request.map,
               "Columns of fields, by number or heading: date=1,payee=Description");
  options.text("--date-format", request.dateFormat, std::string(kDateFormatNames));
  options.flag("--orders", request.allOrders, "Let auto take ydm, myd and dym into account, too");
  options.text("--decimal", request.decimal,
               "The decimal mark, point or comma; the amounts tell it where it is not given");
  options.text("--separator", request.separator, std::string(kSeparatorNames));
  options.text("--encoding", request.encoding, std::string(kEncodingNames));
  options.text("--skip-lines", request.skipLines, "Lines to pass over at the beginning");
  options.flag("--skip-bad", request.skipBad, "Name rows that cannot be read, and go on");
}

std::string TypedRow::text(std::size_t field) const {
  return inOneLine(table_.map_.text(field, fields_));
}

std::optional<std::string> TypedRow::textIfAny(std::size_t field) const {
  std::string value = text(field);
  return value.empty() ? std::nullopt : std::optional(std::move(value));
}

bool TypedRow::isEmpty(std::size_t field, const std::string& text,
                       std::string_view expected) const {
  if (text.empty() && table_.rules_[field].isRequired) refuse(field, expected);
  return text.empty();
}

std::optional<NSDate> TypedRow::date(std::size_t field) const {
  const std::string value = text(field);
  if (isEmpty(field, value, kDateForm)) return std::nullopt;
  const std::optional<NSDate> date = table_.dates_.read(value);
  if (!date) refuse(field, kDateForm);
  return date;
}

std::optional<NSDecimalNumber> TypedRow::number(std::size_t field) const {
  const std::string value = text(field);
  if (isEmpty(field, value, kColumnNumberForm)) return std::nullopt;
  const std::optional<NSDecimalNumber> number = readColumnNumber(value, table_.mark_);
  if (!number) refuse(field, kColumnNumberForm);
  if (isTooLong(*number)) refuse(field, "an amount of at most 15 digits");
  return number;
}

void TypedRow::leaveOut(std::size_t field, std::string_view record) const {
  if (text(field).empty()) return;
  TypedTable::LeftOut& leftOut = table_.leftOut_[{table_.rules_[field].name, std::string(record)}];
  if (leftOut.rows++ == 0) leftOut.line = line_;
}

void TypedRow::refuse(std::size_t field, std::string_view expected) const {
  throw BadRow{std::string(table_.rules_[field].name), std::string(expected),
               quotedForMessage(text(field))};
}

TypedTable::TypedTable(Session& session, const TableRequest& request,
                       std::span<const FieldRule> rules)
    : session_(session),
      request_(request),
      rules_(rules),
      map_(rules, request.map),
      dates_(request.dateFormat, request.allOrders, session.calendar, session.options.locale) {
  constexpr std::int64_t kMostLines = std::numeric_limits<std::int64_t>::max();
  skipLines_ = static_cast<std::uint64_t>(
      readWholeArgument("--skip-lines", request.skipLines, 0, kMostLines));
  if (request.decimal) mark_ = markNamed(*request.decimal);
  requirePlainFile(request.file);
}

void TypedTable::readRows(const std::function<void(const TypedRow& row)>& block) {
  TextInput input(request_.file, readEncodingOption(request_.encoding));
  readTable(
      input, readSeparatorOption(request_.separator),
      [&](const ORLFTabularRow& row, bool&) {
        if (row.endsInMarks && row.lineNumber != headingLine_)
          throw JobFailure(request_.file + ":" + std::to_string(row.lineNumber) +
                           ": expected a closing quotation mark, got the end of the file");
        block(TypedRow(*this, row.fields, row.lineNumber));
      },
      skipLines_);
}

bool TypedTable::isHeading(const TypedRow& row) const {
  bool isTyped = false;
  for (std::size_t field = 0; field < rules_.size(); ++field) {
    if (rules_[field].type == FieldType::Text || !map_.has(field)) continue;
    isTyped = true;
    if (row.text(field).find_first_of("0123456789") != std::string::npos) return false;
  }
  return isTyped;
}

void TypedTable::judge() {
  bool isFirst = true;
  bool hasData = false;
  readRows([&](const TypedRow& row) {
    if (std::exchange(isFirst, false)) {
      if (map_.needsHeadings()) map_.takeHeadings(row.fields_, request_.file);
      if (map_.needsHeadings() || isHeading(row)) {
        headingLine_ = row.line();
        return;
      }
    }
    hasData = true;
    for (std::size_t field = 0; field < rules_.size(); ++field) {
      const std::string text = rules_[field].type == FieldType::Text ? "" : row.text(field);
      if (text.empty()) continue;
      if (rules_[field].type == FieldType::Date) dates_.add(text, row.line());
      if (rules_[field].type != FieldType::Number) continue;
      if (const auto amount = AmountText::parse(text)) marks_.add(*amount, text, row.line());
    }
  });
  if (isFirst) throw JobFailure(request_.file + ": expected rows, got none");
  if (!hasData) throw JobFailure(request_.file + ": expected rows, got headings alone");
  settle();
}

void TypedTable::settle() {
  const DateReading::Finding dates = dates_.settle();
  for (const std::string& note : dates.notes) printNote(session_, note);
  if (!dates.fault.empty()) throw JobFailure(request_.file + ": " + dates.fault);
  if (request_.decimal) return;
  const ColumnMark found = columnMark(marks_, request_.file);
  mark_ = found.mark;
  if (mark_ == DecimalMark::Comma)
    printNote(session_, "the decimal mark is a comma: " + found.reason + ", decides");
}

TypedTable::Counts TypedTable::forEach(const std::function<void(const TypedRow& row)>& block) {
  Counts counts;
  readRows([&](const TypedRow& row) {
    if (row.line() == headingLine_) return;
    try {
      block(row);
      ++counts.taken;
    } catch (const BadRow& bad) {
      const std::string fault = request_.file + ":" + std::to_string(row.line()) + ": " +
                                bad.field + ": expected " + bad.expected + ", got " + bad.got;
      if (!request_.skipBad) throw JobFailure(fault);
      printNote(session_, fault + "; the row is left out");
      ++counts.skipped;
    }
  });
  tellLeftOut();
  return counts;
}

void TypedTable::tellLeftOut() const {
  for (const auto& [what, where] : leftOut_) {
    const auto& [field, record] = what;
    std::string note = request_.file + ":" + std::to_string(where.line);
    if (where.rows > 1) note.append(" and in ").append(std::to_string(where.rows - 1) + " more");
    note.append(": ").append(field).append(" is left out: ").append(record);
    printNote(session_, note + " has no place for it");
  }
}

void printCounts(Session& session, const std::string& output, const TypedTable::Counts& counts) {
  if (session.options.json) {
    printJson(session.out,
              {{"file", output}, {"records", counts.taken}, {"skipped", counts.skipped}});
    return;
  }
  session.out << output << ": " << counts.taken << " records";
  if (counts.skipped != 0) session.out << ", " << counts.skipped << " rows left out";
  session.out << '\n';
}

}  // namespace orlftool
