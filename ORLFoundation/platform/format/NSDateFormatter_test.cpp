#include <ORLFoundation/platform/format/NSDateFormatter.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSDateFormatter_testing.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSTimeZone_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace ORLFoundation {
namespace {

using orlftest::formatterOf;
using testing::ElementsAre;

NSDate at(const char* text) { return *orlftest::dateFromVector(text); }

std::string text(std::optional<NSDate> date) { return orlftest::vectorFromDate(date); }

std::shared_ptr<NSDateFormatter> shortFormatter(const char* zone = "UTC") {
  auto formatter = formatterOf("en_US", zone);
  formatter->setDateStyle(NSDateFormatterShortStyle);
  return formatter;
}

std::shared_ptr<NSDateFormatter> formatted(const char* format, const char* zone = "UTC") {
  auto formatter = formatterOf("en_US", zone);
  formatter->setDateFormat(format);
  return formatter;
}

TEST(NSDateFormatter, BeginsWithoutStyles) {
  const NSDateFormatter formatter;
  EXPECT_EQ(formatter.dateStyle(), NSDateFormatterNoStyle);
  EXPECT_EQ(formatter.timeStyle(), NSDateFormatterNoStyle);
  EXPECT_EQ(formatter.dateFormat(), "");
  EXPECT_EQ(formatter.stringFromDate(NSDate()), "");
  EXPECT_FALSE(formatter.dateFromString("1/2/21"));
  EXPECT_FALSE(formatter.isLenient());
  EXPECT_FALSE(formatter.doesRelativeDateFormatting());
  EXPECT_EQ(text(formatter.twoDigitStartDate()), "1950-01-01T00:00:00Z");
  EXPECT_EQ(formatter.className(), "NSDateFormatter");
}

TEST(NSDateFormatter, FollowsStylesUntilAFormatIsSet) {
  const auto formatter = shortFormatter();
  EXPECT_EQ(formatter->dateFormat(), "M/d/yy");
  formatter->setLocale(std::make_shared<NSLocale>("de_DE"));
  EXPECT_EQ(formatter->dateFormat(), "dd.MM.yy");
  formatter->setDateFormat("yyyy");
  EXPECT_EQ(formatter->dateStyle(), NSDateFormatterShortStyle);
  formatter->setLocale(std::make_shared<NSLocale>("en_US"));
  EXPECT_EQ(formatter->dateFormat(), "yyyy");
  formatter->setTimeStyle(NSDateFormatterNoStyle);
  EXPECT_EQ(formatter->dateFormat(), "M/d/yy");
  formatter->setDateStyle(static_cast<NSDateFormatterStyle>(5));
  EXPECT_EQ(formatter->dateStyle(), NSDateFormatterNoStyle);
  EXPECT_EQ(formatter->dateFormat(), "");
}

TEST(NSDateFormatter, TakesTheProcessesLocaleAndZone) {
  const Replaced locale(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("fr_FR"));
  std::optional<orlftest::DefaultZone> zone(std::in_place, "Asia/Tokyo");
  NSDateFormatter formatter;
  zone.reset();
  EXPECT_EQ(formatter.locale()->localeIdentifier(), "fr_FR");
  EXPECT_EQ(formatter.timeZone()->name(), "Asia/Tokyo");
  formatter.setLocale(nullptr);
  EXPECT_EQ(formatter.locale()->localeIdentifier(), "fr_FR");
  formatter.setTimeZone(nullptr);
  EXPECT_EQ(formatter.timeZone(), NSTimeZone::defaultTimeZone());
}

struct TimeCase {
  NSDateFormatterStyle style;
  const char *winter, *summer;
};
const TimeCase kTimes[] = {
    {NSDateFormatterShortStyle, "7:00\u202fAM", "8:00\u202fAM"},
    {NSDateFormatterMediumStyle, "7:00:00\u202fAM", "8:00:00\u202fAM"},
    {NSDateFormatterLongStyle, "7:00:00\u202fAM EST", "8:00:00\u202fAM EDT"},
    {NSDateFormatterFullStyle, "7:00:00\u202fAM Eastern Standard Time",
     "8:00:00\u202fAM Eastern Daylight Time"},
};

TEST(NSDateFormatter, PrintsEachTimeStyleInItsZone) {
  const auto formatter = formatterOf("en_US", "America/New_York");
  for (const TimeCase& row : kTimes) {
    formatter->setTimeStyle(row.style);
    EXPECT_EQ(formatter->stringFromDate(at("2024-01-15T12:00:00Z")), row.winter);
    EXPECT_EQ(formatter->stringFromDate(at("2024-07-15T12:00:00Z")), row.summer);
    // Each reads its own text back.
    const auto read = formatter->dateFromString(row.summer);
    ASSERT_TRUE(read) << row.summer;
  }
}

TEST(NSDateFormatter, TakesOffsetsFromTheSystemsZones) {
  const auto formatter = formatted("yyyy-MM-dd HH:mm zzzz", "Africa/Cairo");
  EXPECT_EQ(formatter->stringFromDate(at("2024-07-15T12:00:00Z")),
            "2024-07-15 15:00 Eastern European Summer Time");
  formatter->setDateFormat("yyyy-MM-dd HH:mm");
  EXPECT_EQ(text(formatter->dateFromString("2024-07-15 15:00")), "2024-07-15T12:00:00Z");
}

TEST(NSDateFormatter, RefusesATimeThatAClockChangeLeavesOut) {
  const auto formatter = formatted("yyyy-MM-dd HH:mm", "America/New_York");
  EXPECT_FALSE(formatter->dateFromString("2024-03-10 02:30"));
  EXPECT_EQ(text(formatter->dateFromString("2024-03-10 03:00")), "2024-03-10T07:00:00Z");
  // The first of a doubled time.
  EXPECT_EQ(text(formatter->dateFromString("2024-11-03 01:30")), "2024-11-03T05:30:00Z");
}

TEST(NSDateFormatter, BeginsADayWithoutMidnightAtTheClockChange) {
  for (const char* format : {"M/d/yy", "MMM d, y"}) {
    const auto formatter = formatted(format, "America/Sao_Paulo");
    EXPECT_EQ(text(formatter->dateFromString("11/4/2018")), "2018-11-04T03:00:00Z") << format;
    // Samoa went from the 29th to the 31st of December of 2011.
    const auto skipping = formatted(format, "Pacific/Apia");
    EXPECT_EQ(text(skipping->dateFromString("12/29/2011")), "2011-12-29T10:00:00Z") << format;
    EXPECT_EQ(text(skipping->dateFromString("12/30/2011")), "2011-12-30T10:00:00Z") << format;
    EXPECT_EQ(text(skipping->dateFromString("12/31/2011")), "2011-12-30T10:00:00Z") << format;
  }
}

struct ZoneTextCase {
  const char *format, *typed, *date;
};
const ZoneTextCase kZoneTexts[] = {
    {"yyyy-MM-dd HH:mm Z", "2024-07-15 12:00 -0500", "2024-07-15T17:00:00Z"},
    {"yyyy-MM-dd HH:mm XXX", "2024-07-15 12:00 +05:30", "2024-07-15T06:30:00Z"},
    {"yyyy-MM-dd HH:mm XXX", "2024-07-15 12:00 Z", "2024-07-15T12:00:00Z"},
    {"yyyy-MM-dd HH:mm z", "2024-07-15 12:00 EDT", "2024-07-15T16:00:00Z"},
    {"yyyy-MM-dd HH:mm z", "2024-01-15 12:00 EST", "2024-01-15T17:00:00Z"},
    // The other kind of time than the date's.
    {"yyyy-MM-dd HH:mm z", "2024-07-15 12:00 EST", "2024-07-15T17:00:00Z"},
    {"yyyy-MM-dd HH:mm z", "2024-01-15 12:00 EDT", "2024-01-15T16:00:00Z"},
    {"yyyy-MM-dd HH:mm VV", "2024-07-15 12:00 America/Los_Angeles", "2024-07-15T19:00:00Z"},
    // ICU's own tables have Cairo an hour off.
    {"yyyy-MM-dd HH:mm VV", "2024-07-15 12:00 Africa/Cairo", "2024-07-15T09:00:00Z"},
    {"yyyy-MM-dd HH:mm VV", "2024-01-15 12:00 Africa/Cairo", "2024-01-15T10:00:00Z"},
};

TEST(NSDateFormatter, ReadsInTheZoneThatATextNames) {
  const auto formatter = formatterOf("en_US", "Europe/Vienna");
  for (const ZoneTextCase& row : kZoneTexts) {
    formatter->setDateFormat(row.format);
    EXPECT_EQ(text(formatter->dateFromString(row.typed)), row.date) << row.typed;
  }
  // The next text is in the formatter's own zone again.
  formatter->setDateFormat("yyyy-MM-dd HH:mm");
  EXPECT_EQ(text(formatter->dateFromString("2024-07-15 12:00")), "2024-07-15T10:00:00Z");
}

TEST(NSDateFormatter, IsLenientAboutTheTextAndStrictAboutTheCalendar) {
  for (const bool lenient : {false, true}) {
    const auto formatter = shortFormatter();
    formatter->setLenient(lenient);
    EXPECT_EQ(formatter->isLenient(), lenient);
    for (const char* typed : {"2/3/21", "2/3/2021", "02/03/2021", "2-3-21", "02.03.2021",
                              "2 3 2021", "Feb 3, 2021", "2/3/21 ", "2/3/21\t\n"})
      EXPECT_EQ(text(formatter->dateFromString(typed)), "2021-02-03T00:00:00Z") << typed;
    for (const char* typed : {"13/2/2021", "2/30/2021", "2/29/2023", "0/1/2021", "2/0/2021",
                              "2/3/21x", "2/3/21 x", "2/3", "", " ", "x"})
      EXPECT_FALSE(formatter->dateFromString(typed)) << typed;
  }
}

TEST(NSDateFormatter, ReadsYearsOfTwoDigitsFromTheirStart) {
  const auto formatter = shortFormatter();
  const auto read = [&formatter](const char* typed) {
    return text(formatter->dateFromString(typed)).substr(0, 10);
  };
  EXPECT_EQ(read("1/1/50"), "1950-01-01");
  EXPECT_EQ(read("12/31/49"), "2049-12-31");
  EXPECT_EQ(read("1/2/5"), "0005-01-02");
  EXPECT_EQ(read("1/2/105"), "0105-01-02");
  formatter->setTwoDigitStartDate(at("1980-07-01T00:00:00Z"));
  EXPECT_EQ(read("7/1/80"), "1980-07-01");
  EXPECT_EQ(read("6/30/80"), "2080-06-30");
  EXPECT_EQ(read("1/1/79"), "2079-01-01");
  formatter->setTwoDigitStartDate(std::nullopt);
  EXPECT_FALSE(formatter->twoDigitStartDate());
  EXPECT_EQ(read("1/1/50"), "1950-01-01");
  formatter->setTwoDigitStartDate(
      NSDate::dateWithTimeIntervalSince1970(std::numeric_limits<double>::infinity()));
  EXPECT_FALSE(formatter->dateFromString("13/1/50"));
}

TEST(NSDateFormatter, FillsInWhatTheFormatDoesNotAskFor) {
  EXPECT_EQ(text(formatted("HH:mm")->dateFromString("09:30")), "2000-01-01T09:30:00Z");
  EXPECT_EQ(text(formatted("M/d")->dateFromString("2/29")), "2000-02-29T00:00:00Z");
  EXPECT_EQ(text(formatted("yyyy")->dateFromString("2021")), "2021-01-01T00:00:00Z");
}

TEST(NSDateFormatter, ReadsTheBeginningOfARange) {
  const auto formatter = shortFormatter();
  std::optional<NSDate> date;
  NSRange range{3, 12};
  EXPECT_TRUE(formatter->getObjectValue(&date, "on 2/13/2021 ok", &range));
  EXPECT_EQ(text(date), "2021-02-13T00:00:00Z");
  EXPECT_EQ(range, (NSRange{3, 9}));
  range = {2, 100};  // cut to the text, whose first character has two units
  EXPECT_TRUE(formatter->getObjectValue(&date, "👍2/13/2021", &range));
  EXPECT_EQ(range, (NSRange{2, 9}));
  range = {20, 3};
  EXPECT_FALSE(formatter->getObjectValue(&date, "2/13/2021", &range));
  EXPECT_EQ(range, (NSRange{20, 3}));
  EXPECT_EQ(text(date), "2021-02-13T00:00:00Z");
  EXPECT_TRUE(formatter->getObjectValue(nullptr, "2/13/2021"));
}

TEST(NSDateFormatter, TellsWhyATextIsNoDate) {
  std::shared_ptr<const NSError> error;
  std::optional<NSDate> date;
  EXPECT_FALSE(shortFormatter()->getObjectValue(&date, "x", nullptr, &error));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), 2048);
  EXPECT_EQ(error->localizedDescription(), "The text is no date of the format “M/d/yy”.");
}

TEST(NSDateFormatter, LooksAtSoMuchOfATextAndNoMore) {
  const auto formatter = shortFormatter();
  const std::string padding(NSDateFormatter::kLongestText - 6, ' ');
  EXPECT_TRUE(formatter->dateFromString("2/3/21" + padding));
  EXPECT_FALSE(formatter->dateFromString("2/3/21 " + padding));
  std::optional<NSDate> date;
  NSRange range{0, 1'000'000};
  EXPECT_TRUE(formatter->getObjectValue(&date, "2/3/21 " + std::string(1'000'000, ' '), &range));
  EXPECT_EQ(range.length, 6U);
}

struct CalendarCase {
  const char *locale, *calendar, *shortText, *longText;
};
const CalendarCase kCalendars[] = {
    {"th_TH", "buddhist", "5/3/67", "5 มีนาคม 2567"},
    {"fa_IR", "persian", "۱۴۰۲/۱۲/۱۵", "۱۵ اسفند ۱۴۰۲"},
    {"ar_SA", "islamic-umalqura", "٢٤‏/٨‏/١٤٤٥ هـ", "٢٤ شعبان ١٤٤٥ هـ"},
    {"ja_JP@calendar=japanese", "japanese", "R6/3/5", "令和6年3月5日"},
    {"he_IL@calendar=hebrew", "hebrew", "כ״ה באדר א׳ תשפ״ד", "כ״ה באדר א׳ תשפ״ד"},
};

TEST(NSDateFormatter, PrintsAndReadsTheLocalesOwnCalendar) {
  const NSDate date = at("2024-03-05T00:00:00Z");
  for (const CalendarCase& row : kCalendars) {
    const auto formatter = formatterOf(row.locale);
    EXPECT_EQ(formatter->calendar()->calendarIdentifier(), row.calendar);
    formatter->setDateStyle(NSDateFormatterShortStyle);
    EXPECT_EQ(formatter->stringFromDate(date), row.shortText);
    formatter->setDateStyle(NSDateFormatterLongStyle);
    EXPECT_EQ(formatter->stringFromDate(date), row.longText);
  }
}

TEST(NSDateFormatter, ReadsBackWhatOtherCalendarsPrint) {
  for (const CalendarCase& row : kCalendars) {
    const auto formatter = formatterOf(row.locale);
    for (const auto style : {NSDateFormatterMediumStyle, NSDateFormatterLongStyle}) {
      formatter->setDateStyle(style);
      for (double day = 7305; day < 23000; day += 97) {  // 1990 to 2032
        const NSDate date = NSDate::dateWithTimeIntervalSince1970(day * 86400);
        const std::string printed = formatter->stringFromDate(date);
        ASSERT_EQ(text(formatter->dateFromString(printed)), text(date))
            << row.locale << " " << printed;
      }
    }
  }
}

TEST(NSDateFormatter, TakesTheKindAndTheWeeksOfACalendar) {
  const auto formatter = formatterOf("en_US", "Asia/Tokyo");
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierBuddhist);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  calendar->setFirstWeekday(2);
  calendar->setMinimumDaysInFirstWeek(4);
  formatter->setCalendar(calendar);
  formatter->setDateFormat("y YYYY-'W'ww HH:mm");
  EXPECT_EQ(formatter->stringFromDate(at("2024-12-30T00:00:00Z")), "2567 2025-W01 09:00");
  const auto used = formatter->calendar();
  EXPECT_EQ(used->calendarIdentifier(), NSCalendarIdentifierBuddhist);
  EXPECT_EQ(used->timeZone()->name(), "Asia/Tokyo");
  used->setFirstWeekday(7);
  EXPECT_EQ(formatter->calendar()->firstWeekday(), 2);
  calendar->setFirstWeekday(5);
  EXPECT_EQ(formatter->calendar()->firstWeekday(), 2);
  formatter->setCalendar(nullptr);
  EXPECT_EQ(formatter->calendar()->calendarIdentifier(), NSCalendarIdentifierGregorian);
  EXPECT_EQ(formatter->stringFromDate(at("2024-12-30T00:00:00Z")), "2024 2025-W01 09:00");
}

TEST(NSDateFormatter, CountsTheGregorianCalendarThroughAllTime) {
  EXPECT_EQ(formatted("G y-MM-dd")->stringFromDate(at("1582-10-10T00:00:00Z")), "AD 1582-10-10");
  EXPECT_EQ(text(formatted("y-MM-dd")->dateFromString("1582-10-10")), "1582-10-10T00:00:00Z");
}

TEST(NSDateFormatter, TellsNearDaysInWords) {
  const Replaced<std::function<NSDate()>> clock(NSDate::setClock,
                                                [] { return at("2024-02-29T12:00:00Z"); });
  const auto formatter = shortFormatter();
  formatter->setDoesRelativeDateFormatting(true);
  EXPECT_TRUE(formatter->doesRelativeDateFormatting());
  EXPECT_EQ(formatter->stringFromDate(at("2024-02-29T00:00:00Z")), "Today");
  EXPECT_EQ(formatter->stringFromDate(at("2024-03-01T23:59:59Z")), "Tomorrow");
  EXPECT_EQ(formatter->stringFromDate(at("2024-02-28T00:00:00Z")), "Yesterday");
  EXPECT_EQ(formatter->stringFromDate(at("2024-03-05T00:00:00Z")), "3/5/24");
  EXPECT_EQ(text(formatter->dateFromString("yesterday ")), "2024-02-28T00:00:00Z");
  EXPECT_EQ(text(formatter->dateFromString("3/5/24")), "2024-03-05T00:00:00Z");
  EXPECT_FALSE(formatter->dateFromString("someday"));
  formatter->setTimeStyle(NSDateFormatterShortStyle);
  EXPECT_EQ(formatter->stringFromDate(at("2024-02-29T09:30:00Z")), "Today, 9:30\u202fAM");
  formatter->setDateFormat("yyyy");
  EXPECT_EQ(formatter->stringFromDate(at("2024-02-29T09:30:00Z")), "2024");
}

TEST(NSDateFormatter, NamesMonthsAndWeekdays) {
  const auto polish = formatterOf("pl_PL");
  EXPECT_EQ(polish->monthSymbols().at(0), "stycznia");
  EXPECT_EQ(polish->standaloneMonthSymbols().at(0), "styczeń");
  const auto english = formatterOf("en_US");
  EXPECT_EQ(english->monthSymbols().size(), 12U);
  EXPECT_EQ(english->shortMonthSymbols().at(1), "Feb");
  EXPECT_EQ(english->veryShortMonthSymbols().at(1), "F");
  EXPECT_EQ(english->shortStandaloneMonthSymbols().at(11), "Dec");
  EXPECT_EQ(english->weekdaySymbols().at(0), "Sunday");
  EXPECT_THAT(english->shortWeekdaySymbols(),
              ElementsAre("Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"));
  EXPECT_EQ(english->veryShortWeekdaySymbols().at(6), "S");
}

TEST(NSDateFormatter, TakesTemplates) {
  const auto formatter = formatterOf("de_DE");
  formatter->setLocalizedDateFormatFromTemplate("yMMMM");
  EXPECT_EQ(formatter->dateFormat(), "MMMM y");
  const Replaced locale(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("en_US"));
  EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate("yMd", 0, nullptr), "M/d/y");
  EXPECT_EQ(NSDateFormatter::dateFormatFromTemplate("", 0, nullptr), "");
}

TEST(NSDateFormatter, PrintsNothingForWhatIsNoDateOrTooFarAway) {
  const auto formatter = shortFormatter();
  EXPECT_FALSE(formatter->stringForObjectValue(nullptr));
  EXPECT_FALSE(formatter->stringForObjectValue("2/3/21"));
  EXPECT_FALSE(formatter->stringForObjectValue(12));
  const auto hebrew = formatterOf("he_IL@calendar=hebrew");
  hebrew->setDateStyle(NSDateFormatterLongStyle);
  for (const double seconds :
       {1e15, -1e15, 1e300, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    const NSDate date = NSDate::dateWithTimeIntervalSince1970(seconds);
    EXPECT_FALSE(formatter->stringForObjectValue(date)) << seconds;
    EXPECT_FALSE(hebrew->stringForObjectValue(date)) << seconds;
    EXPECT_EQ(formatter->stringFromDate(date), "");
  }
  EXPECT_TRUE(formatter->stringForObjectValue(NSDate::dateWithTimeIntervalSince1970(1e14)));
  EXPECT_FALSE(hebrew->stringForObjectValue(NSDate::dateWithTimeIntervalSince1970(1e14)));
}

TEST(NSDateFormatter, CutsFractionsButNotWhatADoubleLacks) {
  const auto formatter = formatted("HH:mm:ss.SSS");
  EXPECT_EQ(formatter->stringFromDate(NSDate::dateWithTimeIntervalSince1970(1700000000.123)),
            "22:13:20.123");
  EXPECT_EQ(formatter->stringFromDate(NSDate::dateWithTimeIntervalSince1970(59.9996)),
            "00:00:59.999");
}

}  // namespace
}  // namespace ORLFoundation
