#include <ORLFoundation/platform/object/NSArray.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr NSUInteger kInOrder = 0;
constexpr NSUInteger kBoth = NSEnumerationConcurrent | NSEnumerationReverse;

NSArray numbersBelow(NSInteger count) {
  std::vector<id> members;
  for (NSInteger i = 0; i < count; ++i) members.emplace_back(i);
  return NSArray(std::move(members));
}

/// No more threads than these take part in a visit.
std::size_t mostThreads() { return std::max(2U, std::thread::hardware_concurrency()); }

std::vector<NSUInteger> visitedBy(const NSArray& array, NSUInteger options,
                                  NSUInteger stopAt = NSNotFound) {
  std::vector<NSUInteger> visited;
  array.enumerateObjectsWithOptions(options, [&](const id& object, NSUInteger index, bool& stop) {
    EXPECT_EQ(object.as<NSInteger>(), static_cast<NSInteger>(index));
    visited.push_back(index);
    stop = index == stopAt;
  });
  return visited;
}

TEST(NSArrayEnumeration, VisitsInOrderOrInReverse) {
  const NSArray array = numbersBelow(4);
  EXPECT_THAT(visitedBy(array, kInOrder), ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(visitedBy(array, NSEnumerationReverse), ElementsAre(3, 2, 1, 0));
  EXPECT_THAT(visitedBy(numbersBelow(0), kInOrder), IsEmpty());
  EXPECT_THAT(visitedBy(numbersBelow(0), NSEnumerationReverse), IsEmpty());
  EXPECT_THAT(visitedBy(numbersBelow(0), NSEnumerationConcurrent), IsEmpty());
}

TEST(NSArrayEnumeration, StopsBehindTheMemberThatStopsIt) {
  const NSArray array = numbersBelow(4);
  EXPECT_THAT(visitedBy(array, kInOrder, 1), ElementsAre(0, 1));
  EXPECT_THAT(visitedBy(array, NSEnumerationReverse, 1), ElementsAre(3, 2, 1));
}

TEST(NSArrayEnumeration, VisitsEachMemberOnceOnSeveralThreads) {
  for (const std::size_t count : {1U, 2U, 63U, 64U, 65U, 5000U}) {
    const NSArray array = numbersBelow(static_cast<NSInteger>(count));
    for (const NSUInteger options : {NSUInteger{NSEnumerationConcurrent}, kBoth}) {
      std::vector<std::atomic<int>> visits(count);
      array.enumerateObjectsWithOptions(
          options, [&](const id& object, NSUInteger index, bool& /*stop*/) {
            if (object.as<NSInteger>() == static_cast<NSInteger>(index)) ++visits[index];
          });
      EXPECT_TRUE(std::ranges::all_of(visits, [](const auto& times) { return times == 1; }))
          << count;
    }
  }
}

TEST(NSArrayEnumeration, VisitsTwoMembersAtTheSameTime) {
  std::promise<void> begun[2];
  std::atomic<int> met{0};
  numbersBelow(2).enumerateObjectsWithOptions(
      NSEnumerationConcurrent, [&](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
        begun[index].set_value();
        const auto other = begun[1 - index].get_future().wait_for(std::chrono::seconds(20));
        if (other == std::future_status::ready) ++met;
      });
  EXPECT_EQ(met, 2);
}

TEST(NSArrayEnumeration, BeginsNoFurtherMemberOnceAThreadHasStopped) {
  std::atomic<std::size_t> visited{0};
  numbersBelow(10000).enumerateObjectsWithOptions(
      NSEnumerationConcurrent, [&](const id& /*object*/, NSUInteger /*index*/, bool& stop) {
        ++visited;
        stop = true;
      });
  EXPECT_GE(visited, 1U);
  EXPECT_LE(visited, mostThreads());
}

TEST(NSArrayEnumeration, HandsTheCallerWhatTheBlockThrows) {
  for (const NSUInteger options :
       {kInOrder, NSUInteger{NSEnumerationReverse}, NSUInteger{NSEnumerationConcurrent}}) {
    std::atomic<std::size_t> visited{0};
    EXPECT_THROW(numbersBelow(10000).enumerateObjectsWithOptions(
                     options,
                     [&](const id& /*object*/, NSUInteger /*index*/, bool& /*stop*/) {
                       ++visited;
                       throw std::runtime_error("no such member");
                     }),
                 std::runtime_error);
    EXPECT_GE(visited, 1U);
    EXPECT_LE(visited, options == NSEnumerationConcurrent ? mostThreads() : 1U);
  }
}

TEST(NSArrayEnumeration, EndsAllThreadsBeforeAnExceptionReachesTheCaller) {
  std::promise<void> begun;
  std::atomic<bool> isRunning{false};
  const auto throwWhileTheOtherRuns = [&](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
    if (index == 0) {
      (void)begun.get_future().wait_for(std::chrono::seconds(20));
      throw std::runtime_error("no such member");
    }
    isRunning = true;
    begun.set_value();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    isRunning = false;
  };
  EXPECT_THROW(
      numbersBelow(2).enumerateObjectsWithOptions(NSEnumerationConcurrent, throwWhileTheOtherRuns),
      std::runtime_error);
  EXPECT_FALSE(isRunning);
}

}  // namespace
}  // namespace ORLFoundation
