#include <ORLFoundation/platform/time/internal/PosixZone.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/CivilDays.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::time {

namespace civil = base::civil;

namespace {

// The years for which changes are listed: a whole cycle of the calendar, which then repeats.
constexpr std::int32_t kFirstYear = 1800;
constexpr std::int32_t kLastYear = 2200;
constexpr std::string_view kDefaultRules = ",M3.2.0,M11.1.0";

// The day of a year on which clocks change, and when on it.
struct ChangeRule {
  enum class Kind : std::uint8_t { kDayWithoutLeapDay, kDay, kWeekdayOfMonth };
  Kind kind = Kind::kDay;
  std::int32_t month = 0;
  std::int32_t week = 0;  // 5 is the last
  std::int32_t day = 0;   // of the year, or a weekday with Sunday as 0
  std::int32_t second = 2 * 3600;

  [[nodiscard]] std::int32_t dayIn(std::int32_t year) const noexcept {
    const std::int32_t january = civil::dayFromDate(year, 1, 1);
    if (kind == Kind::kDay) return january + day;
    if (kind == Kind::kDayWithoutLeapDay)
      return january + day - 1 + (civil::isLeapYear(year) && day >= 60 ? 1 : 0);
    const std::int32_t first = civil::dayFromDate(year, month, 1);
    const auto toWeekday =
        static_cast<std::int32_t>(civil::floorModulo(day + 1 - civil::weekdayOfDay(first), 7));
    const std::int32_t wanted = toWeekday + (week - 1) * 7;
    return first + (wanted < civil::daysInMonth(year, month) ? wanted : wanted - 7);
  }
};

// Takes a text apart from its beginning. What does not fit leaves `failed` set.
struct Reader {
  std::string_view rest;
  bool failed = false;

  bool take(char wanted) noexcept {
    if (rest.empty() || rest.front() != wanted) return false;
    rest.remove_prefix(1);
    return true;
  }
  std::int32_t number(std::int32_t least, std::int32_t most) noexcept {
    std::int32_t value = 0;
    const auto [stop, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    const bool startsWithDigit = !rest.empty() && base::isDigit(rest[0]);
    if (!startsWithDigit || error != std::errc() || value < least || value > most) {
      failed = true;
      return least;
    }
    rest.remove_prefix(static_cast<std::size_t>(stop - rest.data()));
    return value;
  }
  // Three letters or more, or any name of letters, digits and signs within angle brackets.
  void name() noexcept {
    const bool quoted = take('<');
    std::size_t length = 0;
    while (length < rest.size() && isNameCharacter(rest[length], quoted)) ++length;
    if (length < 3) failed = true;
    rest.remove_prefix(length);
    if (quoted && !take('>')) failed = true;
  }
  // "[+-]hh[:mm[:ss]]" in seconds.
  std::int32_t time(std::int32_t mostHours) noexcept {
    const bool negative = take('-');
    if (!negative) take('+');
    std::int32_t seconds = number(0, mostHours) * 3600;
    if (take(':')) {
      seconds += number(0, 59) * 60;
      if (take(':')) seconds += number(0, 59);
    }
    return negative ? -seconds : seconds;
  }
  ChangeRule rule() noexcept {
    using Kind = ChangeRule::Kind;
    ChangeRule rule;
    if (!take(',')) failed = true;
    if (take('M')) {
      rule.kind = Kind::kWeekdayOfMonth;
      rule.month = number(1, 12);
      if (!take('.')) failed = true;
      rule.week = number(1, 5);
      if (!take('.')) failed = true;
      rule.day = number(0, 6);
    } else if (take('J')) {
      rule.kind = Kind::kDayWithoutLeapDay;
      rule.day = number(1, 365);
    } else {
      rule.day = number(0, 365);
    }
    if (take('/')) rule.second = time(167);
    return rule;
  }

 private:
  static bool isNameCharacter(char c, bool quoted) noexcept {
    return base::isLetter(c) || (quoted && (base::isDigit(c) || c == '+' || c == '-'));
  }
};

struct PosixZone {
  std::int32_t standard = 0;  // seconds east of GMT
  std::int32_t daylight = 0;
  bool changes = false;
  ChangeRule begin, end;  // of daylight saving time
};

std::optional<PosixZone> readPosixZone(std::string_view text) noexcept {
  constexpr std::int32_t kMostHours = 24;
  Reader reader{text};
  PosixZone zone;
  reader.name();
  zone.standard = -reader.time(kMostHours);
  if (!reader.failed && !reader.rest.empty()) {
    zone.changes = true;
    reader.name();
    const bool ownOffset = !reader.rest.empty() && reader.rest.front() != ',';
    zone.daylight = ownOffset ? -reader.time(kMostHours) : zone.standard + 3600;
    if (reader.rest.empty()) reader.rest = kDefaultRules;
    zone.begin = reader.rule();
    zone.end = reader.rule();
  }
  if (reader.failed || !reader.rest.empty()) return std::nullopt;
  return zone;
}

using Segment = ZoneTable::Segment;

std::vector<Segment> changesOf(const PosixZone& zone) {
  std::vector<Segment> changes;
  for (std::int32_t year = kFirstYear; year <= kLastYear; ++year) {
    const std::int64_t begin = civil::joinSeconds(zone.begin.dayIn(year), zone.begin.second);
    const std::int64_t end = civil::joinSeconds(zone.end.dayIn(year), zone.end.second);
    changes.push_back({begin - zone.standard, 0, 0, zone.daylight, true});
    changes.push_back({end - zone.daylight, 0, 0, zone.standard, false});
  }
  std::stable_sort(changes.begin(), changes.end(), [](const Segment& left, const Segment& right) {
    return left.start < right.start;
  });
  changes.pop_back();  // the one after it may stand at the same instant
  return changes;
}

}  // namespace

std::shared_ptr<const ZoneTable> zoneFromPosixText(std::string_view text) {
  const std::optional<PosixZone> zone = readPosixZone(text);
  if (!zone) return nullptr;
  if (!zone->changes) return ZoneTable::fixed(zone->standard);
  std::vector<Segment> segments{{ZoneTable::kBeginningOfTime, 0, 0, zone->standard, false}};
  const std::vector<Segment> changes = changesOf(*zone);
  for (std::size_t i = 0; i < changes.size(); ++i) {
    // A daylight saving time of the whole year ends at the instant at which it begins again.
    const bool isPassing = i + 1 < changes.size() && changes[i + 1].start == changes[i].start;
    if (!isPassing && changes[i].offset != segments.back().offset) segments.push_back(changes[i]);
  }
  const bool repeats = segments.size() > 2;
  return std::make_shared<const ZoneTable>(std::move(segments), repeats);
}

}  // namespace ORLFoundation::internal::time
