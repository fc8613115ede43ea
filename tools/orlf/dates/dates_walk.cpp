#include "dates/dates_walk.h"

#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/recurrence/ORLFCalendarRecurrence.h>

#include <vector>

#include "cli/failure.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr double kMostPeriods = 2e6;
constexpr int kMostDatesPassedOver = 2000000;

double secondsOfFrequency(ORLFDateRecurrenceFrequency frequency) {
  constexpr double kDay = internal::base::civil::kSecondsPerDay, kYear = 365.2425 * kDay;
  switch (frequency) {
    case ORLFDateRecurrenceFrequencyDaily:
      return kDay;
    case ORLFDateRecurrenceFrequencyWeekly:
      return 7 * kDay;
    case ORLFDateRecurrenceFrequencyMonthly:
      return kYear / 12;
    case ORLFDateRecurrenceFrequencyQuarterly:
      return kYear / 4;
    case ORLFDateRecurrenceFrequencyYearly:
      return kYear;
  }
  return kDay;
}

/// Walks cost a step for each period between the dates that they are asked about.
void refuseLongWalk(const DatesRequest& request) {
  NSDate first = request.start;
  NSDate last = request.start;
  const std::optional<NSDate> until =
      request.until ? std::optional(request.until->date) : std::nullopt;
  for (const auto& date : {request.from, request.to, request.reference, until}) {
    if (!date) continue;
    if (date->compare(first) == NSOrderedAscending) first = *date;
    if (date->compare(last) == NSOrderedDescending) last = *date;
  }
  const double period =
      secondsOfFrequency(request.rule->frequency()) * static_cast<double>(request.rule->interval());
  if (last.timeIntervalSinceDate(first) / period > kMostPeriods)
    throw JobFailure("the dates asked about lie more than 2000000 periods of the rule apart");
}

/// Hands dates on until the request has all that it asks for.
class DateTaker {
 public:
  DateTaker(const DatesRequest& request, const std::function<void(NSDate)>& give)
      : request_(request), give_(give) {}

  /// Whether another date is wanted after this one.
  bool take(NSDate date) {
    if (request_.until && isBeyond(date, *request_.until, request_.backwards)) return false;
    if (request_.ruleEnd && isBeyond(date, *request_.ruleEnd, false)) return request_.backwards;
    if (request_.eachOnce && last_ && date.compare(*last_) == NSOrderedSame) return true;
    give_(request_.wholeDays ? startOfDay(date, *request_.calendar) : date);
    last_ = date;
    ++taken_;
    return !request_.count || taken_ < *request_.count;
  }

 private:
  [[nodiscard]] static bool isBeyond(NSDate date, const DateBound& bound, bool backwards) {
    const NSComparisonResult order = date.compare(bound.date);
    if (order == NSOrderedSame) return !bound.inclusive;
    return order == (backwards ? NSOrderedAscending : NSOrderedDescending);
  }

  const DatesRequest& request_;
  const std::function<void(NSDate)>& give_;
  std::optional<NSDate> last_;
  std::int64_t taken_ = 0;
};

/// The callback of a walk: passes over dates on the far side of the start, and over all that come
/// after the last wanted one, which the older walk still delivers.
auto walkInto(DateTaker& taker, const DatesRequest& request) {
  return [&taker, &request, done = false, passedOver = 0](NSDate date, NSUInteger,
                                                          bool& stop) mutable {
    const NSComparisonResult far = request.backwards ? NSOrderedDescending : NSOrderedAscending;
    if (!done && date.compare(request.start) != far) {
      done = !taker.take(date);
    } else if (++passedOver > kMostDatesPassedOver) {
      throw JobFailure("the walk passed over 2000000 dates that were not asked for");
    }
    if (done) stop = true;
  };
}

void walkRange(DateTaker& taker, const DatesRequest& request) {
  const std::vector<NSDate> dates = datesForRecurrenceRule(
      *request.calendar, {.recurrenceRule = *request.rule,
                          .fromDate = *request.from,
                          .toDate = *request.to,
                          .referenceDate = request.reference.value_or(request.start),
                          .inclusive = request.inclusive});
  for (const NSDate date : dates)
    if (!taker.take(date)) return;
}

void walkOn(DateTaker& taker, const DatesRequest& request) {
  auto block = walkInto(taker, request);
  if (request.older) {
    request.rule->enumerateDatesForCalendarRefernceDate(
        {.calendar = *request.calendar,
         .refernceDate = request.reference.value_or(request.start),
         .backwards = request.backwards},
        block);
  } else if (request.reference) {
    enumerateDatesUsingRecurrenceRule(*request.calendar,
                                      {.recurrenceRule = *request.rule,
                                       .startDate = request.start,
                                       .backwards = request.backwards,
                                       .referenceDate = request.reference},
                                      block);
  } else {
    request.rule->enumerateDatesForCalendarStartDate({.calendar = *request.calendar,
                                                      .startDate = request.start,
                                                      .backwards = request.backwards,
                                                      .exactPatternMatch = request.exact},
                                                     block);
  }
}

/// Keeps back the conditions that walks log for patterns that no date fits, such as 31 February:
/// they are no faults of whoever asks for dates.
class QuietConditions {
 private:
  Replaced<NSLogSink> sink_{NSSetLogSink, [this](std::string_view message) {
                              if (!message.starts_with("Condition Failed: ")) passOn(message);
                            }};

  /// A line that is logged while a sink runs reaches standard error.
  void passOn(std::string_view message) const {
    if (const NSLogSink& before = sink_.before())
      before(message);
    else
      NSLog(message);
  }
};

}  // namespace

void walkDates(const DatesRequest& request, const std::function<void(NSDate)>& give) {
  refuseLongWalk(request);
  const QuietConditions quiet;
  DateTaker taker(request, give);
  if (request.asksForRange()) {
    walkRange(taker, request);
  } else {
    walkOn(taker, request);
  }
}

}  // namespace orlftool
