#include <ORLFoundation/datetext/entry/internal/DateScan.h>

#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <random>
#include <regex>
#include <vector>

namespace ORLFoundation::internal::entry {
namespace {

using orlftest::calendarIn;

NSDate today() { return *orlftest::dateFromVector("2024-02-15T12:00:00Z"); }

std::string shown(std::optional<NSDate> date) {
  return date ? orlftest::vectorFromDate(*date).substr(0, 10) : "nil";
}

std::string scan(std::string_view text, bool monthFirst) {
  return shown(scanDate(text, monthFirst, *calendarIn("UTC"), today()));
}

struct ScanCase {
  const char *text, *monthFirst, *dayFirst;
};
const ScanCase kScans[] = {
    {"13/2/2021", "2021-02-13", "2021-02-13"},
    {"2/13/2021", "2021-02-13", "2021-02-13"},
    {"3/4/2021", "2021-03-04", "2021-04-03"},
    {"2021-02-13", "2021-02-13", "2021-02-13"},
    {"2021/13/02", "2021-02-13", "2021-02-13"},
    {"2021/3/4", "2021-03-04", "2021-04-03"},
    {"5", "2024-02-05", "2024-02-05"},
    {"29", "2024-02-29", "2024-02-29"},
    {"30", "nil", "nil"},
    {"0", "nil", "nil"},
    {"2021", "2021-01-01", "2021-01-01"},
    {"1900", "1900-01-01", "1900-01-01"},
    {"2299", "2299-01-01", "2299-01-01"},
    {"45", "nil", "nil"},
    {"1899", "nil", "nil"},
    {"2300", "nil", "nil"},
    {"31/2/2021", "nil", "nil"},
    {"3/4", "2024-03-04", "2024-04-03"},
    {"13/4", "2024-04-13", "2024-04-13"},
    {"13/14", "nil", "nil"},
    {"29/2/2023", "nil", "nil"},
    {"1900/1/2", "1900-01-02", "1900-02-01"},
    {"2/1/1899", "nil", "nil"},
    {"2/1/2299", "2299-02-01", "2299-01-02"},
    // Marks and white space.
    {"3--4", "2024-03-04", "2024-04-03"},
    {"3/.-4", "2024-03-04", "2024-04-03"},
    {" 3 / 4", "2024-03-04", "2024-04-03"},
    {"3\u00a0/\t4", "2024-03-04", "2024-04-03"},
    {"3 4", "nil", "nil"},
    {"3/ /4", "nil", "nil"},
    {"3/", "nil", "nil"},
    {"3/4/", "nil", "nil"},
    {"/3/4", "nil", "nil"},
    {"5 ", "2024-02-05", "2024-02-05"},
    {"5\n", "nil", "nil"},
    {"5x", "nil", "nil"},
    {"3/4x", "2024-03-04", "2024-04-03"},
    {"13/2/2021 or so", "2021-02-13", "2021-02-13"},
    // Signs, and numbers that no integer holds.
    {"+3/+4", "2024-03-04", "2024-04-03"},
    {"-5", "nil", "nil"},
    {"3/ -4", "nil", "nil"},
    {"99999999999999999999999", "nil", "nil"},
    {"3/99999999999999999999999", "nil", "nil"},
    {"-99999999999999999999999/3", "nil", "nil"},
    // Digits of other scripts are no numbers here.
    {"١٣/٢/٢٠٢١", "nil", "nil"},
    {"", "nil", "nil"},
    {" ", "nil", "nil"},
    {"x", "nil", "nil"},
};

TEST(DateScan, TakesOneTwoOrThreeNumbers) {
  for (const ScanCase& row : kScans) {
    EXPECT_EQ(scan(row.text, true), row.monthFirst) << row.text;
    EXPECT_EQ(scan(row.text, false), row.dayFirst) << row.text;
  }
}

// The rules once more, word by word, over texts of digits, marks, blanks and signs.
std::string literalScan(const std::string& text, bool monthFirst) {
  static const std::regex kOne(R"(^[ \t]*([+-]?[0-9]+)[ \t]*$)");
  static const std::regex kTwo(
      R"(^[ \t]*([+-]?[0-9]+)[ \t]*[-/.]+[ \t]*([+-]?[0-9]+)[ \t]*([^]*)$)");
  static const std::regex kThree(
      R"(^[ \t]*([+-]?[0-9]+)[ \t]*[-/.]+[ \t]*([+-]?[0-9]+)[ \t]*[-/.]+[ \t]*([+-]?[0-9]+)[^]*$)");
  const auto number = [](const std::string& digits) {
    const char* first = digits.data() + (digits.front() == '+' ? 1 : 0);
    std::int64_t value = 0;
    std::from_chars(first, digits.data() + digits.size(), value);
    return value;
  };
  const auto isYear = [](std::int64_t value) { return value >= 1900 && value <= 2299; };
  const auto isMonth = [](std::int64_t value) { return value >= 1 && value <= 12; };
  const auto show = [](std::int64_t year, std::int64_t month, std::int64_t day) -> std::string {
    using namespace std::chrono;
    if (month < 1 || month > 12 || day < 1 || day > 31) return "nil";
    const year_month_day date{std::chrono::year(static_cast<int>(year)),
                              std::chrono::month(static_cast<unsigned>(month)),
                              std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) return "nil";
    char written[16];
    std::snprintf(written, sizeof written, "%04d-%02d-%02d", static_cast<int>(year),
                  static_cast<int>(month), static_cast<int>(day));
    return written;
  };
  const auto monthAndDay = [&](std::int64_t year, std::int64_t first, std::int64_t second) {
    if (monthFirst) return isMonth(first) ? show(year, first, second) : show(year, second, first);
    return isMonth(second) ? show(year, second, first) : show(year, first, second);
  };
  std::smatch found;
  if (std::regex_match(text, found, kThree)) {
    const std::int64_t a = number(found[1]);
    const std::int64_t b = number(found[2]);
    const std::int64_t c = number(found[3]);
    if (isYear(a)) return monthAndDay(a, b, c);
    return isYear(c) ? monthAndDay(c, a, b) : "nil";
  }
  if (std::regex_match(text, found, kTwo)) {
    const std::string rest = found[3];
    if (!rest.empty() && std::string_view("/.-").find(rest.front()) != std::string_view::npos)
      return "nil";
    return monthAndDay(2024, number(found[1]), number(found[2]));
  }
  if (!std::regex_match(text, found, kOne)) return "nil";
  const std::int64_t only = number(found[1]);
  if (only < 1) return "nil";
  if (only <= 29) return show(2024, 2, only);
  return isYear(only) ? show(only, 1, 1) : "nil";
}

TEST(DateScan, AgreesWithItsRulesOnRandomTexts) {
  std::mt19937 random(5);
  const auto calendar = calendarIn("UTC");
  const auto below = [&random](std::size_t count) {
    return static_cast<std::size_t>(random() % count);
  };
  int dates = 0;
  for (int count = 0; count < 20000; ++count) {
    std::string text;
    const std::size_t numbers = 1 + below(4);
    for (std::size_t i = 0; i < numbers; ++i) {
      constexpr std::array<std::size_t, 5> kSizes{4, 14, 35, 100, 2500};
      if (i > 0) text += std::vector<std::string>{"/", ".", "-", " / ", "--", " ", "/-"}[below(7)];
      if (below(12) == 0) text += std::vector<std::string>{"+", "-", " ", "x", "\n"}[below(5)];
      const std::size_t size = kSizes[below(5)];
      text += std::to_string(size == 2500 ? 1850 + below(500) : below(size));
    }
    if (below(10) == 0) text += std::vector<std::string>{" ", "x", "/", "\n", "-"}[below(5)];
    const bool monthFirst = below(2) == 0;
    const std::string expected = literalScan(text, monthFirst);
    dates += expected == "nil" ? 0 : 1;
    ASSERT_EQ(shown(scanDate(text, monthFirst, *calendar, today())), expected) << text;
  }
  EXPECT_GT(dates, 2000);
}

TEST(DateScan, CountsInTheCalendarGiven) {
  // 2567 is no year between 1900 and 2299, but 2024 is the Gregorian one within today's era.
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierBuddhist);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  EXPECT_EQ(shown(scanDate("5", true, *calendar, today())), "2024-02-05");
  EXPECT_EQ(shown(scanDate("2567", true, *calendar, today())), "nil");
  EXPECT_EQ(shown(scanDate("3/4", true, *calendar, today())), "2024-03-04");
}

TEST(DateScan, TakesLongTextsInOnePass) {
  constexpr std::size_t kMegabyte = 1'000'000;
  EXPECT_EQ(scan(std::string(kMegabyte, '1'), true), "nil");
  EXPECT_EQ(scan(std::string(kMegabyte, ' ') + "5", true), "2024-02-05");
  EXPECT_EQ(scan("3" + std::string(kMegabyte, '/') + "4", true), "2024-03-04");
  EXPECT_EQ(scan("3/4" + std::string(kMegabyte, 'x'), true), "2024-03-04");
  std::string blanks;
  while (blanks.size() < kMegabyte) blanks += "\u00a0 \u2003\t";
  EXPECT_EQ(scan(blanks + "5" + blanks, true), "2024-02-05");
  std::string others;
  while (others.size() < kMegabyte) others += "é\xff";
  EXPECT_EQ(scan(others, true), "nil");
}

TEST(DateScan, KnowsTheDaysOfAMonth) {
  const auto calendar = calendarIn("UTC");
  EXPECT_EQ(dayRange(2, 2024, *calendar), (NSRange{1, 29}));
  EXPECT_EQ(dayRange(2, 2023, *calendar), (NSRange{1, 28}));
  EXPECT_EQ(dayRange(1, 99'999'999, *calendar).length, 0U);
  EXPECT_EQ(dayRange(NSIntegerMin, 2024, *calendar).length, 0U);
}

}  // namespace
}  // namespace ORLFoundation::internal::entry
