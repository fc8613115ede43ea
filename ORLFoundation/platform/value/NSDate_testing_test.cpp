#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace orlftest {
namespace {

using namespace ORLFoundation;

struct DateForm {
  const char* name;
  const char* text;
  double seconds;
};
const DateForm kDateForms[] = {
    {"ReferenceDate", "2001-01-01T00:00:00Z", 0},
    {"UnixEpoch", "1970-01-01T00:00:00Z", -978307200},
    {"LeapDay", "2024-02-29T12:34:56Z", 730902896},
    {"Half", "2001-01-01T00:00:01.500Z", 1.5},
    {"FractionBeforeTheReferenceDate", "2000-12-31T23:59:59.250Z", -0.75},
    {"FirstYear", "0001-01-01T00:00:00Z", -63113904000},
    {"LastSecond", "9999-12-31T23:59:59Z", 252423993599},
    {"BeyondTheLastYear", "@252423993600", 252423993600},
    {"OddFraction", "@0.10000000000000001e-3", 0.0001},
    {"DistantFuture", "distantFuture", 63113904000},
    {"DistantPast", "distantPast", -63114076800},
};
class DateVectorForm : public testing::TestWithParam<DateForm> {};
TEST_P(DateVectorForm, IsReadAndWrittenBack) {
  const auto date = dateFromVector(GetParam().text);
  ASSERT_TRUE(date);
  EXPECT_EQ(date->timeIntervalSinceReferenceDate(), GetParam().seconds);
  EXPECT_EQ(dateFromVector(vectorFromDate(date)), date);
  if (GetParam().text[0] != '@') {
    EXPECT_EQ(vectorFromDate(date), GetParam().text);
  }
}
INSTANTIATE_TEST_SUITE_P(DateVectors, DateVectorForm, testing::ValuesIn(kDateForms),
                         [](const auto& row) { return row.param.name; });

TEST(DateVectors, RefusesWhatIsNoDate) {
  for (const char* text : {"", "2024-01-31", "2024-02-30T00:00:00Z", "2024-01-31T24:00:00Z",
                           "2024-01-31T14:30:00", "2024-01-31T14:30:00.5Z", "@", "@1x", "soon"})
    EXPECT_THROW((void)dateFromVector(text), std::runtime_error) << text;
}

TEST(DateVectors, KeepsNilApart) {
  EXPECT_EQ(dateFromVector(Json(nullptr)), std::nullopt);
  EXPECT_EQ(dateFromVector(std::optional<std::string>()), std::nullopt);
  EXPECT_EQ(vectorFromDate(std::nullopt), "nil");
  EXPECT_EQ(disagreement(dateFromVector("@0"), std::optional<NSDate>()),
            "expected 2001-01-01T00:00:00Z, got nil");
}

TEST(DateVectors, NamesTheFirstDateThatDiffers) {
  const auto expected = datesFromVector(Json{"@0", "@60"});
  EXPECT_EQ(disagreement(expected, expected), "");
  EXPECT_EQ(disagreement(expected, datesFromVector(Json::array({"@0"}))),
            "2 dates expected, got 1; number 2: expected 2001-01-01T00:01:00Z, got none");
}

}  // namespace
}  // namespace orlftest
