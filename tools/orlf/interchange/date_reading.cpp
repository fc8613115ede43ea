#include "interchange/date_reading.h"

#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSLocale.h>

#include <algorithm>
#include <utility>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr DateOrder kLastUsualOrder = 3;

bool isPattern(std::string_view format) {
  const auto has = [format](std::string_view letters) {
    return format.find_first_of(letters) != format.npos;
  };
  return has("yu") && has("ML") && has("d");
}

std::shared_ptr<NSDateFormatter> formatterOf(const std::string& pattern, const NSCalendar& calendar,
                                             const std::string& locale) {
  auto formatter = std::make_shared<NSDateFormatter>();
  formatter->setLocale(std::make_shared<NSLocale>(locale));
  formatter->setCalendar(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian));
  formatter->setTimeZone(calendar.timeZone());
  formatter->setDateFormat(pattern);
  return formatter;
}

}  // namespace

DateReading::DateReading(const std::string& format, bool allOrders,
                         std::shared_ptr<NSCalendar> calendar, const std::string& locale)
    : calendar_(std::move(calendar)),
      allOrders_(allOrders),
      isAuto_(format == "auto"),
      column_(calendar_,
              allOrders ? std::vector<DateOrder>(kDateOrders.begin(), kDateOrders.end())
                        : std::vector<DateOrder>(),
              std::nullopt) {
  if (isAuto_) return;
  if (const std::optional<DateOrder> order = dateOrderNamed(format)) {
    order_ = *order;
  } else if (isPattern(format)) {
    pattern_ = formatterOf(format, *calendar_, locale);
  } else {
    throw UsageFailure("--date-format: expected " + std::string(kDateFormatNames) + ", got " +
                       quotedForMessage(format));
  }
}

DateReading::~DateReading() = default;

bool DateReading::isMeant(DateOrder order) const { return allOrders_ || order <= kLastUsualOrder; }

const DateReading::Course& DateReading::courseOf(DateOrder order) const {
  return courses_.at(static_cast<std::size_t>(order - 1));
}

void DateReading::add(std::string_view text, std::uint64_t line) {
  if (!isAuto_) return;
  std::array<std::optional<NSDate>, kDateOrders.size()> dates;
  std::transform(kDateOrders.begin(), kDateOrders.end(), dates.begin(),
                 [&](DateOrder order) { return column_.read(text, order).date; });
  // What no order reads is a bad row, and says nothing of the others.
  const auto isDate = [](const std::optional<NSDate>& date) { return date.has_value(); };
  if (std::none_of(dates.begin(), dates.end(), isDate) || !column_.add(text, line)) return;
  for (std::size_t at = 0; at < dates.size(); ++at)
    if (isMeant(kDateOrders.at(at))) extend(courses_.at(at), dates.at(at));
}

void DateReading::extend(Course& course, const std::optional<NSDate>& date) {
  constexpr std::uint64_t kFactor = 1099511628211U;
  course.fingerprint = (course.fingerprint ^ (date ? date->hash() + 1 : 0)) * kFactor;
  if (!date) return;
  if (!course.earliest || orlfIsBefore(*date, *course.earliest)) course.earliest = date;
  if (!course.latest || orlfIsBefore(*course.latest, *date)) course.latest = date;
  if (course.last) {
    course.rises = course.rises || orlfIsBefore(*course.last, *date);
    course.falls = course.falls || orlfIsBefore(*date, *course.last);
  }
  course.last = date;
}

std::string DateReading::describe(DateOrder order) const {
  const Course& course = courseOf(order);
  const std::string word(wordOfDateOrder(order));
  if (!course.earliest) return word + ": no day of the calendar";
  const std::string span = word + ": " + shortDateText(*course.earliest, *calendar_) + " to " +
                           shortDateText(*course.latest, *calendar_);
  if (course.rises && course.falls) return span + ", in no order";
  if (course.rises) return span + ", ascending";
  return span + (course.falls ? ", descending" : ", one day");
}

/// The row that excluded the last of the other orders that were meant.
std::string DateReading::decidingRow(DateOrder order) const {
  const ColumnText* deciding = nullptr;
  for (const DateOrder other : kDateOrders) {
    if (other == order || !isMeant(other)) continue;
    const std::optional<ColumnText>& by = column_.excludedBy(other);
    if (by && (deciding == nullptr || by->line > deciding->line)) deciding = &*by;
  }
  if (deciding == nullptr) return {};
  return "line " + std::to_string(deciding->line) + ", " + quotedForMessage(deciding->text);
}

DateReading::Finding DateReading::settle() {
  Finding finding;
  if (!isAuto_ || column_.dateCount() == 0) return finding;
  std::vector<DateOrder> orders = column_.orders();
  std::erase_if(orders, [this](DateOrder order) { return !isMeant(order); });
  if (orders.empty()) {
    finding.fault =
        "no usual order of day, month and year fits all dates, the last of them up to " +
        decidingRow(0) + ": --date-format tells one, --orders takes others into account";
    return finding;
  }
  order_ = orders.front();
  const bool areAlike = std::all_of(orders.begin(), orders.end(), [this](DateOrder order) {
    return courseOf(order).fingerprint == courseOf(order_).fingerprint;
  });
  if (areAlike) {
    const std::string row = decidingRow(order_);
    if (orders.size() == 1 && !row.empty())
      finding.notes.push_back("dates are read as " + std::string(wordOfDateOrder(order_)) + ": " +
                              row + ", decides");
    return finding;
  }
  std::string words;
  for (const DateOrder order : orders) {
    finding.notes.push_back(describe(order));
    words += (words.empty() ? "" : " or ") + std::string(wordOfDateOrder(order));
  }
  finding.fault = "the dates fit more than one order: --date-format " + words + " tells which";
  return finding;
}

std::optional<NSDate> DateReading::read(std::string_view text) {
  if (pattern_) return pattern_->dateFromString(text);
  return order_ == 0 ? std::nullopt : column_.read(text, order_).date;
}

}  // namespace orlftool
