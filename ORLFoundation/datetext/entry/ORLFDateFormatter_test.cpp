#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>

#include <ORLFoundation/datetext/entry/ORLFDateFormatter_testing.h>
#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::PinnedWorld;

NSDate dateAt(const char* text) { return *orlftest::dateFromVector(text); }

class DateFields : public testing::Test {
 protected:
  PinnedWorld world_{"en_US", "UTC", dateAt("2021-02-10T12:00:00Z")};
  std::shared_ptr<ORLFDateFormatter> formatter_ = std::make_shared<ORLFDateFormatter>();
};

TEST_F(DateFields, BeginInTheShortStyle) {
  EXPECT_EQ(formatter_->className(), "ORLFDateFormatter");
  EXPECT_EQ(formatter_->dateStyle(), NSDateFormatterShortStyle);
  EXPECT_EQ(formatter_->timeStyle(), NSDateFormatterNoStyle);
  EXPECT_EQ(formatter_->dateFormat(), "M/d/yy");
  EXPECT_TRUE(formatter_->recognized());
  EXPECT_TRUE(formatter_->monthFirst());
  EXPECT_FALSE(formatter_->allowNilDates());
  EXPECT_FALSE(formatter_->forceWideYear());
  EXPECT_FALSE(formatter_->forceWideMonth());
  EXPECT_FALSE(formatter_->forceWideDay());
  EXPECT_FALSE(formatter_->minimunDate());
  ASSERT_TRUE(formatter_->shortDateFormatter());
  EXPECT_TRUE(formatter_->shortDateFormatter()->isLenient());
  EXPECT_EQ(formatter_->shortDateFormatter()->dateFormat(), "M/d/yy");
}

TEST_F(DateFields, TakeTheClassesMinimumWhenTheyAreMade) {
  ORLFDateFormatter::setDefaultMinimunDate(dateAt("2000-01-01T00:00:00Z"));
  EXPECT_EQ(ORLFDateFormatter::defaultMinimunDate(), dateAt("2000-01-01T00:00:00Z"));
  const ORLFDateFormatter fresh;
  ORLFDateFormatter::setDefaultMinimunDate(std::nullopt);
  EXPECT_EQ(fresh.minimunDate(), dateAt("2000-01-01T00:00:00Z"));
  EXPECT_FALSE(formatter_->minimunDate());
}

TEST_F(DateFields, UnderstandTheShortFormatOfTheProcessNotTheirOwn) {
  formatter_->setLocale(std::make_shared<NSLocale>("de_DE"));
  formatter_->updateFormatInfo();
  EXPECT_TRUE(formatter_->monthFirst());
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("de_DE"));
  EXPECT_TRUE(formatter_->monthFirst());
  formatter_->setDateFormat("yyyy");
  EXPECT_FALSE(formatter_->monthFirst());
  EXPECT_EQ(formatter_->shortDateFormatter()->dateFormat(), "dd.MM.yy");
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("en_US"));
  formatter_->setDateStyle(NSDateFormatterLongStyle);
  EXPECT_TRUE(formatter_->monthFirst());
}

TEST_F(DateFields, TellAnUnknownShortFormatInTheLog) {
  const LogCapture log;
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("sv_SE"));
  const ORLFDateFormatter fresh;
  // The style is set, and then the format looked at once more.
  EXPECT_EQ(log.lines(), std::vector<std::string>(2, "Unrecognized date format string y-MM-dd"));
  formatter_->setDateFormat("yyyy");
  EXPECT_EQ(log.lines().size(), 3U);
}

TEST_F(DateFields, LookAtNoShortFormatWithoutADateStyle) {
  const LogCapture log;
  formatter_->setDateStyle(NSDateFormatterNoStyle);
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("sv_SE"));
  formatter_->updateFormatInfo();
  formatter_->setDateFormat("yyyy");
  EXPECT_TRUE(log.lines().empty());
  EXPECT_TRUE(formatter_->recognized());
  EXPECT_TRUE(formatter_->shortDateFormatter());
}

TEST_F(DateFields, PrintWidePartsAndKeepTheirFormat) {
  const NSDate date = dateAt("2024-03-05T00:00:00Z");
  formatter_->setForceWideMonth(true);
  EXPECT_EQ(formatter_->stringFromDate(date), "03/5/24");
  EXPECT_EQ(formatter_->dateFormat(), "M/d/yy");
  formatter_->setForceWideYear(true);
  formatter_->setForceWideDay(true);
  EXPECT_EQ(formatter_->stringForObjectValue(date), "03/05/2024");
  formatter_->setDateFormat("d.M.y 'd'");
  EXPECT_EQ(formatter_->stringFromDate(date), "05.03.2024 d");
  EXPECT_EQ(formatter_->dateFormat(), "d.M.y 'd'");
}

TEST_F(DateFields, PrintTheYearWideOutsideItsHundredYears) {
  const auto printed = [this](const char* date) {
    return formatter_->stringFromDate(dateAt(date));
  };
  EXPECT_EQ(printed("1949-12-31T23:59:59Z"), "12/31/1949");
  EXPECT_EQ(printed("1950-01-01T00:00:00Z"), "1/1/50");
  EXPECT_EQ(printed("2049-12-31T23:59:59Z"), "12/31/49");
  EXPECT_EQ(printed("2050-01-01T00:00:00Z"), "1/1/2050");
  formatter_->setTwoDigitStartDate(std::nullopt);
  EXPECT_EQ(printed("2050-01-01T00:00:00Z"), "1/1/50");
  // A hundred years after 29 February of 2000 is 28 February.
  formatter_->setTwoDigitStartDate(dateAt("2000-02-29T00:00:00Z"));
  EXPECT_EQ(printed("2100-02-27T00:00:00Z"), "2/27/00");
  EXPECT_EQ(printed("2100-02-28T00:00:00Z"), "2/28/2100");
}

TEST_F(DateFields, LeaveToTheBaseClassWhatIsNotWidened) {
  formatter_->setForceWideYear(true);
  formatter_->setForceWideMonth(true);
  EXPECT_FALSE(formatter_->stringForObjectValue(nullptr));
  EXPECT_FALSE(formatter_->stringForObjectValue("2/13/2021"));
  EXPECT_FALSE(formatter_->stringForObjectValue(
      NSDate::dateWithTimeIntervalSince1970(std::numeric_limits<double>::infinity())));
  formatter_->setDoesRelativeDateFormatting(true);
  EXPECT_EQ(formatter_->stringFromDate(dateAt("2024-03-05T00:00:00Z")), "3/5/24");
  EXPECT_EQ(formatter_->stringFromDate(dateAt("2021-02-10T00:00:00Z")), "Today");
  formatter_->setDoesRelativeDateFormatting(false);
  formatter_->setDateStyle(NSDateFormatterNoStyle);
  formatter_->setDateFormat("M/d/yy");
  EXPECT_EQ(formatter_->stringFromDate(dateAt("2024-03-05T00:00:00Z")), "3/5/24");
}

TEST_F(DateFields, ReadTheTestingDefaultOnce) {
  EXPECT_FALSE(ORLFDateFormatter::useTestingFormat());
  const NSStandardUserDefaultsInMemory defaults;
  NSUserDefaults::standardUserDefaults()->setBool(true, ORLFDateFormatterUseTestingFormatKey);
  EXPECT_FALSE(ORLFDateFormatter::useTestingFormat());
}

TEST_F(DateFields, AreCopiedAndUnderstandTheShortFormatAnew) {
  formatter_->setAllowNilDates(true);
  formatter_->setForceWideYear(true);
  formatter_->setForceWideMonth(true);
  formatter_->setForceWideDay(true);
  formatter_->setMinimunDate(dateAt("2000-01-01T00:00:00Z"));
  formatter_->setDateFormat("d M y");
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("de_DE"));
  const auto copy = copyOf(formatter_);
  EXPECT_NE(copy, formatter_);
  EXPECT_EQ(copy->className(), "ORLFDateFormatter");
  EXPECT_TRUE(copy->allowNilDates());
  EXPECT_TRUE(copy->forceWideYear());
  EXPECT_TRUE(copy->forceWideMonth());
  EXPECT_TRUE(copy->forceWideDay());
  EXPECT_EQ(copy->minimunDate(), dateAt("2000-01-01T00:00:00Z"));
  EXPECT_EQ(copy->dateFormat(), "d M y");
  EXPECT_EQ(copy->locale()->localeIdentifier(), "en_US");
  EXPECT_FALSE(copy->monthFirst());
  EXPECT_TRUE(copy->recognized());
  EXPECT_TRUE(formatter_->monthFirst());
  // Of a short format that is not understood a copy knows nothing, and says so once.
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("sv_SE"));
  const LogCapture log;
  const auto unknowing = copyOf(formatter_);
  EXPECT_FALSE(unknowing->recognized());
  EXPECT_FALSE(unknowing->shortDateFormatter());
  EXPECT_EQ(log.lines().size(), 1U);
}

TEST_F(DateFields, AreArchivedWithoutFormatAndFields) {
  formatter_->setLocale(std::make_shared<NSLocale>("de_DE"));
  formatter_->setTimeZone(NSTimeZone::timeZoneWithName("Asia/Tokyo"));
  formatter_->setTwoDigitStartDate(dateAt("2000-01-01T00:00:00Z"));
  formatter_->setTimeStyle(NSDateFormatterMediumStyle);
  formatter_->setDateFormat("yyyy");
  formatter_->setAllowNilDates(true);
  formatter_->setForceWideYear(true);
  formatter_->setForceWideMonth(true);
  formatter_->setForceWideDay(true);
  formatter_->setMinimunDate(dateAt("1990-01-01T00:00:00Z"));
  ORLFDateFormatter::setDefaultMinimunDate(dateAt("2000-01-01T00:00:00Z"));
  const auto read = orlftest::archivedAndRead<ORLFDateFormatter>(formatter_);
  ORLFDateFormatter::setDefaultMinimunDate(std::nullopt);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->minimunDate(), dateAt("2000-01-01T00:00:00Z"));
  EXPECT_EQ(read->dateStyle(), NSDateFormatterShortStyle);
  EXPECT_EQ(read->timeStyle(), NSDateFormatterMediumStyle);
  EXPECT_EQ(read->dateFormat(), "dd.MM.yy, HH:mm:ss");
  EXPECT_EQ(read->timeZone()->name(), "Asia/Tokyo");
  EXPECT_EQ(read->twoDigitStartDate(), dateAt("2000-01-01T00:00:00Z"));
  EXPECT_FALSE(read->allowNilDates());
  EXPECT_FALSE(read->forceWideYear());
  EXPECT_FALSE(read->forceWideMonth());
  EXPECT_FALSE(read->forceWideDay());
  EXPECT_TRUE(read->recognized());
  EXPECT_TRUE(read->monthFirst());
  // Where the base class is named, it opens too.
  const auto base = orlftest::archivedAndRead<NSDateFormatter>(formatter_);
  ASSERT_TRUE(base);
  EXPECT_EQ(base->className(), "ORLFDateFormatter");
}

TEST_F(DateFields, HaveKeysAndObservers) {
  std::vector<std::string> changed;
  const auto token = formatter_->addObserver(
      "forceWideYear", 0, [&changed](const NSKeyValueChange&) { changed.emplace_back("year"); });
  formatter_->setForceWideYear(true);
  EXPECT_EQ(changed.size(), 1U);
  for (const char* key : {"allowNilDates", "forceWideMonth", "forceWideDay"}) {
    EXPECT_EQ(formatter_->valueForKey(key), id(false)) << key;
    formatter_->setValueForKey(true, key);
    EXPECT_EQ(formatter_->valueForKey(key), id(true)) << key;
  }
  formatter_->setValueForKey(dateAt("2000-01-01T00:00:00Z"), "minimunDate");
  EXPECT_EQ(formatter_->minimunDate(), dateAt("2000-01-01T00:00:00Z"));
  EXPECT_EQ(formatter_->valueForKey("recognized"), id(true));
  EXPECT_EQ(formatter_->valueForKey("monthFirst"), id(true));
}

TEST_F(DateFields, KnowTheDaysOfAMonth) {
  const auto calendar = orlftest::calendarIn("UTC");
  EXPECT_EQ(ORLFDateFormatter::dayRangeForMonth(2, 2024, *calendar), (NSRange{1, 29}));
  EXPECT_EQ(ORLFDateFormatter::dayRangeForMonth(2, 99'999'999, *calendar).length, 0U);
}

// What one of the threads does to the one formatter; every answer is one of a whole setting.
void useFormatter(ORLFDateFormatter& formatter, int turn, std::atomic<int>& faults) {
  const NSDate date = dateAt("2024-03-05T00:00:00Z");
  const auto expect = [&faults](bool holds) { faults += holds ? 0 : 1; };
  switch (turn % 8) {
    case 0:
      expect(formatter.dateFromString("13/2/2021") == dateAt("2021-02-13T00:00:00Z"));
      break;
    case 1: {
      const std::string text = formatter.stringFromDate(date);
      expect(text == "03/5/2024" || text == "2024-03-05" || text == "March 5, 2024");
      break;
    }
    case 2:
      expect(copyOf(formatter.shared_from_this()) != nullptr);
      break;
    case 3:
      formatter.setDateFormat("yyyy-MM-dd");
      break;
    case 4:
      formatter.setDateStyle(NSDateFormatterShortStyle);
      break;
    case 5: {
      // Refused, by a copy that is made under the lock.
      std::shared_ptr<const NSError> error;
      expect(!formatter.getObjectValue(nullptr, "2/13/1999", nullptr, &error) && error != nullptr);
      break;
    }
    case 6:
      formatter.setDateStyle(NSDateFormatterLongStyle);
      break;
    default:
      formatter.setMinimunDate(dateAt("2000-01-01T00:00:00Z"));
      expect(formatter.recognized() && formatter.monthFirst());
  }
}

TEST_F(DateFields, AreUsedByEightThreadsAtOnce) {
  formatter_->setForceWideYear(true);
  formatter_->setForceWideMonth(true);
  formatter_->setMinimunDate(dateAt("2000-01-01T00:00:00Z"));
  std::atomic<int> faults = 0;
  constexpr int kThreads = 8;
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([this, thread, &faults] {
      for (int turn = 0; turn < 200; ++turn) useFormatter(*formatter_, thread + turn, faults);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(faults, 0);
}

}  // namespace
}  // namespace ORLFoundation
