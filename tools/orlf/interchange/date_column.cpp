#include "interchange/date_column.h"

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/object/NSSet.h>

#include <algorithm>
#include <functional>
#include <utility>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// By the numbers of the library's orders, which begin at 1.
constexpr std::array<std::string_view, 6> kOrderNames{"dmy", "mdy", "ymd", "ydm", "myd", "dym"};
constexpr std::size_t kFavoured = 3;

/// Where day, month and year stand in each order.
struct Places {
  std::size_t day, month, year;
};
constexpr std::array<Places, 6> kPlaces{
    {{0, 1, 2}, {1, 0, 2}, {2, 1, 0}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}}};

std::size_t indexOf(NSInteger order) { return static_cast<std::size_t>(order - 1); }

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

std::string placeOf(std::string_view text, std::uint64_t line) {
  return "line " + std::to_string(line) + ", " + quotedForMessage(text);
}

}  // namespace

DateColumn::DateColumn(const std::string& format, bool allOrders,
                       std::shared_ptr<NSCalendar> calendar, const std::string& locale)
    : calendar_(std::move(calendar)), allOrders_(allOrders), isAuto_(format == "auto") {
  engine_.setDateParsingCalendar(calendar_);
  NSMutableSet orders;
  for (std::size_t order = 0; order < (allOrders ? kOrderNames.size() : kFavoured); ++order)
    orders.addObject(order + 1);
  engine_.setPerferedDateFormats(std::make_shared<NSSet>(orders.allObjects()));
  if (isAuto_) return;
  const auto named = std::find(kOrderNames.begin(), kOrderNames.end(), format);
  if (named != kOrderNames.end()) {
    order_ = named - kOrderNames.begin() + 1;
  } else if (isPattern(format)) {
    pattern_ = formatterOf(format, *calendar_, locale);
  } else {
    throw UsageFailure("--date-format: expected " + std::string(kDateFormatNames) + ", got " +
                       quotedForMessage(format));
  }
}

DateColumn::~DateColumn() = default;

std::vector<NSInteger> DateColumn::ordersLeft() const {
  std::vector<NSInteger> orders = engine_.possibleDateFormats();
  // Where no favoured order is left the engine names the others.
  const bool areMeant = allOrders_ || orders.empty() || indexOf(orders.front()) < kFavoured;
  return areMeant ? orders : std::vector<NSInteger>();
}

void DateColumn::add(std::string_view text, std::uint64_t line) {
  if (!isAuto_ || !engine_.processDateString(text)) return;
  for (std::size_t order = 0; order < kOrders; ++order)
    extend(readings_[order], dateUnder(static_cast<NSInteger>(order + 1), text));
  const std::size_t left = ordersLeft().size();
  if (left == 1 && deciding_.empty()) deciding_ = placeOf(text, line);
  if (left == 0 && contradicting_.empty()) contradicting_ = placeOf(text, line);
}

void DateColumn::extend(Reading& reading, const std::optional<NSDate>& date) {
  constexpr std::uint64_t kFactor = 1099511628211U;
  const std::uint64_t hash = date ? date->hash() + 1 : 0;
  reading.fingerprint = (reading.fingerprint ^ hash) * kFactor;
  if (!date) return;
  const auto isEarlier = [](NSDate left, NSDate right) {
    return left.compare(right) == NSOrderedAscending;
  };
  if (!reading.earliest || isEarlier(*date, *reading.earliest)) reading.earliest = date;
  if (!reading.latest || isEarlier(*reading.latest, *date)) reading.latest = date;
  if (reading.last) {
    reading.rises = reading.rises || isEarlier(*reading.last, *date);
    reading.falls = reading.falls || isEarlier(*date, *reading.last);
  }
  reading.last = date;
}

std::string DateColumn::describe(NSInteger order) const {
  const Reading& reading = readings_[indexOf(order)];
  std::string text(kOrderNames[indexOf(order)]);
  if (!reading.earliest) return text + ": no day of the calendar";
  text += ": " + shortDateText(*reading.earliest, *calendar_) + " to " +
          shortDateText(*reading.latest, *calendar_);
  if (reading.rises && reading.falls) return text + ", in no order";
  if (reading.rises) return text + ", ascending";
  return text + (reading.falls ? ", descending" : ", one day");
}

DateColumn::Finding DateColumn::settle() {
  Finding finding;
  if (!isAuto_) return finding;
  const std::vector<NSInteger> orders = ordersLeft();
  if (orders.empty() || !contradicting_.empty()) {
    finding.fault = "no order of day, month and year fits all dates: " + contradicting_ +
                    ", fits none that those before it leave; --date-format tells the order";
    return finding;
  }
  order_ = orders.front();
  const bool areAlike = std::all_of(orders.begin(), orders.end(), [this](NSInteger order) {
    return readings_[indexOf(order)].fingerprint == readings_[indexOf(order_)].fingerprint;
  });
  if (areAlike) {
    if (orders.size() == 1 && !deciding_.empty())
      finding.notes.push_back("dates are read as " + std::string(kOrderNames[indexOf(order_)]) +
                              ": " + deciding_ + ", decided");
    return finding;
  }
  std::string names;
  for (const NSInteger order : orders) {
    finding.notes.push_back(describe(order));
    names += (names.empty() ? "" : " or ") + std::string(kOrderNames[indexOf(order)]);
  }
  finding.fault = "the dates fit more than one order: --date-format " + names + " tells which";
  return finding;
}

std::optional<NSDate> DateColumn::dateUnder(NSInteger order, std::string_view text) {
  std::array<NSUInteger, 3> numbers{};
  if (!engine_.parseDate(text, &numbers[0], &numbers[1], &numbers[2])) return std::nullopt;
  const std::optional<NSDate> date =
      engine_.buildDateWithComponentsNumber1(numbers[0], numbers[1], numbers[2], order);
  if (!date) return std::nullopt;
  // The calendar rolls 31 February over into March.
  const Places& places = kPlaces[indexOf(order)];
  const NSDateComponents day =
      calendar_->components(NSCalendarUnitMonth | NSCalendarUnitDay, *date);
  const bool isReal = static_cast<NSUInteger>(day.day()) == numbers[places.day] &&
                      static_cast<NSUInteger>(day.month()) == numbers[places.month];
  return isReal ? date : std::nullopt;
}

std::optional<NSDate> DateColumn::read(std::string_view text) {
  if (!pattern_) return dateUnder(order_, text);
  return pattern_->dateFromString(text);
}

}  // namespace orlftool
