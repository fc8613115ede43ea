
#include <ORLFoundation/platform/value/NSDate.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

namespace ORLFoundation {
namespace {

NSDate at(double secondsSince1970) {
  return NSDate::dateWithTimeIntervalSince1970(secondsSince1970);
}

struct DescriptionCase {
  const char* name;
  double since1970;
  const char* text;
};
const DescriptionCase kDescriptions[] = {
    {"Epoch", 0, "1970-01-01 00:00:00 +0000"},
    {"LeapDay", 1709208000, "2024-02-29 12:00:00 +0000"},
    {"FractionIsNotShown", 0.999, "1970-01-01 00:00:00 +0000"},
    {"FractionBeforeTheEpochGoesDown", -0.25, "1969-12-31 23:59:59 +0000"},
    {"FarPast", -62135769600.0, "0000-12-30 00:00:00 +0000"},
    {"After2037", 4102444799.0, "2099-12-31 23:59:59 +0000"},
};

TEST(NSDate, DescribesItselfInUniversalTime) {
  for (const auto& row : kDescriptions)
    EXPECT_EQ(at(row.since1970).description(), row.text) << row.name;
  EXPECT_EQ(NSDate::distantFuture().description(), "4001-01-01 00:00:00 +0000");
}

TEST(NSDate, DescribesSecondsThatNoCalendarHolds) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double seconds : {infinity, -infinity, 1e300, std::nan("")})
    EXPECT_FALSE(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds).description().empty());
}

TEST(NSDate, CountsFromTheReferenceDate) {
  EXPECT_EQ(at(NSTimeIntervalSince1970), NSDate());
  EXPECT_EQ(at(0).timeIntervalSinceReferenceDate(), -NSTimeIntervalSince1970);
  EXPECT_EQ(at(10).timeIntervalSinceDate(at(4)), 6);
  EXPECT_EQ(at(10).dateByAddingTimeInterval(-10), at(0));
}

TEST(NSDate, ComparesByInstant) {
  EXPECT_EQ(at(1).compare(at(2)), NSOrderedAscending);
  EXPECT_EQ(at(2).compare(at(1)), NSOrderedDescending);
  EXPECT_EQ(at(1).compare(at(1)), NSOrderedSame);
  EXPECT_FALSE(at(1).isEqualToDate(at(1.0000002)));
}

TEST(NSDate, HashesEqualDatesAlike) {
  const NSDate zero = NSDate::dateWithTimeIntervalSinceReferenceDate(0.0);
  const NSDate minusZero = NSDate::dateWithTimeIntervalSinceReferenceDate(-0.0);
  ASSERT_EQ(zero, minusZero);
  EXPECT_EQ(zero.hash(), minusZero.hash());
}

TEST(NSDateClock, TellsTheTimeOfTheReplacedClock) {
  const Replaced clock(NSDate::setClock, [] { return at(86400); });
  EXPECT_FALSE(clock.before());
  EXPECT_EQ(NSDate::date(), at(86400));
  const Replaced inner(NSDate::setClock, [] { return at(1); });
  EXPECT_EQ(inner.before()(), at(86400));
  EXPECT_EQ(NSDate::date(), at(1));
}

TEST(NSDateClock, GoesBackToTheSystemClock) {
  {
    const Replaced clock(NSDate::setClock, [] { return at(86400); });
  }
  const double now = static_cast<double>(std::chrono::duration_cast<std::chrono::seconds>(
                                             std::chrono::system_clock::now().time_since_epoch())
                                             .count());
  EXPECT_NEAR(NSDate::date().timeIntervalSince1970(), now, 60);
}

TEST(NSDateClock, CanBeReplacedWhileOthersAskForTheTime) {
  const Replaced clock(NSDate::setClock, [] { return at(1); });
  std::atomic<bool> done{false};
  std::atomic<int> strange{0};
  std::thread reader([&] {
    while (!done) {
      const double seconds = NSDate::date().timeIntervalSince1970();
      if (seconds != 1 && seconds != 2) ++strange;
    }
  });
  for (int i = 0; i < 500; ++i) NSDate::setClock([i] { return at(1 + i % 2); });
  done = true;
  reader.join();
  EXPECT_EQ(strange, 0);
}

}  // namespace
}  // namespace ORLFoundation
