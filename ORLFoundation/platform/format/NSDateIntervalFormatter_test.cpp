#include <ORLFoundation/platform/format/NSDateIntervalFormatter.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSDateIntervalFormatter_testing.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSTimeZone_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::Json;

NSDate dateOf(const std::string& text) { return *orlftest::dateFromVector(text); }

void setUp(NSDateIntervalFormatter& formatter, const std::string& locale, const char* zone = "UTC",
           NSUInteger dateStyle = 0, NSUInteger timeStyle = 0) {
  formatter.setLocale(std::make_shared<NSLocale>(locale));
  formatter.setTimeZone(NSTimeZone::timeZoneWithName(zone));
  formatter.setCalendar(nullptr);
  formatter.setDateStyle(static_cast<NSDateIntervalFormatterStyle>(dateStyle));
  formatter.setTimeStyle(static_cast<NSDateIntervalFormatterStyle>(timeStyle));
}

std::string plainText(const NSDateIntervalFormatter& formatter, NSDate from, NSDate to) {
  return orlftest::withPlainBlanks(formatter.stringFromDate(from, to).value_or("nil"));
}

std::string spanText(const char* zone, NSUInteger dateStyle, NSUInteger timeStyle,
                     const std::string& from, const std::string& to,
                     const std::string& locale = "en_US") {
  NSDateIntervalFormatter formatter;
  setUp(formatter, locale, zone, dateStyle, timeStyle);
  return plainText(formatter, dateOf(from), dateOf(to));
}

/// ICU 72 has its own words for some; those of one day are told by the style's own format.
std::string expectedSpan(const Json& row) {
  if (row.at("same").get<bool>()) return row.at("out").get<std::string>();
  const Json& in = row.at("in");
  const auto from = in.at("from").get<std::string>();
  if (from.substr(0, 10) != in.at("to").get<std::string>().substr(0, 10))
    return row.at("icu72").get<std::string>();
  NSDateFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>(in.at("locale").get<std::string>()));
  formatter.setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  formatter.setDateStyle(in.at("dateStyle").get<NSDateFormatterStyle>());
  return formatter.stringFromDate(dateOf(from));
}

TEST(NSDateIntervalFormatter, AgreesWithVectorsOfSpans) {
  std::size_t untold = 0;
  std::size_t untoldAgreeing = 0;
  orlftest::runJsonRows("formats_interval", [&](const Json& row) -> std::string {
    const Json& in = row.at("in");
    NSDateIntervalFormatter formatter;
    setUp(formatter, in.at("locale").get<std::string>(), "UTC",
          in.at("dateStyle").get<NSUInteger>(), in.at("timeStyle").get<NSUInteger>());
    const auto text = formatter.stringFromDate(dateOf(in.at("from").get<std::string>()),
                                               dateOf(in.at("to").get<std::string>()));
    if (!text) return "nil";
    if (row.at("same").get<bool>() || !row.at("icu72").is_null())
      return orlftest::disagreement(expectedSpan(row), *text);
    ++untold;
    if (*text == row.at("out").get<std::string>()) ++untoldAgreeing;
    return text->empty() ? "no text" : "";
  });
  std::cout << "formats_interval: of " << untold << " rows with times, " << untoldAgreeing
            << " are as the platform's\n";
}

struct StyleCase {
  NSUInteger dateStyle, timeStyle;
  std::string_view alike, withinADay, acrossDays;
};
const StyleCase kStyleCases[] = {
    {0, 1, "10:00 AM", "10:00 AM – 3:30 PM", "1/31/2024, 10:00 AM – 2/2/2024, 3:30 PM"},
    {0, 2, "10:00:05 AM", "10:00:05 AM – 3:30:45 PM",
     "1/31/2024, 10:00:05 AM – 2/2/2024, 3:30:45 PM"},
    {0, 3, "10:00:05 AM EST", "10:00:05 AM EST – 3:30:45 PM EST",
     "1/31/2024, 10:00:05 AM EST – 2/2/2024, 3:30:45 PM EST"},
    {0, 4, "10:00:05 AM Eastern Standard Time",
     "10:00:05 AM Eastern Standard Time – 3:30:45 PM Eastern Standard Time",
     "1/31/2024, 10:00:05 AM Eastern Standard Time – 2/2/2024, 3:30:45 PM Eastern Standard Time"},
    {0, 0, "", "", ""},
    {1, 0, "1/31/24", "1/31/24", "1/31/2024 – 2/2/2024"},
    {1, 1, "1/31/24, 10:00 AM", "1/31/2024, 10:00 AM – 3:30 PM",
     "1/31/2024, 10:00 AM – 2/2/2024, 3:30 PM"},
    {2, 0, "Jan 31, 2024", "Jan 31, 2024", "Jan 31 – Feb 2, 2024"},
    {2, 1, "Jan 31, 2024, 10:00 AM", "Jan 31, 2024, 10:00 AM – 3:30 PM",
     "Jan 31, 2024, 10:00 AM – Feb 2, 2024, 3:30 PM"},
    {2, 2, "Jan 31, 2024, 10:00:05 AM", "Jan 31, 2024, 10:00:05 AM – 3:30:45 PM",
     "Jan 31, 2024, 10:00:05 AM – Feb 2, 2024, 3:30:45 PM"},
    {3, 0, "January 31, 2024", "January 31, 2024", "January 31 – February 2, 2024"},
    {3, 3, "January 31, 2024 at 10:00:05 AM EST",
     "January 31, 2024, 10:00:05 AM EST – 3:30:45 PM EST",
     "January 31, 2024 at 10:00:05 AM EST – February 2, 2024 at 3:30:45 PM EST"},
    {4, 0, "Wednesday, January 31, 2024", "Wednesday, January 31, 2024",
     "Wednesday, January 31 – Friday, February 2, 2024"},
    {4, 4, "Wednesday, January 31, 2024 at 10:00:05 AM Eastern Standard Time",
     "Wednesday, January 31, 2024, 10:00:05 AM EST – 3:30:45 PM EST",
     "Wednesday, January 31, 2024 at 10:00:05 AM Eastern Standard Time – Friday, February 2, 2024 "
     "at 3:30:45 PM Eastern Standard Time"},
};

TEST(NSDateIntervalFormatter, TellsSpansInEveryStyle) {
  const std::string from = "2024-01-31T15:00:05Z";
  for (const StyleCase& row : kStyleCases) {
    const auto text = [&row, &from](const char* to) {
      return spanText("America/New_York", row.dateStyle, row.timeStyle, from, to);
    };
    EXPECT_EQ(text("2024-01-31T15:00:05Z"), row.alike);
    EXPECT_EQ(text("2024-01-31T20:30:45Z"), row.withinADay);
    EXPECT_EQ(text("2024-02-02T20:30:45Z"), row.acrossDays);
  }
}

struct ChangeCase {
  const char* zone;
  NSUInteger dateStyle, timeStyle;
  const char *from, *to;
  std::string_view text;
};
const ChangeCase kChangeCases[] = {
    {"America/New_York", 0, 1, "2024-03-10T06:30:00Z", "2024-03-10T07:30:00Z", "1:30 – 3:30 AM"},
    {"America/New_York", 0, 3, "2024-03-10T06:30:00Z", "2024-03-10T07:30:00Z",
     "1:30:00 AM EST – 3:30:00 AM EDT"},
    {"America/New_York", 0, 4, "2024-03-10T06:30:00Z", "2024-03-10T07:30:00Z",
     "1:30:00 AM Eastern Standard Time – 3:30:00 AM Eastern Daylight Time"},
    {"America/New_York", 2, 2, "2024-03-10T06:30:00Z", "2024-03-10T07:30:00Z",
     "Mar 10, 2024, 1:30:00 AM – 3:30:00 AM"},
    {"America/New_York", 0, 3, "2024-11-03T05:30:00Z", "2024-11-03T06:30:00Z", "1:30:00 AM EDT"},
    {"America/New_York", 1, 0, "2024-11-03T05:30:00Z", "2024-11-03T06:30:00Z", "11/3/24"},
    {"Africa/Cairo", 2, 4, "2024-04-25T20:00:00Z", "2024-04-25T23:30:00Z",
     "Apr 25, 2024, 10:00:00 PM Eastern European Standard Time – Apr 26, 2024, 2:30:00 AM Eastern "
     "European Summer Time"},
};

TEST(NSDateIntervalFormatter, TellsSpansOverClockChanges) {
  for (const ChangeCase& row : kChangeCases)
    EXPECT_EQ(spanText(row.zone, row.dateStyle, row.timeStyle, row.from, row.to), row.text)
        << row.zone << ' ' << row.from;
}

struct SpanCalendarCase {
  std::string_view locale;
  NSUInteger dateStyle;
  std::string_view text;
};
const SpanCalendarCase kCalendarCases[] = {
    {"th_TH", 1, "31/1/2567 – 2/2/2567"},
    {"th_TH", 4, "วันพุธที่ 31 มกราคม – วันศุกร์ที่ 2 กุมภาพันธ์ 2567"},
    {"fa_IR", 1, "۱۴۰۲/۱۱/۱۱ تا ۱۴۰۲/۱۱/۱۳"},
    {"fa_IR", 2, "۱۱ تا ۱۳ بهمن ۱۴۰۲"},
    {"ja_JP@calendar=japanese", 1, "R6/01/31～6/02/02"},
    {"ja_JP@calendar=japanese", 2, "令和6年1月31日～2月2日"},
    {"ar_SA", 4, "الأربعاء، ١٩ – الجمعة، ٢١ رجب ١٤٤٥ هـ"},
};

TEST(NSDateIntervalFormatter, TellsSpansInTheCalendarOfTheLocale) {
  for (const SpanCalendarCase& row : kCalendarCases)
    EXPECT_EQ(spanText("UTC", row.dateStyle, 0, "2024-01-31T15:00:05Z", "2024-02-02T20:30:45Z",
                       std::string(row.locale)),
              row.text)
        << row.locale;
}

TEST(NSDateIntervalFormatter, PrintsUnderTheKindOfACalendar) {
  NSDateIntervalFormatter formatter;
  setUp(formatter, "en_US", "UTC", 2);
  const auto text = [&formatter] {
    return plainText(formatter, dateOf("2024-01-31T15:00:05Z"), dateOf("2024-02-02T15:00:05Z"));
  };
  formatter.setCalendar(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierBuddhist));
  EXPECT_EQ(text(), "Jan 31 – Feb 2, 2567 BE");
  EXPECT_EQ(formatter.calendar()->calendarIdentifier(), NSCalendarIdentifierBuddhist);
  formatter.setCalendar(nullptr);
  EXPECT_EQ(formatter.calendar(), nullptr);
  EXPECT_EQ(text(), "Jan 31 – Feb 2, 2024");
}

TEST(NSDateIntervalFormatter, TemplatesTellWhatTheyName) {
  NSDateIntervalFormatter formatter;
  setUp(formatter, "en_US", "UTC", 2, 1);
  EXPECT_EQ(formatter.dateTemplate(), "yMMMdjm");
  formatter.setDateTemplate("MMMd");
  const NSDate from = dateOf("2024-01-31T15:00:05Z");
  EXPECT_EQ(plainText(formatter, from, dateOf("2024-02-02T15:00:05Z")), "Jan 31 – Feb 2");
  EXPECT_EQ(formatter.stringFromDate(from, from), "Jan 31");
  EXPECT_EQ(formatter.dateTemplate(), "MMMd");
  EXPECT_EQ(formatter.timeStyle(), NSDateIntervalFormatterShortStyle);
  formatter.setDateStyle(NSDateIntervalFormatterShortStyle);
  EXPECT_EQ(formatter.dateTemplate(), "yMdjm");
  formatter.setDateTemplate("");
  EXPECT_EQ(formatter.stringFromDate(from, from), "");
}

TEST(NSDateIntervalFormatter, GivesNilForWhatIsNoDate) {
  NSDateIntervalFormatter formatter;
  setUp(formatter, "en_US", "UTC", 1);
  const NSDate date = dateOf("2024-01-31T15:00:05Z");
  EXPECT_EQ(formatter.stringFromDate(std::nullopt, date), std::nullopt);
  EXPECT_EQ(formatter.stringFromDate(date, std::nullopt), std::nullopt);
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  for (const double wild : {kInfinite, -kInfinite, std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::max(), -1e15}) {
    const NSDate far = NSDate::dateWithTimeIntervalSince1970(wild);
    EXPECT_EQ(formatter.stringFromDate(date, far), std::nullopt) << wild;
    EXPECT_EQ(formatter.stringFromDate(far, date), std::nullopt) << wild;
  }
  EXPECT_EQ(plainText(formatter, NSDate::distantPast(), NSDate::distantFuture()),
            "12/30/1 BC – 1/1/4001 AD");
  formatter.setCalendar(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierHebrew));
  const NSDate beyond = NSDate::dateWithTimeIntervalSince1970(1e12);
  EXPECT_EQ(formatter.stringFromDate(date, beyond), std::nullopt);
}

TEST(NSDateIntervalFormatter, KeepsUnknownStylesAndPrintsThemAsNone) {
  NSDateIntervalFormatter formatter;
  const NSDate date = dateOf("2024-01-31T15:00:05Z");
  for (const NSUInteger wild : {NSUInteger{5}, std::numeric_limits<NSUInteger>::max()}) {
    setUp(formatter, "en_US", "UTC", wild, wild);
    EXPECT_EQ(static_cast<NSUInteger>(formatter.dateStyle()), wild);
    EXPECT_EQ(static_cast<NSUInteger>(formatter.timeStyle()), wild);
    EXPECT_EQ(formatter.stringFromDate(date, date), "");
  }
}

TEST(NSDateIntervalFormatter, StartsInTheWorldOfItsProcess) {
  const Replaced locale(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("th_TH"));
  const orlftest::DefaultZone zone("Asia/Tokyo");
  NSDateIntervalFormatter formatter;
  EXPECT_EQ(formatter.locale()->localeIdentifier(), "th_TH");
  EXPECT_EQ(formatter.timeZone()->name(), "Asia/Tokyo");
  EXPECT_EQ(formatter.calendar()->calendarIdentifier(), NSCalendarIdentifierBuddhist);
  EXPECT_EQ(formatter.calendar()->timeZone()->name(), "Asia/Tokyo");
  EXPECT_EQ(formatter.dateStyle(), NSDateIntervalFormatterNoStyle);
  EXPECT_EQ(formatter.timeStyle(), NSDateIntervalFormatterNoStyle);
  const Replaced later(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("de_DE"));
  orlftest::DefaultZone::set("UTC");
  EXPECT_EQ(formatter.locale()->localeIdentifier(), "th_TH");
  formatter.setLocale(nullptr);
  formatter.setTimeZone(nullptr);
  EXPECT_EQ(formatter.locale()->localeIdentifier(), "de_DE");
  EXPECT_EQ(formatter.timeZone()->name(), "UTC");
}

void expectSameSettings(const NSDateIntervalFormatter& left, const NSDateIntervalFormatter& right) {
  EXPECT_EQ(left.dateStyle(), right.dateStyle());
  EXPECT_EQ(left.timeStyle(), right.timeStyle());
  EXPECT_EQ(left.dateTemplate(), right.dateTemplate());
  EXPECT_EQ(left.locale()->localeIdentifier(), right.locale()->localeIdentifier());
  EXPECT_EQ(left.timeZone()->name(), right.timeZone()->name());
  ASSERT_EQ(left.calendar() == nullptr, right.calendar() == nullptr);
  if (!left.calendar()) return;
  EXPECT_EQ(left.calendar()->calendarIdentifier(), right.calendar()->calendarIdentifier());
  EXPECT_EQ(left.calendar()->timeZone()->name(), right.calendar()->timeZone()->name());
  EXPECT_EQ(left.calendar()->firstWeekday(), right.calendar()->firstWeekday());
  EXPECT_EQ(left.calendar()->minimumDaysInFirstWeek(), right.calendar()->minimumDaysInFirstWeek());
}

/// Two formatters with every setting changed: one with styles, one with a template.
std::vector<std::shared_ptr<NSDateIntervalFormatter>> changedFormatters() {
  const auto styled = std::make_shared<NSDateIntervalFormatter>();
  setUp(*styled, "fr_FR", "Europe/Paris", 4, 3);
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierBuddhist);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("Asia/Tokyo"));
  calendar->setFirstWeekday(5);
  calendar->setMinimumDaysInFirstWeek(3);
  styled->setCalendar(calendar);
  const auto lettered = std::make_shared<NSDateIntervalFormatter>();
  setUp(*lettered, "ja_JP", "Asia/Tokyo", 1, 1);
  lettered->setDateTemplate("MMMd");
  return {styled, lettered};
}

TEST(NSDateIntervalFormatter, CopiesHoldSettingsOfTheirOwn) {
  for (const auto& formatter : changedFormatters()) {
    const auto copy = copyOf(formatter);
    expectSameSettings(*copy, *formatter);
    copy->setDateStyle(NSDateIntervalFormatterShortStyle);
    copy->setCalendar(nullptr);
    EXPECT_NE(copy->dateTemplate(), formatter->dateTemplate());
  }
}

TEST(NSDateIntervalFormatter, ArchivesHoldAllSettings) {
  for (const auto& formatter : changedFormatters()) {
    const auto read = orlftest::archivedAndRead<NSDateIntervalFormatter>(formatter);
    ASSERT_TRUE(read);
    expectSameSettings(*read, *formatter);
  }
}

TEST(NSDateIntervalFormatter, EightThreadsShareOne) {
  NSDateIntervalFormatter formatter;
  setUp(formatter, "en_US", "UTC", 2);
  std::vector<std::thread> threads;
  for (NSUInteger thread = 0; thread < 8; ++thread)
    threads.emplace_back([&formatter, thread] {
      for (int round = 0; round < 50; ++round) {
        const std::string text =
            plainText(formatter, dateOf("2024-01-31T15:00:05Z"), dateOf("2024-02-02T15:00:05Z"));
        EXPECT_TRUE(text == "Jan 31 – Feb 2, 2024" || text == "1/31/2024 – 2/2/2024");
        if (thread == 0)
          formatter.setDateStyle(static_cast<NSDateIntervalFormatterStyle>(1 + round % 2));
        EXPECT_TRUE(thread != 1 || formatter.copy());
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace ORLFoundation
