// Expected dates of recurrence rules of other projects, for the shapes on which all agree. See
// tests/data/rrule.
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <fstream>
#include <sstream>

namespace ORLFoundation {
namespace {

using Rule = ORLFDateRecurrenceRule;

std::vector<std::string> split(const std::string& text, char mark) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, mark);) parts.push_back(part);
  return parts;
}

std::vector<NSInteger> integers(const std::string& text) {
  std::vector<NSInteger> values;
  for (const std::string& part : split(text, ',')) values.push_back(std::stoll(part));
  return values;
}

/// "1TU", "-1TH", "FR".
std::shared_ptr<ORLFDateRecurrenceDayOfWeek> weekday(const std::string& text) {
  static const std::vector<std::string> kNames = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
  const std::string name = text.substr(text.size() - 2);
  const auto found = std::find(kNames.begin(), kNames.end(), name);
  if (found == kNames.end()) throw std::runtime_error("unknown weekday " + text);
  const std::string number = text.substr(0, text.size() - 2);
  return std::make_shared<ORLFDateRecurrenceDayOfWeek>(found - kNames.begin() + 1,
                                                       number.empty() ? 0 : std::stoll(number));
}

std::shared_ptr<Rule> ruleFromText(const std::string& text) {
  static const std::map<std::string, ORLFDateRecurrenceFrequency> kFrequencies = {
      {"YEARLY", ORLFDateRecurrenceFrequencyYearly},
      {"MONTHLY", ORLFDateRecurrenceFrequencyMonthly},
      {"WEEKLY", ORLFDateRecurrenceFrequencyWeekly},
      {"DAILY", ORLFDateRecurrenceFrequencyDaily}};
  Rule::Recurrence fields;
  for (const std::string& part : split(text.substr(text.find(':') + 1), ';')) {
    const std::string key = part.substr(0, part.find('='));
    const std::string value = part.substr(part.find('=') + 1);
    if (key == "FREQ") fields.frequency = kFrequencies.at(value);
    if (key == "INTERVAL") fields.interval = std::stoll(value);
    if (key == "BYMONTH") fields.monthsOfTheYear = integers(value);
    if (key == "BYMONTHDAY") fields.daysOfTheMonth = integers(value);
    if (key == "BYDAY") {
      fields.daysOfTheWeek.emplace();
      for (const std::string& day : split(value, ','))
        fields.daysOfTheWeek->push_back(weekday(day));
    }
  }
  return std::make_shared<Rule>(fields);
}

/// "19970902T090000" or "19970902" on the calendar's clock.
NSDate dateFromText(const std::string& text, const NSCalendar& calendar) {
  const auto number = [&text](std::size_t at, std::size_t length) {
    return at < text.size() ? std::stoi(text.substr(at, length)) : 0;
  };
  return orlftest::at(calendar, number(0, 4), number(4, 2), number(6, 2), number(9, 2),
                      number(11, 2), number(13, 2));
}

TEST(ORLFDateRecurrenceRule, GivesTheDatesThatOtherProjectsExpect) {
  std::ifstream file(orlftest::vectorFolder().parent_path() / "rrule" / "rrule_dev.tsv");
  if (!file) file.open("tests/data/rrule/rrule_dev.tsv");
  ASSERT_TRUE(file);
  std::size_t rows = 0;
  for (std::string line; std::getline(file, line);) {
    const auto fields = split(line, '\t');
    if (fields.size() < 7 || fields[5] != "core" || !fields[6].empty()) continue;
    ++rows;
    SCOPED_TRACE(fields[0] + " from " + fields[1]);
    const auto calendar = orlftest::calendarIn(fields[2].empty() ? "UTC" : fields[2]);
    std::vector<NSDate> expected;
    for (const std::string& date : split(fields[3], ','))
      expected.push_back(dateFromText(date, *calendar));
    EXPECT_EQ(orlftest::firstDates(*ruleFromText(fields[0]), *calendar,
                                   dateFromText(fields[1], *calendar), expected.size()),
              expected);
  }
  EXPECT_EQ(rows, 55U);
}

}  // namespace
}  // namespace ORLFoundation
