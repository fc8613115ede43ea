#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace orlftest {
namespace {

using namespace ORLFoundation;

TEST(ComponentsVectors, ReadsAndWritesComponents) {
  const std::string text =
      "era=1 year=2023 quarter=1 month=2 weekOfYear=9 weekOfMonth=5 weekday=3 weekdayOrdinal=4 "
      "day=28 hour=6 minute=30 second=0 nanosecond=0 yearForWeekOfYear=2023";
  const NSDateComponents components = componentsFromVector(text);
  EXPECT_EQ(components.weekOfYear(), 9);
  EXPECT_EQ(vectorFromComponents(components), text);
  EXPECT_EQ(componentsFromVector("month=-12 day=0").day(), 0);
  EXPECT_EQ(componentsFromVector(Json{{"month", 3}}), componentsFromVector("month=3"));
  EXPECT_EQ(componentsFromVector(""), NSDateComponents());
}

TEST(ComponentsVectors, RefusesWhatIsNoComponent) {
  for (const char* text : {"day", "day=", "day=x", "dya=1"})
    EXPECT_THROW((void)componentsFromVector(std::string(text)), std::runtime_error) << text;
  EXPECT_THROW((void)componentsFromVector(Json{{"dya", 1}}), std::runtime_error);
}

}  // namespace
}  // namespace orlftest
