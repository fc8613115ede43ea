
#include <ORLFoundation/recurrence/ORLFDateRecurrenceDayOfWeek.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceKeys.h>

#include <iterator>

namespace ORLFoundation {

using namespace internal::recurrence;

namespace {

/// From -3 on.
constexpr std::string_view kWeekdayNames[] = {"weekend day", "weekday", "day",     "unknown",
                                              "Sunday",      "Monday",  "Tuesday", "Wednesday",
                                              "Thursday",    "Friday",  "Saturday"};
constexpr NSInteger kFirstWeekdayName = -3;

/// From -1 on.
constexpr std::string_view kWeekNumberNames[] = {"last",  "every",  "first", "second",
                                                 "third", "fourth", "fifth"};
constexpr NSInteger kFirstWeekNumberName = -1;

template <std::size_t Count>
std::string_view nameAt(const std::string_view (&names)[Count], NSInteger first, NSInteger value,
                        std::string_view fallback) noexcept {
  if (value < first || value >= first + static_cast<NSInteger>(Count)) return fallback;
  return names[value - first];
}

}  // namespace

ORLFDateRecurrenceDayOfWeek::ORLFDateRecurrenceDayOfWeek(NSInteger dayOfTheWeek,
                                                         NSInteger weekNumber)
    : dayOfTheWeek_(dayOfTheWeek), weekNumber_(weekNumber) {}

std::shared_ptr<ORLFDateRecurrenceDayOfWeek> ORLFDateRecurrenceDayOfWeek::dayOfWeek(
    NSInteger dayOfTheWeek) {
  return std::make_shared<ORLFDateRecurrenceDayOfWeek>(dayOfTheWeek);
}

std::string_view ORLFDateRecurrenceDayOfWeek::nameForWeekday(NSInteger weekday) noexcept {
  return nameAt(kWeekdayNames, kFirstWeekdayName, weekday, "unknown");
}

std::string_view ORLFDateRecurrenceDayOfWeek::stringForWeekNumber(NSInteger weekNumber) noexcept {
  return nameAt(kWeekNumberNames, kFirstWeekNumberName, weekNumber, "every");
}

const NSKeyTable& ORLFDateRecurrenceDayOfWeek::keyTable() const {
  using Entry = ORLFDateRecurrenceDayOfWeek;
  static const NSKeyTable table(NSObject::keyTable(),
                                {NSKey::readOnly<&Entry::dayOfTheWeek>(kDayOfTheWeekKey),
                                 NSKey::readOnly<&Entry::weekNumber>(kWeekNumberKey)});
  return table;
}

std::string ORLFDateRecurrenceDayOfWeek::className() const { return "ORLFDateRecurrenceDayOfWeek"; }

bool ORLFDateRecurrenceDayOfWeek::isEqual(const NSObject* other) const {
  const auto* entry = dynamic_cast<const ORLFDateRecurrenceDayOfWeek*>(other);
  return entry && entry->dayOfTheWeek_ == dayOfTheWeek_ && entry->weekNumber_ == weekNumber_;
}

NSUInteger ORLFDateRecurrenceDayOfWeek::hash() const {
  return static_cast<NSUInteger>(dayOfTheWeek_) + static_cast<NSUInteger>(weekNumber_);
}

std::shared_ptr<NSObject> ORLFDateRecurrenceDayOfWeek::copy() {
  return receiverOr([this] {
    auto copy = newObjectAs<ORLFDateRecurrenceDayOfWeek>();
    copy->dayOfTheWeek_ = dayOfTheWeek_;
    copy->weekNumber_ = weekNumber_;
    return copy;
  });
}

std::shared_ptr<NSObject> ORLFDateRecurrenceDayOfWeek::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFDateRecurrenceDayOfWeek>(dayOfTheWeek_);
}

}  // namespace ORLFoundation
