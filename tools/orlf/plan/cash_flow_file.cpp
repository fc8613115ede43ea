#include "plan/cash_flow_file.h"

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>

#include "cli/message_text.h"
#include "io/csv_records.h"
#include "values/date_text.h"
#include "values/decimal_text.h"

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

/// Turns records into flows.
class CashFlowReader {
 public:
  CashFlowReader(const std::string& name, const NSCalendar& calendar)
      : name_(name), calendar_(calendar) {}

  std::vector<CashFlow> read(std::string_view text) {
    CsvReader reader(text, [this](const CsvFault& fault) {
      failAtField(name_, fault.line, fieldName(fault.field), fault.expected, fault.got);
    });
    CsvRecord record;
    while (reader.next(record)) {
      if (record.size() != kFields.size())
        failAtField(name_, record.front().line, "", kRecordForm, std::to_string(record.size()));
      if (isFirst_ && isHeader(record)) {
        isFirst_ = false;
        continue;
      }
      isFirst_ = false;
      flows_.push_back(flowOf(record));
    }
    return std::move(flows_);
  }

 private:
  [[nodiscard]] static bool isHeader(const CsvRecord& record) {
    const std::string& date = record[0].text;
    return !date.empty() && !isDigit(date.front()) && !readGroupedDecimal(record[1].text);
  }

  [[nodiscard]] CashFlow flowOf(const CsvRecord& record) const {
    const std::optional<NSDate> date = readDate(record[0].text, calendar_);
    if (!date) fail(record, 0, kDateForms);
    const std::optional<NSDecimalNumber> amount = readGroupedDecimal(record[1].text);
    if (!amount) fail(record, 1, kDecimalForm);
    return {*date, *amount};
  }

  [[noreturn]] void fail(const CsvRecord& record, std::size_t field,
                         std::string_view expected) const {
    failAtField(name_, record[field].line, fieldName(field), expected,
                quotedForMessage(record[field].text));
  }

  const std::string& name_;
  const NSCalendar& calendar_;
  std::vector<CashFlow> flows_;
  bool isFirst_ = true;
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
