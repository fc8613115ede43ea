#include <ORLFoundation/platform/format/internal/NumericDate.h>

#include <ORLFoundation/platform/format/internal/DateEngine.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

namespace ORLFoundation::internal::format {
namespace {

TEST(NumericDate, TakesFormatsOfThreePlainNumbers) {
  for (const char* pattern : {"M/d/yy", "dd.MM.yyyy", "y-MM-dd", "yy/M/d", "d.M-y"})
    EXPECT_TRUE(NumericDate::ofPattern(pattern)) << pattern;
  for (const char* pattern : {"", "M/d", "M/d/yyy", "M/d/yyyyy", "MMM/d/yy", "ddd/M/y", "d/d/y",
                              "dMy", "M d y", "M/d/y.", "/M/d/y", "d//M/y", "D/M/y", "M/d/y 'x'"})
    EXPECT_FALSE(NumericDate::ofPattern(pattern)) << pattern;
}

NumericDate::Answer answer(const char* pattern, const char* text, base::civil::Date& date) {
  return NumericDate::ofPattern(pattern)->read(text, 1950, date);
}

TEST(NumericDate, LeavesToIcuWhatIsNotPlain) {
  base::civil::Date date{};
  for (const char* text : {"1/2", "1/2/", "1-2-21", " 1/2/21", "1/2/21 ", "1/2/21x", "1/2/50",
                           "001/2/21", "1/2/12345", "1/2/0", "1//2/21", "/1/2/21", "١/٢/٢١", ""})
    EXPECT_EQ(answer("M/d/yy", text, date), NumericDate::Answer::kUnknown) << text;
  for (const char* text : {"13/2/2021", "0/1/2021", "2/30/2021", "2/0/21", "2/29/2023"})
    EXPECT_EQ(answer("M/d/yy", text, date), NumericDate::Answer::kRefused) << text;
}

DateSettings settingsOf(const char* locale, const char* pattern, const char* zone, bool icuAlone) {
  DateSettings settings;
  settings.locale = locale;
  settings.pattern = pattern;
  settings.zone = NSTimeZone::timeZoneWithName(zone);
  settings.twoDigitStart = NSDate::dateWithTimeIntervalSince1970(-631152000);
  settings.icuAlone = icuAlone;
  return settings;
}

struct PeerCase {
  const char *locale, *pattern, *zone;
};
const PeerCase kPeers[] = {
    {"en_US", "M/d/yy", "UTC"},
    {"en_GB", "dd/MM/y", "America/New_York"},
    {"de_DE", "dd.MM.yy", "Asia/Tokyo"},
    {"fi_FI", "d.M.yyyy", "Europe/Helsinki"},
    {"nl_NL", "dd-MM-y", "UTC"},
    {"sv_SE", "y-MM-dd", "Pacific/Apia"},
    {"pt_BR", "dd/MM/y", "America/Sao_Paulo"},
    {"en_US_POSIX", "yyyy-MM-dd", "UTC"},
    {"ja_JP", "y/MM/dd", "Asia/Tokyo"},
};

// A text of the pattern's marks, or others now and then, and numbers of all sizes.
std::string typedText(std::mt19937& random, const std::string& pattern) {
  const auto below = [&random](unsigned count) { return random() % count; };
  std::string marks;
  for (const char c : pattern)
    if (std::string_view("/.-").find(c) != std::string_view::npos) marks += c;
  std::string text;
  for (std::size_t number = 0; number < 3; ++number) {
    constexpr unsigned kSizes[] = {13, 32, 100, 2100, 10000};
    std::string digits = std::to_string(below(kSizes[below(5)]));
    if (below(3) == 0) digits.insert(0, "0");
    text += digits;
    if (number < 2) text += below(20) == 0 ? "/.- x"[below(5)] : marks[number];
  }
  return text;
}

std::string shown(const std::optional<DateEngine::Reading>& reading) {
  if (!reading) return "nil";
  return std::to_string(reading->date.timeIntervalSince1970()) + " " +
         std::to_string(reading->consumed);
}

TEST(NumericDate, ReadsAsIcuDoes) {
  std::mt19937 random(20260101);
  for (const PeerCase& row : kPeers) {
    const DateEngine ours(settingsOf(row.locale, row.pattern, row.zone, false));
    const DateEngine peer(settingsOf(row.locale, row.pattern, row.zone, true));
    int dates = 0;
    for (int count = 0; count < 3000; ++count) {
      const std::string text = typedText(random, row.pattern);
      const auto read = ours.read(text, true);
      dates += read ? 1 : 0;
      ASSERT_EQ(shown(read), shown(peer.read(text, true))) << row.pattern << " " << text;
      ASSERT_EQ(shown(ours.read(text, false)), shown(peer.read(text, false)))
          << row.pattern << " " << text;
    }
    EXPECT_GT(dates, 200) << row.pattern;
  }
}

TEST(NumericDate, ReadsYearsOfTwoDigitsAsIcuDoes) {
  for (const double start : {-631152000.0, 951782400.0, -62135596800.0, -62200000000.0, -7.2e10,
                             -1e11, 2e11, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
    DateSettings settings = settingsOf("en_US", "M/d/yy", "UTC", false);
    settings.twoDigitStart = NSDate::dateWithTimeIntervalSince1970(start);
    const DateEngine ours(settings);
    settings.icuAlone = true;
    const DateEngine peer(settings);
    for (int year = 0; year < 100; ++year) {
      const std::string text = (year < 10 ? "1/2/0" : "1/2/") + std::to_string(year);
      ASSERT_EQ(shown(ours.read(text, true)), shown(peer.read(text, true))) << start << " " << text;
    }
  }
}

TEST(NumericDate, PrintsAsIcuDoes) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> seconds(-7e10, 3e11);
  for (const PeerCase& row : kPeers) {
    const DateEngine ours(settingsOf(row.locale, row.pattern, row.zone, false));
    const DateEngine peer(settingsOf(row.locale, row.pattern, row.zone, true));
    for (int count = 0; count < 2000; ++count) {
      const NSDate date = NSDate::dateWithTimeIntervalSince1970(seconds(random));
      ASSERT_EQ(ours.print(date), peer.print(date)) << row.pattern << " " << date.description();
    }
    for (const double wild :
         {0.0, -0.001, 86399.9999999, 1e17, -1e17, std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN(), 1.7e14, -1.7e14}) {
      const NSDate date = NSDate::dateWithTimeIntervalSince1970(wild);
      EXPECT_EQ(ours.print(date), peer.print(date)) << row.pattern << " " << wild;
    }
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::format
