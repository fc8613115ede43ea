// Calendar operations in a zone with daylight saving, over dates from 1990 to 2060, beside the same
// sums by icu::Calendar and by the date library with its zones. Before anything is timed, all
// three give their answers to every date and the program stops where they differ; the date
// library, which knows no clock changes from 2038 on, is asked about dates before that year.

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <benchmark/benchmark.h>
#include <date/tz.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

using namespace ORLFoundation;

constexpr const char* kZone = "America/New_York";
constexpr std::int64_t kFirst = 631170000;        // 1990-01-01 in the zone
constexpr std::int64_t kLast = 2840158800;        // 2060-01-01
constexpr std::int64_t kKnownToAll = 2145934800;  // 2038-01-01
constexpr std::size_t kDates = 4096;
constexpr NSUInteger kDayAndTime = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay |
                                   NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond;

struct Work {
  std::int64_t from;
  std::int64_t to;
  std::array<std::int32_t, 6> fields;  // year, month, day, hour, minute, second of `from`
  std::int32_t count;                  // of units to add
};

// An answer in one or two numbers, whatever the operation gives.
struct Answer {
  std::int64_t first;
  std::int64_t second;
  friend bool operator==(const Answer&, const Answer&) = default;
};

std::int64_t pack(std::int64_t year, std::int64_t month, std::int64_t day) {
  return (year * 16 + month) * 32 + day;
}

// ------------------------------------------------------------------------------------ ours

class Ours {
 public:
  Ours() : calendar_(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian)) {
    calendar_->setTimeZone(NSTimeZone::timeZoneWithName(kZone));
  }
  static NSDate at(std::int64_t seconds) {
    return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds));
  }
  static std::int64_t of(NSDate date) {
    return static_cast<std::int64_t>(date.timeIntervalSince1970());
  }
  Answer components(const Work& work) const {
    const NSDateComponents all = calendar_->components(kDayAndTime, at(work.from));
    return {pack(all.year(), all.month(), all.day()),
            all.hour() * 3600 + all.minute() * 60 + all.second()};
  }
  Answer addMonths(const Work& work) const { return add(NSCalendarUnitMonth, work); }
  Answer addDays(const Work& work) const { return add(NSCalendarUnitDay, work); }
  Answer roundToMonth(const Work& work) const { return round(NSCalendarUnitMonth, work); }
  Answer roundToWeek(const Work& work) const { return round(NSCalendarUnitWeekOfYear, work); }
  Answer roundToDay(const Work& work) const { return round(NSCalendarUnitDay, work); }
  Answer daysBetween(const Work& work) const {
    return {calendar_->components(NSCalendarUnitDay, at(work.from), at(work.to), 0).day(), 0};
  }
  Answer monthsBetween(const Work& work) const {
    return {calendar_->components(NSCalendarUnitMonth, at(work.from), at(work.to), 0).month(), 0};
  }
  Answer fromComponents(const Work& work) const {
    NSDateComponents wanted;
    wanted.setYear(work.fields[0]);
    wanted.setMonth(work.fields[1]);
    wanted.setDay(work.fields[2]);
    wanted.setHour(work.fields[3]);
    wanted.setMinute(work.fields[4]);
    wanted.setSecond(work.fields[5]);
    return {of(*calendar_->dateFromComponents(wanted)), 0};
  }

 private:
  Answer add(NSCalendarUnit unit, const Work& work) const {
    return {of(*calendar_->dateByAddingUnit(unit, work.count, at(work.from), 0)), 0};
  }
  Answer round(NSCalendarUnit unit, const Work& work) const {
    NSDate start;
    NSTimeInterval length = 0;
    calendar_->rangeOfUnit(unit, &start, &length, at(work.from));
    return {of(start), static_cast<std::int64_t>(length)};
  }

  std::shared_ptr<NSCalendar> calendar_;
};

// ------------------------------------------------------------------------------------
// icu::Calendar

class Icu {
 public:
  Icu() : calendar_(makeCalendar()) {}
  Answer components(const Work& work) {
    setTime(work.from);
    return {pack(get(UCAL_YEAR), get(UCAL_MONTH) + 1, get(UCAL_DATE)),
            get(UCAL_HOUR_OF_DAY) * 3600 + get(UCAL_MINUTE) * 60 + get(UCAL_SECOND)};
  }
  Answer addMonths(const Work& work) { return add(UCAL_MONTH, work); }
  Answer addDays(const Work& work) { return add(UCAL_DATE, work); }
  Answer roundToMonth(const Work& work) {
    setTime(work.from);
    calendar_->set(UCAL_DATE, 1);
    return rangeFromMidnight(UCAL_MONTH, 1);
  }
  Answer roundToWeek(const Work& work) {
    setTime(work.from);
    calendar_->set(UCAL_DAY_OF_WEEK, UCAL_SUNDAY);
    return rangeFromMidnight(UCAL_DATE, 7);
  }
  Answer roundToDay(const Work& work) {
    setTime(work.from);
    return rangeFromMidnight(UCAL_DATE, 1);
  }
  Answer daysBetween(const Work& work) { return difference(UCAL_DATE, work); }
  Answer monthsBetween(const Work& work) { return difference(UCAL_MONTH, work); }
  Answer fromComponents(const Work& work) {
    const auto& f = work.fields;
    calendar_->clear();
    calendar_->set(f[0], f[1] - 1, f[2], f[3], f[4], f[5]);
    return {time(), 0};
  }

 private:
  static std::unique_ptr<icu::GregorianCalendar> makeCalendar() {
    UErrorCode status = U_ZERO_ERROR;
    auto calendar = std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createTimeZone(kZone),
                                                             icu::Locale::getUS(), status);
    calendar->setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
    return calendar;
  }
  void setTime(std::int64_t seconds) {
    calendar_->setTime(static_cast<double>(seconds) * 1000, status_);
  }
  std::int64_t time() { return static_cast<std::int64_t>(calendar_->getTime(status_) / 1000); }
  std::int64_t get(UCalendarDateFields field) { return calendar_->get(field, status_); }
  Answer add(UCalendarDateFields field, const Work& work) {
    setTime(work.from);
    calendar_->add(field, work.count, status_);
    return {time(), 0};
  }
  Answer rangeFromMidnight(UCalendarDateFields field, std::int32_t count) {
    for (const auto part : {UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND})
      calendar_->set(part, 0);
    const std::int64_t start = time();
    calendar_->add(field, count, status_);
    return {start, time() - start};
  }
  Answer difference(UCalendarDateFields field, const Work& work) {
    setTime(work.from);
    return {calendar_->fieldDifference(static_cast<double>(work.to) * 1000, field, status_), 0};
  }

  UErrorCode status_ = U_ZERO_ERROR;
  std::unique_ptr<icu::GregorianCalendar> calendar_;
};

// ------------------------------------------------------------------------------------ date

class DateLibrary {
 public:
  using Seconds = std::chrono::seconds;
  DateLibrary() : zone_(date::locate_zone(kZone)) {}
  Answer components(const Work& work) const {
    const auto local = localOf(work.from);
    const auto day = date::floor<date::days>(local);
    const date::year_month_day ymd{day};
    const date::hh_mm_ss<Seconds> time{local - day};
    return {pack(int{ymd.year()}, unsigned{ymd.month()}, unsigned{ymd.day()}),
            time.hours().count() * 3600 + time.minutes().count() * 60 + time.seconds().count()};
  }
  Answer addMonths(const Work& work) const {
    const auto local = localOf(work.from);
    const auto day = date::floor<date::days>(local);
    return {
        instantOf(clamped(date::year_month_day{day} + date::months{work.count}) + (local - day)),
        0};
  }
  Answer addDays(const Work& work) const {
    return {instantOf(localOf(work.from) + date::days{work.count}), 0};
  }
  Answer roundToMonth(const Work& work) const {
    const date::year_month_day ymd{date::floor<date::days>(localOf(work.from))};
    const auto first = ymd.year() / ymd.month() / 1;
    return range(date::local_days{first}, date::local_days{first + date::months{1}});
  }
  Answer roundToWeek(const Work& work) const {
    const auto day = date::floor<date::days>(localOf(work.from));
    const auto first = day - (date::weekday{day} - date::Sunday);
    return range(first, first + date::days{7});
  }
  Answer roundToDay(const Work& work) const {
    const auto day = date::floor<date::days>(localOf(work.from));
    return range(day, day + date::days{1});
  }
  Answer daysBetween(const Work& work) const {
    const auto from = localOf(work.from);
    const auto to = localOf(work.to);
    const auto days = date::floor<date::days>(to) - date::floor<date::days>(from);
    return {days.count() - (instantOf(from + days) > work.to ? 1 : 0), 0};
  }
  Answer monthsBetween(const Work& work) const {
    const auto from = localOf(work.from);
    const auto day = date::floor<date::days>(from);
    const date::year_month_day first{day};
    const date::year_month_day last{date::floor<date::days>(localOf(work.to))};
    const auto months = (last.year() / last.month()) - (first.year() / first.month());
    const auto reached = clamped(first + months) + (from - day);
    return {months.count() - (instantOf(reached) > work.to ? 1 : 0), 0};
  }
  Answer fromComponents(const Work& work) const {
    const auto& f = work.fields;
    const auto day = date::local_days{date::year{f[0]} / f[1] / f[2]};
    return {instantOf(day + std::chrono::hours{f[3]} + std::chrono::minutes{f[4]} + Seconds{f[5]}),
            0};
  }

 private:
  date::local_seconds localOf(std::int64_t seconds) const {
    return zone_->to_local(date::sys_seconds{Seconds{seconds}});
  }
  std::int64_t instantOf(date::local_seconds local) const {
    return zone_->to_sys(local, date::choose::earliest).time_since_epoch().count();
  }
  static date::local_days clamped(date::year_month_day day) {
    return day.ok() ? date::local_days{day}
                    : date::local_days{day.year() / day.month() / date::last};
  }
  Answer range(date::local_days first, date::local_days end) const {
    const std::int64_t start = instantOf(first);
    return {start, instantOf(end) - start};
  }

  const date::time_zone* zone_;
};

// ------------------------------------------------------------------------------------ work

// The same dates in every run; none within a doubled or skipped hour, where peers answer otherwise.
std::vector<Work> makeWork() {
  std::vector<Work> all;
  std::uint64_t random = 20240229;
  const auto next = [&random](std::int64_t below) {
    random = random * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::int64_t>((random >> 33) % static_cast<std::uint64_t>(below));
  };
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName(kZone));
  while (all.size() < kDates) {
    Work work{kFirst + next(kLast - kFirst), 0, {}, 0};
    work.to = work.from + next(10'000 * 86400);
    work.count = static_cast<std::int32_t>(next(200) + 1);
    const NSDateComponents fields = calendar->components(kDayAndTime, Ours::at(work.from));
    if (fields.hour() < 4) continue;
    work.fields = {
        static_cast<std::int32_t>(fields.year()),   static_cast<std::int32_t>(fields.month()),
        static_cast<std::int32_t>(fields.day()),    static_cast<std::int32_t>(fields.hour()),
        static_cast<std::int32_t>(fields.minute()), static_cast<std::int32_t>(fields.second())};
    all.push_back(work);
  }
  return all;
}

const std::vector<Work>& allWork() {
  static const std::vector<Work> all = makeWork();
  return all;
}

template <class Library>
using Operation = Answer (Library::*)(const Work&);
template <class Library>
using ConstOperation = Answer (Library::*)(const Work&) const;

void stopOnDifference(const char* name, const char* peer, const Work& work, Answer ours,
                      Answer theirs) {
  if (ours == theirs) return;
  std::fprintf(stderr, "%s of %lld: ours %lld %lld, %s %lld %lld\n", name,
               static_cast<long long>(work.from), static_cast<long long>(ours.first),
               static_cast<long long>(ours.second), peer, static_cast<long long>(theirs.first),
               static_cast<long long>(theirs.second));
  std::exit(1);
}

template <class Library, class Member>
void time(benchmark::State& state, Library& library, Member operation) {
  const std::vector<Work>& all = allWork();
  for (auto _ : state) {
    for (const Work& work : all) benchmark::DoNotOptimize((library.*operation)(work));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(all.size()));
}

Ours& ours() {
  static Ours library;
  return library;
}
Icu& icuCalendar() {
  static Icu library;
  return library;
}
DateLibrary& dateLibrary() {
  static DateLibrary library;
  return library;
}

void compare(const std::string& name, ConstOperation<Ours> mine, Operation<Icu> icu,
             ConstOperation<DateLibrary> other) {
  constexpr std::int64_t kMargin = std::int64_t{200} * 31 * 86400;
  for (const Work& work : allWork()) {
    const Answer answer = (ours().*mine)(work);
    stopOnDifference(name.c_str(), "icu::Calendar", work, answer, (icuCalendar().*icu)(work));
    if (std::max(work.from + kMargin, work.to) < kKnownToAll) {
      stopOnDifference(name.c_str(), "date", work, answer, (dateLibrary().*other)(work));
    }
  }
  benchmark::RegisterBenchmark((name + "/ours").c_str(),
                               [mine](benchmark::State& s) { time(s, ours(), mine); });
  benchmark::RegisterBenchmark((name + "/icu").c_str(),
                               [icu](benchmark::State& s) { time(s, icuCalendar(), icu); });
  benchmark::RegisterBenchmark((name + "/date").c_str(),
                               [other](benchmark::State& s) { time(s, dateLibrary(), other); });
}

const bool kRegistered = [] {
  using D = DateLibrary;
  compare("components", &Ours::components, &Icu::components, &D::components);
  compare("addMonths", &Ours::addMonths, &Icu::addMonths, &D::addMonths);
  compare("addDays", &Ours::addDays, &Icu::addDays, &D::addDays);
  compare("roundToMonth", &Ours::roundToMonth, &Icu::roundToMonth, &D::roundToMonth);
  compare("roundToWeek", &Ours::roundToWeek, &Icu::roundToWeek, &D::roundToWeek);
  compare("roundToDay", &Ours::roundToDay, &Icu::roundToDay, &D::roundToDay);
  compare("daysBetween", &Ours::daysBetween, &Icu::daysBetween, &D::daysBetween);
  compare("monthsBetween", &Ours::monthsBetween, &Icu::monthsBetween, &D::monthsBetween);
  compare("fromComponents", &Ours::fromComponents, &Icu::fromComponents, &D::fromComponents);
  return true;
}();

}  // namespace
