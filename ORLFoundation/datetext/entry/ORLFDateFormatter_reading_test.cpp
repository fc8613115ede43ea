#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>

#include <ORLFoundation/datetext/entry/ORLFDateFormatter_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>

#include <limits>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::PinnedWorld;

NSDate at(const char* text) { return *orlftest::dateFromVector(text); }

class ReadingDates : public testing::Test {
 protected:
  std::string read(const char* typed) const {
    return orlftest::vectorFromDate(formatter_->dateFromString(typed)).substr(0, 10);
  }
  std::shared_ptr<const NSError> errorOf(std::string_view typed) const {
    std::shared_ptr<const NSError> error;
    std::optional<NSDate> date;
    EXPECT_FALSE(formatter_->getObjectValue(&date, typed, nullptr, &error)) << typed;
    EXPECT_FALSE(date);
    return error;
  }

  PinnedWorld world_{"en_US", "UTC", at("2021-02-10T12:00:00Z")};
  std::shared_ptr<ORLFDateFormatter> formatter_ = std::make_shared<ORLFDateFormatter>();
};

std::string textUnder(const NSError& error, std::string_view key) {
  return error.userInfo()->objectForKey(key).as<std::string>().value_or("nil");
}

TEST_F(ReadingDates, TriesTheFormatThenTheShortStyleThenNumbers) {
  EXPECT_EQ(read("2/13/2021"), "2021-02-13");
  EXPECT_EQ(read("13/2/2021"), "2021-02-13");
  EXPECT_EQ(read("2021-02-13"), "2021-02-13");
  EXPECT_EQ(read("2021/13/02"), "2021-02-13");
  EXPECT_EQ(read("5"), "2021-02-05");
  EXPECT_EQ(read("2021"), "2021-01-01");
  EXPECT_EQ(read("3/4"), "2021-03-04");
  for (const char* typed : {"45", "1899", "2300", "31/2/2021"}) EXPECT_EQ(read(typed), "nil");
  formatter_->setDateFormat("yyyy-MM-dd");
  EXPECT_EQ(read("2/13/2021"), "2021-02-13");
}

TEST_F(ReadingDates, PutsAZeroBeforeALoneDigitAtTheEnd) {
  std::optional<NSDate> date;
  NSRange range{0, 5};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "1/2/5", &range));
  EXPECT_EQ(date, at("2005-01-02T00:00:00Z"));
  EXPECT_EQ(range, (NSRange{0, 5}));
  range = {1, 5};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "x1/2/5y", &range));
  EXPECT_EQ(range, (NSRange{1, 5}));
  EXPECT_EQ(read("1/2/5"), "2005-01-02");
  EXPECT_EQ(read("1/2/15"), "2015-01-02");
  // Digits of other scripts too, but no byte that only looks like the end of one.
  EXPECT_EQ(read("١/٢/٥"), "2005-01-02");
  EXPECT_EQ(read("١/٢/١٥"), "2015-01-02");
  EXPECT_EQ(read("1/2/१5"), "2015-01-02");
  range = {0, 5};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "१/२/५", &range));
  EXPECT_EQ(date, at("2005-01-02T00:00:00Z"));
  EXPECT_EQ(range, (NSRange{0, 5}));
  range = {0, 6};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "1/2/5\x80", &range));
  EXPECT_EQ(date, at("0005-01-02T00:00:00Z"));
  EXPECT_EQ(range, (NSRange{0, 5}));
  // Blanks behind the digit, and it is read as it stands.
  EXPECT_EQ(read("1/2/5 "), "0005-01-02");
}

TEST_F(ReadingDates, LeavesTheRangeUnlessAFormatTookSome) {
  std::optional<NSDate> date;
  NSRange range{0, 9};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "13/2/2021", &range));
  EXPECT_EQ(range, (NSRange{0, 9}));
  range = {3, 1};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "in 2021", &range));
  EXPECT_EQ(date, at("2021-02-02T00:00:00Z"));
  EXPECT_EQ(range, (NSRange{3, 1}));
  range = {0, 3};
  EXPECT_FALSE(formatter_->getObjectValue(&date, "abc", &range));
  EXPECT_EQ(range, (NSRange{0, 3}));
  range = {3, 100};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "on 2/13/2021 ok", &range));
  EXPECT_EQ(range, (NSRange{3, 9}));
  // The short style takes some too.
  formatter_->setDateFormat("'on' yyyy");
  range = {0, 9};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "2/13/21 x", &range));
  EXPECT_EQ(date, at("2021-02-13T00:00:00Z"));
  EXPECT_EQ(range, (NSRange{0, 7}));
}

TEST_F(ReadingDates, TakesAnEmptyTextForNoDate) {
  std::optional<NSDate> date = NSDate();
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(formatter_->getObjectValue(&date, "", nullptr, &error));
  EXPECT_FALSE(date);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), 2048);
  EXPECT_EQ(error->localizedDescription(), "This field requires a date.");
  EXPECT_EQ(error->userInfo()->count(), 1U);
  EXPECT_FALSE(formatter_->getObjectValue(nullptr, ""));
  formatter_->setAllowNilDates(true);
  error.reset();
  date = NSDate();
  NSRange range{3, 0};
  EXPECT_TRUE(formatter_->getObjectValue(&date, "2/13/2021", &range, &error));
  EXPECT_FALSE(date);
  EXPECT_FALSE(error);
  // A minimum refuses no nil date.
  formatter_->setMinimunDate(NSDate::distantFuture());
  EXPECT_TRUE(formatter_->getObjectValue(&date, "", nullptr, &error));
}

TEST_F(ReadingDates, SuggestsTheFormatForAnUnreadableText) {
  const auto error = errorOf("31/2/2021");
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), 2048);
  EXPECT_EQ(error->localizedDescription(), "Invalid date format");
  EXPECT_EQ(textUnder(*error, NSLocalizedRecoverySuggestionErrorKey),
            "Please enter a date with the format M/d/yy.");
  EXPECT_EQ(textUnder(*error, NSLocalizedFailureReasonErrorKey), "nil");
  EXPECT_FALSE(formatter_->getObjectValue(nullptr, "31/2/2021"));
}

TEST_F(ReadingDates, RefusesDatesBeforeTheMinimum) {
  formatter_->setMinimunDate(at("2021-02-13T00:00:00Z"));
  EXPECT_EQ(read("2/13/2021"), "2021-02-13");
  for (const char* typed : {"2/12/2021", "12/2/2020", "5"}) {  // by the format and by the scan
    const auto error = errorOf(typed);
    ASSERT_TRUE(error) << typed;
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), 2048);
    EXPECT_EQ(error->localizedDescription(), "Invalid date");
    EXPECT_EQ(textUnder(*error, NSLocalizedFailureReasonErrorKey),
              "Dates before Feb 13, 2021 are not allowed.");
    EXPECT_EQ(textUnder(*error, NSLocalizedRecoverySuggestionErrorKey), "nil");
  }
  std::optional<NSDate> date = NSDate();
  EXPECT_FALSE(formatter_->getObjectValue(&date, "2/12/2021"));
  EXPECT_EQ(date, NSDate());
  formatter_->setMinimunDate(at("2021-02-13T00:00:00Z").dateByAddingTimeInterval(0.001));
  EXPECT_EQ(read("2/13/2021"), "nil");
  formatter_->setMinimunDate(std::nullopt);
  EXPECT_EQ(read("2/12/2021"), "2021-02-12");
}

TEST_F(ReadingDates, PrintsTheMinimumByItsCopyInTheMediumStyle) {
  formatter_->setForceWideDay(true);
  formatter_->setDateFormat("yyyy");
  formatter_->setMinimunDate(at("2021-02-05T00:00:00Z"));
  EXPECT_EQ(textUnder(*errorOf("2020"), NSLocalizedFailureReasonErrorKey),
            "Dates before Feb 05, 2021 are not allowed.");
  EXPECT_EQ(formatter_->dateFormat(), "yyyy");
}

// The words of a table of the main bundle while it lives.
class Words {
 public:
  explicit Words(NSBundle::Table words) {
    NSBundle::mainBundle()->setLocalizedStrings("Localizable", std::move(words));
  }
  Words(const Words&) = delete;
  Words& operator=(const Words&) = delete;
  ~Words() { NSBundle::mainBundle()->setLocalizedStrings("Localizable", {}); }
};

TEST_F(ReadingDates, SpeaksTheMainBundlesWords) {
  const Words words({{"This field requires a date.", "Datum fehlt."},
                     {"Invalid date format", "Kein Datum"},
                     {"Please enter a date with the format %@.", "Bitte als %@ eingeben."},
                     {"Invalid date", "Zu früh"},
                     {"Dates before %@ are not allowed.", "Nicht vor %@."}});
  EXPECT_EQ(errorOf("")->localizedDescription(), "Datum fehlt.");
  const auto unreadable = errorOf("x");
  EXPECT_EQ(unreadable->localizedDescription(), "Kein Datum");
  EXPECT_EQ(textUnder(*unreadable, NSLocalizedRecoverySuggestionErrorKey),
            "Bitte als M/d/yy eingeben.");
  formatter_->setMinimunDate(at("2021-02-05T00:00:00Z"));
  const auto early = errorOf("2020");
  EXPECT_EQ(early->localizedDescription(), "Zu früh");
  EXPECT_EQ(textUnder(*early, NSLocalizedFailureReasonErrorKey), "Nicht vor Feb 5, 2021.");
}

TEST_F(ReadingDates, DoesNotScanWhereTheShortFormatIsUnknown) {
  const LogCapture log;
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("sv_SE"));
  formatter_->updateFormatInfo();
  // What was understood before stays told, but there is no calendar to count in.
  EXPECT_TRUE(formatter_->recognized());
  EXPECT_TRUE(formatter_->monthFirst());
  EXPECT_FALSE(formatter_->shortDateFormatter());
  EXPECT_EQ(errorOf("13/2/2021")->localizedDescription(), "Invalid date format");
  EXPECT_EQ(read("2/13/2021"), "2021-02-13");
  const ORLFDateFormatter fresh;
  EXPECT_FALSE(fresh.recognized());
  EXPECT_FALSE(fresh.dateFromString("13/2"));
}

TEST_F(ReadingDates, TakesFullWidthMarksOnlyWhereTheFormatDoes) {
  for (const char* typed : {"\u200f13/2/2021", "１３/２/２０２１", "१३/२/२०२१", "𝟏/𝟐"})
    EXPECT_EQ(read(typed), "nil") << typed;
}

TEST_F(ReadingDates, AnswersToHugeTextsAtOnce) {
  constexpr std::size_t kMegabyte = 1'000'000;
  const std::vector<std::string> texts = {
      std::string(kMegabyte, '1'),         std::string(kMegabyte, ' '),
      std::string(kMegabyte, '/'),         "1/2/" + std::string(kMegabyte, '2'),
      std::string(kMegabyte, ' ') + "5x",  std::string(kMegabyte, '\xff'),
      "Feb " + std::string(kMegabyte, 'x')};
  for (const std::string& typed : texts) {
    const double seconds = orlftest::processorSecondsOf([&] {
      EXPECT_TRUE(errorOf(typed));
      std::optional<NSDate> date;
      NSRange range{0, typed.size()};
      EXPECT_FALSE(formatter_->getObjectValue(&date, typed, &range));
    });
    EXPECT_LT(seconds, 2);
  }
}

}  // namespace
}  // namespace ORLFoundation
