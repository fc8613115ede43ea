#include "values/date_text.h"

#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "cli/failure.h"
#include "session.h"

namespace {

using namespace ORLFoundation;
using orlftest::calendarIn;
using orlftool::dateTimeText;
using orlftool::readDate;

struct ReadRow {
  std::string name, zone, text, printed;
};

const ReadRow kReadRows[] = {
    {"ADateIsTheFirstMomentOfItsDay", "America/New_York", "2024-01-31",
     "2024-01-31T00:00:00-05:00"},
    {"ATimeWithoutSeconds", "America/New_York", "2024-07-31T09:30", "2024-07-31T09:30:00-04:00"},
    {"ABlankInPlaceOfTheT", "UTC", "2024-07-31 09:30:15", "2024-07-31T09:30:15+00:00"},
    {"AnOffsetWinsOverTheZone", "America/New_York", "2024-01-31T09:30:00+01:00",
     "2024-01-31T03:30:00-05:00"},
    {"AnOffsetWithoutColon", "UTC", "2024-01-31T09:30:00-0530", "2024-01-31T15:00:00+00:00"},
    {"AnOffsetOfHoursAlone", "UTC", "2024-01-31T09:30:00-05", "2024-01-31T14:30:00+00:00"},
    {"AnOffsetWithSeconds", "UTC", "1880-01-01T00:00:00-04:56:02", "1880-01-01T04:56:02+00:00"},
    {"ZIsGMT", "Asia/Kathmandu", "2024-01-31T00:00:00Z", "2024-01-31T05:45:00+05:45"},
    {"FractionsStay", "UTC", "2024-01-31T09:30:00.25Z", "2024-01-31T09:30:00.25+00:00"},
    {"ATimeInAGapMovesOnByItsLength", "America/New_York", "2024-03-10T02:30:00",
     "2024-03-10T03:30:00-04:00"},
    {"ADoubledTimeIsItsFirstOccurrence", "America/New_York", "2024-11-03T01:30:00",
     "2024-11-03T01:30:00-04:00"},
    {"ADayWithoutMidnightBeginsLater", "America/Sao_Paulo", "2018-11-04",
     "2018-11-04T01:00:00-02:00"},
    {"ALeapDay", "UTC", "2000-02-29", "2000-02-29T00:00:00+00:00"},
    {"ADateBefore1970", "UTC", "1923-05-06T07:08:09", "1923-05-06T07:08:09+00:00"},
    {"AYearOfSixDigits", "UTC", "400000-02-29T12:00:00Z", "400000-02-29T12:00:00+00:00"},
};

class ReadDate : public testing::TestWithParam<ReadRow> {};

TEST_P(ReadDate, PrintsAsExpected) {
  const ReadRow& row = GetParam();
  const auto calendar = calendarIn(row.zone);
  const std::optional<NSDate> date = readDate(row.text, *calendar);
  ASSERT_TRUE(date) << row.text;
  EXPECT_EQ(dateTimeText(*date, *calendar), row.printed);
}

TEST_P(ReadDate, ReadsBackWhatItPrints) {
  const ReadRow& row = GetParam();
  const auto calendar = calendarIn(row.zone);
  const std::optional<NSDate> date = readDate(row.printed, *calendar);
  ASSERT_TRUE(date) << row.printed;
  EXPECT_EQ(dateTimeText(*date, *calendar), row.printed);
}

INSTANTIATE_TEST_SUITE_P(Rows, ReadDate, testing::ValuesIn(kReadRows),
                         [](const auto& row) { return row.param.name; });

TEST(ReadDateText, RefusesOtherTextAndDaysThatDoNotExist) {
  const auto calendar = calendarIn("UTC");
  for (const char* text : {"",
                           "2024",
                           "2024-01",
                           "2024-1-31",
                           "24-01-31",
                           "2024-13-01",
                           "2024-00-10",
                           "2024-02-30",
                           "2023-02-29",
                           "1900-02-29",
                           "2024-04-31",
                           "2024-01-00",
                           "2024-01-32",
                           "0000-01-01",
                           "2024-01-31T",
                           "2024-01-31T9:30",
                           "2024-01-31T24:00",
                           "2024-01-31T09:60",
                           "2024-01-31T09:30:60",
                           "2024-01-31T09:30:00.",
                           "2024-01-31T09:30:00.1234567890",
                           "2024-01-31T09:30:00+24:00",
                           "2024-01-31T09:30:00+1",
                           "2024-01-31T09:30:00+01:60",
                           "2024-01-31T09:30:00Zx",
                           "2024-01-31x",
                           "2024-01-31 ",
                           " 2024-01-31",
                           "4000000-01-01",
                           "2024/01/31",
                           "\xFF\xFE",
                           "tomorrow"})
    EXPECT_FALSE(readDate(text, *calendar)) << text;
}

TEST(ReadDateText, OptionIsNamedInTheFailure) {
  const auto calendar = calendarIn("UTC");
  try {
    (void)orlftool::readDateOption("--start", "soon", *calendar);
    FAIL() << "no failure";
  } catch (const orlftool::UsageFailure& failure) {
    EXPECT_EQ(std::string(failure.what()),
              "--start: expected an ISO 8601 date or date-time such as 2024-01-31 or "
              "2024-01-31T09:30:00-05:00, got 'soon'");
  }
}

TEST(DateText, ShortFormIsForTheFirstMomentOfADay) {
  const auto calendar = calendarIn("America/Sao_Paulo");
  const auto shortText = [&](const char* text) {
    return orlftool::shortDateText(readDate(text, *calendar).value(), *calendar);
  };
  EXPECT_EQ(shortText("2018-11-04"), "2018-11-04");
  EXPECT_EQ(shortText("2018-11-05T00:00:00"), "2018-11-05");
  EXPECT_EQ(shortText("2018-11-05T00:00:01"), "2018-11-05T00:00:01-02:00");
}

TEST(DateText, EveryDayOfFourCenturiesReadsBack) {
  const auto calendar = calendarIn("UTC");
  const NSDate first = readDate("1900-01-01", *calendar).value();
  constexpr int kDays = 146097;
  for (int day = 0; day < kDays; ++day) {
    const NSDate date = first.dateByAddingTimeInterval(day * 86400.0);
    ASSERT_EQ(readDate(orlftool::shortDateText(date, *calendar), *calendar), date) << day;
  }
}

TEST(MakeCalendar, TakesWeeksFromTheRegion) {
  EXPECT_EQ(orlftool::makeCalendar("UTC", "en_US")->firstWeekday(), 1);
  EXPECT_EQ(orlftool::makeCalendar("UTC", "en_US")->minimumDaysInFirstWeek(), 1);
  EXPECT_EQ(orlftool::makeCalendar("UTC", "de_DE")->firstWeekday(), 2);
  EXPECT_EQ(orlftool::makeCalendar("UTC", "de_DE")->minimumDaysInFirstWeek(), 4);
}

TEST(MakeCalendar, RefusesUnknownZonesAndLocales) {
  EXPECT_THROW((void)orlftool::makeCalendar("Mars/Base", "en_US"), orlftool::UsageFailure);
  EXPECT_THROW((void)orlftool::makeCalendar("", "en_US"), orlftool::UsageFailure);
  for (const char* locale : {"", "qq_QQ", "en_QQ", "xx", "english please"})
    EXPECT_THROW((void)orlftool::makeCalendar("UTC", locale), orlftool::UsageFailure) << locale;
  for (const char* locale : {"en", "de_DE", "pt-BR", "zh_Hant_TW", "ar_EG"})
    EXPECT_NO_THROW((void)orlftool::makeCalendar("UTC", locale)) << locale;
}

}  // namespace
