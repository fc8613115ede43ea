
#include <ORLFoundation/calendar/ORLFDateOrdering.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

constexpr NSDate at(double seconds) {
  return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

struct OrderingCase {
  const char* name;
  double date, other;
  bool onOrBefore, before, onOrAfter, after;
};
constexpr OrderingCase kCases[] = {
    {"Earlier", 1, 2, true, true, false, false},
    {"Equal", 2, 2, true, false, true, false},
    {"Later", 3, 2, false, false, true, true},
    {"EarlierByTheLeastFraction", 2 - 0x1p-52, 2, true, true, false, false},
    {"AcrossTheReferenceDate", -1, 1, true, true, false, false},
};

TEST(ORLFDateOrdering, TellsStrictFromNonStrict) {
  for (const OrderingCase& row : kCases) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(orlfIsOnOrBefore(at(row.date), at(row.other)), row.onOrBefore);
    EXPECT_EQ(orlfIsBefore(at(row.date), at(row.other)), row.before);
    EXPECT_EQ(orlfIsOnOrAfter(at(row.date), at(row.other)), row.onOrAfter);
    EXPECT_EQ(orlfIsAfter(at(row.date), at(row.other)), row.after);
  }
}

}  // namespace
}  // namespace ORLFoundation
