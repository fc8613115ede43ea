
#include <ORLFoundation/platform/dispatch/NSMonotonicClock.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using internal::dispatch::kNever;
using internal::dispatch::laterBy;
using internal::dispatch::nanosecondsOf;

TEST(NSMonotonicClock, IsTheSystemsUntilItIsReplaced) {
  const std::int64_t before = internal::dispatch::realNow();
  const std::int64_t now = NSMonotonicClock::now();
  EXPECT_GT(before, 0);
  EXPECT_GE(now, before);
  EXPECT_LE(now, internal::dispatch::realNow());
  EXPECT_TRUE(NSMonotonicClock::isSystemClock());
  const auto clock = std::make_shared<NSVirtualMonotonicClock>();
  {
    const Replaced installed(NSMonotonicClock::setCurrentClock, clock);
    EXPECT_EQ(NSMonotonicClock::now(), 1'000'000'000);
    EXPECT_FALSE(NSMonotonicClock::isSystemClock());
    EXPECT_EQ(NSMonotonicClock::setCurrentClock(nullptr), clock);
    EXPECT_GE(NSMonotonicClock::now(), now);
  }
  EXPECT_TRUE(NSMonotonicClock::isSystemClock());
}

TEST(NSVirtualMonotonicClock, MovesByHandAndNeverBack) {
  NSVirtualMonotonicClock clock;
  EXPECT_EQ(clock.nanoseconds(), 1'000'000'000);
  clock.advance(0.01);
  EXPECT_EQ(clock.nanoseconds(), 1'010'000'000);
  for (const double span : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(),
                            -std::numeric_limits<double>::infinity()})
    clock.advance(span);
  clock.advanceTo(5);
  EXPECT_EQ(clock.nanoseconds(), 1'010'000'000);
  clock.advanceTo(1'010'000'001);
  EXPECT_EQ(clock.nanoseconds(), 1'010'000'001);
  clock.advance(std::numeric_limits<double>::infinity());
  EXPECT_EQ(clock.nanoseconds(), kNever);
}

TEST(NSVirtualMonotonicClock, IsMovedOnByManyThreads) {
  NSVirtualMonotonicClock clock;
  std::vector<std::thread> threads;
  for (int t = 1; t <= 4; ++t)
    threads.emplace_back([&clock, t] {
      for (std::int64_t i = 0; i < 1000; ++i) clock.advanceTo(1'000'000'000 + i * t);
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(clock.nanoseconds(), 1'000'000'000 + 999 * 4);
}

struct SpanCase {
  const char* name;
  double seconds;
  std::int64_t nanoseconds;
};

TEST(nanosecondsOf, RoundsToTheNearestAndStaysInRange) {
  const double infinity = std::numeric_limits<double>::infinity();
  const SpanCase rows[] = {
      {"Zero", 0, 0},
      {"Hundredth", 0.01, 10'000'000},
      {"Quarter", 0.25, 250'000'000},
      {"Below", 0.0000000004, 0},
      {"Above", 0.0000000006, 1},
      {"Negative", -3, 0},
      {"NotANumber", std::numeric_limits<double>::quiet_NaN(), 0},
      {"Infinite", infinity, kNever},
      {"MinusInfinite", -infinity, 0},
      {"Years", 9.1e9, 9'100'000'000'000'000'000},
      {"TooLong", 9.3e9, kNever},
      {"Huge", std::numeric_limits<double>::max(), kNever},
  };
  for (const SpanCase& row : rows)
    EXPECT_EQ(nanosecondsOf(row.seconds), row.nanoseconds) << row.name;
}

TEST(laterBy, EndsAtNever) {
  EXPECT_EQ(laterBy(5, 6), 11);
  EXPECT_EQ(laterBy(5, kNever), kNever);
  EXPECT_EQ(laterBy(kNever, 0), kNever);
  EXPECT_EQ(laterBy(kNever, kNever), kNever);
  EXPECT_EQ(laterBy(5, kNever - 6), kNever - 1);
  EXPECT_EQ(laterBy(5, kNever - 5), kNever);
}

}  // namespace
}  // namespace ORLFoundation
