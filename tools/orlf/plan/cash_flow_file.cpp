#include "plan/cash_flow_file.h"

#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>
#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>
#include <utility>

#include "cli/message_text.h"
#include "values/date_text.h"
#include "values/decimal_text.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using internal::base::isDigit;

constexpr std::array<std::string_view, 2> kFields{"date", "amount"};
constexpr std::string_view kRecordForm = "2 fields, a date and an amount";

std::string fieldName(std::size_t number) {
  return number < kFields.size() ? std::string(kFields[number])
                                 : "field " + std::to_string(number + 1);
}

/// Whether commas part the whole digits in threes: "1,100", "-12,345,678.5".
bool hasGroupsOfThree(std::string_view text) {
  if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
  text = text.substr(0, text.find('.'));
  const std::size_t lead = text.find(',');
  if (lead < 1 || lead > 3) return false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool atComma = at >= lead && (at - lead) % 4 == 0;
    if (atComma ? text[at] != ',' : !isDigit(text[at])) return false;
  }
  return (text.size() - lead) % 4 == 0;
}

/// Turns rows into flows.
class CashFlowReader {
 public:
  CashFlowReader(const std::string& name, const NSCalendar& calendar)
      : name_(name), calendar_(calendar) {}

  std::vector<CashFlow> read(std::string_view text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    orlfEnumerateTabularRows(text, ',', [this](const ORLFTabularRow& row, bool&) { take(row); });
    return std::move(flows_);
  }

 private:
  void take(const ORLFTabularRow& row) {
    fields_.clear();
    for (const std::string_view field : row.fields) fields_.emplace_back(trimmed(field, " \t"));
    if (fields_ == std::vector<std::string>{""}) return;
    line_ = row.lineNumber;
    if (row.endsInMarks)
      failAtField(name_, line_, fieldName(fields_.size() - 1), "a closing quote",
                  "the end of the file");
    if (fields_.size() != kFields.size())
      failAtField(name_, line_, "", kRecordForm, std::to_string(fields_.size()));
    if (!std::exchange(isFirst_, false) || !isHeader()) flows_.push_back(flow());
  }

  [[nodiscard]] bool isHeader() const {
    const std::string& date = fields_[0];
    return !date.empty() && !isDigit(date.front()) && !readGroupedDecimal(fields_[1]);
  }

  [[nodiscard]] CashFlow flow() const {
    const std::optional<NSDate> date = readDate(fields_[0], calendar_);
    if (!date) fail(0, kDateForms);
    const std::optional<NSDecimalNumber> amount = readGroupedDecimal(fields_[1]);
    if (!amount) fail(1, kDecimalForm);
    return {*date, *amount};
  }

  [[noreturn]] void fail(std::size_t field, std::string_view expected) const {
    failAtField(name_, line_, fieldName(field), expected, quotedForMessage(fields_[field]));
  }

  const std::string& name_;
  const NSCalendar& calendar_;
  std::vector<CashFlow> flows_;
  bool isFirst_ = true;
  // Of the row that is being read.
  std::vector<std::string> fields_;
  std::size_t line_ = 0;
};

}  // namespace

std::optional<NSDecimalNumber> readGroupedDecimal(std::string_view text) {
  if (!hasGroupsOfThree(text)) return readDecimal(text);
  std::string plain(text);
  const std::size_t point = plain.find('.');
  const auto wholeEnd =
      point == std::string::npos ? plain.end() : plain.begin() + static_cast<std::ptrdiff_t>(point);
  plain.erase(std::remove(plain.begin(), wholeEnd, ','), wholeEnd);
  return readDecimal(plain);
}

std::vector<CashFlow> parseCashFlows(std::string_view text, const std::string& name,
                                     const NSCalendar& calendar) {
  return CashFlowReader(name, calendar).read(text);
}

}  // namespace orlftool
