#include "interchange/date_shape.h"

#include <gtest/gtest.h>

namespace {

using orlftool::dateShapeOf;

struct DateCase {
  const char* text;
  const char* numbers;
  std::uint8_t namedOrders;
};
constexpr std::uint8_t kDmy = 1U << 1U, kMdy = 1U << 2U, kYmd = 1U << 3U, kMyd = 1U << 5U;
const DateCase kDates[] = {
    {"31/01/2024", "31/01/2024", 0},
    {"2024-01-31", "2024/01/31", 0},
    {"24.12.09", "24/12/09", 0},
    {"2/8/15", "2/8/15", 0},
    {" 2020-02-20", "2020/02/20", 0},
    {"2021-02-03 13:12", "2021/02/03", 0},
    {"2002-09-10T23:00:04", "2002/09/10", 0},
    {"20121231", "2012/12/31", 0},
    {"31122012", "31/12/2012", 0},
    {"12312012", "12/31/2012", 0},
    {"20091224120000[0:GMT]", "2009/12/24", 0},
    {"07 Nov 2013", "", kDmy},
    {"23-Jan-15", "", kDmy | kYmd},
    {"2015-January-23", "", kYmd},
    {"Nov 7, 2013", "", kMdy},
    {"Sept 7 13", "", kMdy | kMyd},
    {"7 may 2013 12:30", "", kDmy},
};

TEST(DateShape, TellsNumbersOrOrders) {
  for (const DateCase& each : kDates) {
    const auto shape = dateShapeOf(each.text);
    ASSERT_TRUE(shape) << each.text;
    EXPECT_EQ(shape->numbers, each.numbers) << each.text;
    EXPECT_EQ(shape->namedOrders, each.namedOrders) << each.text;
  }
}

TEST(DateShape, IsNoneOfOtherTexts) {
  for (
      const char* text :
      {"",           "Date",       "12.50",           "1/2",         "1/2/3/4",     "1/2-3",
       "32/32/2024", "13/13/2024", "2024/2024/1",     "0/0/0",       "1234567",     "20241301",
       "99999999",   "0/1/2024",   "12/12/123",       "1/1/1800",    "2024-01-31x", "12 Mango 2013",
       "May",        "7 Nov",      "7 Nov 2013 rent", "123-45-6789", "1.234.567",   "00 Nov 00000"})
    EXPECT_FALSE(dateShapeOf(text)) << text;
}

}  // namespace
