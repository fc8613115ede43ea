#include <ORLFoundation/platform/events/internal/SettledTracker.h>

#include <gtest/gtest.h>
#include <sys/inotify.h>

#include <string>

namespace ORLFoundation::internal::events {
namespace {

/// o: opened, w: written, c: a writer closes, r: a reader closes; a capital C is a writer's close
/// that counts.
std::string closesThatCount(const std::string& events) {
  SettledTracker tracker;
  std::string told;
  for (const char event : events) {
    const std::uint32_t mask = event == 'o'   ? IN_OPEN
                               : event == 'w' ? IN_MODIFY
                               : event == 'r' ? IN_CLOSE_NOWRITE
                                              : IN_CLOSE_WRITE;
    const bool counts = tracker.take(mask);
    told += counts ? 'C' : event;
  }
  return told;
}

TEST(SettledTracker, CountsAWritersCloseAfterAWrite) {
  EXPECT_EQ(closesThatCount("owc"), "owC");
  EXPECT_EQ(closesThatCount("owwwc"), "owwwC");
  EXPECT_EQ(closesThatCount("owcowc"), "owCowC");
}

TEST(SettledTracker, PassesOverClosesWithoutAWrite) {
  EXPECT_EQ(closesThatCount("oc"), "oc");
  EXPECT_EQ(closesThatCount("or"), "or");
  EXPECT_EQ(closesThatCount("owcoc"), "owCoc");
  EXPECT_EQ(closesThatCount("owcor"), "owCor");
}

TEST(SettledTracker, CountsEachOfSeveralWriters) {
  EXPECT_EQ(closesThatCount("oowwcc"), "oowwCC");
  EXPECT_EQ(closesThatCount("owowcc"), "owowCC");
}

TEST(SettledTracker, LetsReadersStay) {
  EXPECT_EQ(closesThatCount("oowrc"), "oowrC");
  EXPECT_EQ(closesThatCount("oowcr"), "oowCr");
  EXPECT_EQ(closesThatCount("oowcroc"), "oowCroc");
}

TEST(SettledTracker, CountsWhoOpenedBeforeItBegan) {
  EXPECT_EQ(closesThatCount("c"), "C");
  EXPECT_EQ(closesThatCount("wc"), "wC");
  EXPECT_EQ(closesThatCount("occ"), "ocC");
  EXPECT_EQ(closesThatCount("r"), "r");
}

TEST(SettledTracker, TakesSeveralEventsInOne) {
  SettledTracker tracker;
  EXPECT_TRUE(tracker.take(IN_OPEN | IN_MODIFY | IN_CLOSE_WRITE));
  EXPECT_FALSE(tracker.take(IN_ATTRIB));
  EXPECT_FALSE(tracker.take(0));
}

}  // namespace
}  // namespace ORLFoundation::internal::events
