#include <ORLFoundation/platform/format/NSDateFormatter.h>

#include <ORLFoundation/platform/archive/NSKeyedArchiver_testing.h>
#include <ORLFoundation/platform/format/NSDateFormatter_testing.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace ORLFoundation {
namespace {

void expectSameSettings(const NSDateFormatter& left, const NSDateFormatter& right) {
  EXPECT_EQ(left.dateStyle(), right.dateStyle());
  EXPECT_EQ(left.timeStyle(), right.timeStyle());
  EXPECT_EQ(left.dateFormat(), right.dateFormat());
  EXPECT_EQ(left.locale()->localeIdentifier(), right.locale()->localeIdentifier());
  EXPECT_EQ(left.timeZone(), right.timeZone());
  EXPECT_TRUE(left.calendar()->isEqual(right.calendar().get()));
  EXPECT_EQ(left.isLenient(), right.isLenient());
  EXPECT_EQ(left.twoDigitStartDate(), right.twoDigitStartDate());
  EXPECT_EQ(left.doesRelativeDateFormatting(), right.doesRelativeDateFormatting());
}

std::shared_ptr<NSDateFormatter> unusualFormatter() {
  const auto formatter = orlftest::formatterOf("de_AT", "America/New_York");
  formatter->setDateStyle(NSDateFormatterLongStyle);
  formatter->setTimeStyle(NSDateFormatterMediumStyle);
  formatter->setLenient(true);
  formatter->setTwoDigitStartDate(std::nullopt);
  formatter->setDoesRelativeDateFormatting(true);
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierPersian);
  calendar->setFirstWeekday(3);
  calendar->setMinimumDaysInFirstWeek(5);
  formatter->setCalendar(calendar);
  return formatter;
}

TEST(NSDateFormatter, IsArchived) {
  const auto formatter = unusualFormatter();
  for (const char* format : {"", "yyyy 'x'"}) {
    if (*format != '\0') formatter->setDateFormat(format);
    const auto read = orlftest::archivedAndRead<NSDateFormatter>(formatter);
    ASSERT_TRUE(read);
    expectSameSettings(*formatter, *read);
    read->setTimeStyle(NSDateFormatterNoStyle);
    formatter->setTimeStyle(NSDateFormatterNoStyle);
    EXPECT_EQ(read->dateFormat(), formatter->dateFormat());
  }
}

TEST(NSDateFormatter, IsCopiedWithAllSettings) {
  const auto formatter = unusualFormatter();
  const auto copy = copyOf(formatter);
  expectSameSettings(*formatter, *copy);
  copy->setDateFormat("yyyy");
  EXPECT_NE(formatter->dateFormat(), "yyyy");
}

TEST(NSDateFormatter, DoesNotCopyToAnotherClassInSilence) {
  struct Careless : NSDateFormatter {};
  EXPECT_THROW(static_cast<void>(std::make_shared<Careless>()->copy()), NSException);
}

}  // namespace
}  // namespace ORLFoundation
