#include "values/date_column.h"

#include <ORLFoundation/platform/object/NSSet.h>

#include <algorithm>
#include <utility>

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// The roles of the three places, by the order's number less one.
constexpr std::array<std::string_view, kDateOrders.size()> kWords{"dmy", "mdy", "ymd",
                                                                  "ydm", "myd", "dym"};

std::shared_ptr<NSSet> setOf(const std::vector<DateOrder>& orders) {
  if (orders.empty()) return nullptr;
  return std::make_shared<NSSet>(std::vector<id>(orders.begin(), orders.end()));
}

}  // namespace

std::string_view wordOfDateOrder(DateOrder order) {
  const bool isKnown = order >= 1 && static_cast<std::size_t>(order) <= kWords.size();
  return isKnown ? kWords.at(static_cast<std::size_t>(order - 1)) : std::string_view();
}

std::optional<DateOrder> dateOrderNamed(std::string_view word) {
  for (const DateOrder order : kDateOrders)
    if (wordOfDateOrder(order) == word) return order;
  return std::nullopt;
}

DateColumn::DateColumn(std::shared_ptr<NSCalendar> calendar, const std::vector<DateOrder>& favoured,
                       std::optional<std::uint64_t> currentYear) {
  engine_.setDateParsingCalendar(std::move(calendar));
  engine_.setPerferedDateFormats(setOf(favoured));
  engine_.setCurrentYear(currentYear.value_or(0));
}

bool DateColumn::add(std::string_view text, std::uint64_t line) {
  if (!engine_.processDateString(text)) return false;
  ++dateCount_;
  // With no favourite, what is possible is all that the roles leave.
  const std::shared_ptr<NSSet> favoured = engine_.perferedDateFormats();
  engine_.setPerferedDateFormats(std::make_shared<NSSet>());
  const std::vector<DateOrder> open = engine_.possibleDateFormats();
  engine_.setPerferedDateFormats(favoured);
  for (const DateOrder order : kDateOrders) {
    auto& excluded = excludedBy_.at(static_cast<std::size_t>(order - 1));
    if (!excluded && std::find(open.begin(), open.end(), order) == open.end())
      excluded = ColumnText{std::string(text), line};
  }
  return true;
}

/// Whether the calendar shows the day, the month and the full year that the text names.
bool DateColumn::isDayOf(NSDate date, std::string_view text, DateOrder order) const {
  std::array<NSUInteger, 3> numbers{};
  static_cast<void>(engine_.parseDate(text, &numbers[0], &numbers[1], &numbers[2]));
  const std::string_view word = wordOfDateOrder(order);
  const NSUInteger year = numbers.at(word.find('y'));
  const NSDateComponents fields = engine_.dateParsingCalendar()->components(
      NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay, date);
  return static_cast<NSUInteger>(fields.day()) == numbers.at(word.find('d')) &&
         static_cast<NSUInteger>(fields.month()) == numbers.at(word.find('m')) &&
         (year < 1000 || static_cast<NSUInteger>(fields.year()) == year);
}

ColumnDate DateColumn::read(std::string_view text, DateOrder order) {
  const std::optional<NSDate> date = engine_.dateFromString(text, order);
  if (!date || isDayOf(*date, text, order)) return {date, false};
  return {std::nullopt, true};
}

}  // namespace orlftool
