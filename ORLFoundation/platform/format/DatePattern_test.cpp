#include <ORLFoundation/platform/format/DatePattern.h>

#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <limits>

namespace ORLFoundation::internal::format {
namespace {

using orlftest::Json;

// "2024-01-31T14:30:00Z" as the vectors write dates, which the pattern under test writes too.
std::string text(std::optional<NSDate> date) {
  static const DatePattern plain("yyyy-MM-dd'T'HH:mm:ss'Z'");
  return date ? plain.write(*date, 0) : "nil";
}

TEST(DatePattern, AgreesWithVectors) {
  orlftest::runJsonVectors("formats_read_date",
                           {{"read", [](const Json& in, const Json& out) {
                               const DatePattern pattern(in.at("pattern").get<std::string>());
                               const auto date = pattern.read(in.at("text").get<std::string>());
                               return orlftest::disagreement(
                                   out.is_null() ? "nil" : out.get<std::string>(), text(date));
                             }}});
}

TEST(DatePattern, TakesOtherMarksWidthsAndNames) {
  const DatePattern pattern("M/d/yy");
  for (const char* written :
       {"1-2-21", "01.02.2021", "1 2 2021", "Jan 2, 2021", "1/2/21  ", "1/2/2021\t\n", " 1/2/21"})
    EXPECT_EQ(text(pattern.read(written)), "2021-01-02T00:00:00Z") << written;
}

TEST(DatePattern, RefusesWhatTheCalendarDoesNotHoldAndWhatFollowsTheDate) {
  const DatePattern pattern("M/d/yy");
  for (const char* written :
       {"13/1/21", "2/30/21", "0/1/21", "1/2/21 x", "x 1/2/21", "", " ", "1/2"})
    EXPECT_FALSE(pattern.read(written)) << written;
  EXPECT_FALSE(pattern.read(std::string(65, ' ')));
}

TEST(DatePattern, WantsItsWordsInOrder) {
  const DatePattern pattern("yyyy'Year'M'Month'd");
  EXPECT_EQ(text(pattern.read("2024Year5Month6")), "2024-05-06T00:00:00Z");
  for (const char* written : {"2024-5-6", "2024Year5-6", "2024Month5Year6", "2024year5month6"})
    EXPECT_FALSE(pattern.read(written)) << written;
}

TEST(DatePattern, WritesAnOffsetAndNoDateThatIsNone) {
  const DatePattern pattern("yyyy-MM-dd HH:mm ZZZ");
  const NSDate date = NSDate::dateWithTimeIntervalSince1970(1704067200.75);
  EXPECT_EQ(pattern.write(date, 0), "2024-01-01 00:00 +0000");
  EXPECT_EQ(pattern.write(date, -12600), "2023-12-31 20:30 -0330");
  for (const double seconds : {std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 1e17})
    EXPECT_EQ(pattern.write(NSDate::dateWithTimeIntervalSince1970(seconds), 0), "");
}

}  // namespace
}  // namespace ORLFoundation::internal::format
