// Reading iCalendar recurrence lines, and the English sentences of rules.

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule_testing.h>

#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using namespace orlftest;

Rule::Integers numbers(std::initializer_list<NSInteger> values) {
  return std::vector<NSInteger>(values);
}

// ---------------------------------------------------------------- text

TEST(RuleText, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "rules_rule_text",
      {{"dateRecurrenceRuleFromICalendarString", [](const Json& in, const Json& out) {
          const auto rule = Rule::dateRecurrenceRuleFromICalendarString(in.get<std::string>());
          return orlftest::disagreement(out, orlftest::vectorFromRule(rule.get()));
        }}});
}

struct ReadCase {
  const char *name, *text;
  Rule::Recurrence fields;
};

TEST(RuleText, ReadsEveryKey) {
  const ReadCase cases[] = {
      {"Daily", "RRULE:FREQ=DAILY", {.frequency = kDaily}},
      {"Weekly", "RRULE:FREQ=WEEKLY", {.frequency = kWeekly}},
      {"Monthly", "RRULE:FREQ=MONTHLY", {.frequency = kMonthly}},
      {"YearlyUnlessToldOtherwise", "RRULE:INTERVAL=2", {.frequency = kYearly, .interval = 2}},
      {"ByDay",
       "RRULE:FREQ=MONTHLY;BYDAY=1MO,-1FR",
       {.frequency = kMonthly, .daysOfTheWeek = weekdays({{2, 1}, {6, -1}})}},
      {"EveryDayName",
       "RRULE:FREQ=WEEKLY;BYDAY=SU,MO,TU,WE,TH,FR,SA",
       {.frequency = kWeekly,
        .daysOfTheWeek = weekdays({{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}, {7, 0}})}},
      {"ByMonth",
       "RRULE:BYMONTH=3,13",
       {.frequency = kYearly, .monthsOfTheYear = numbers({3, 13})}},
      {"ByMonthDay",
       "RRULE:FREQ=MONTHLY;BYMONTHDAY=15,-1",
       {.frequency = kMonthly, .daysOfTheMonth = numbers({15, -1})}},
      {"ByWeekNumber",
       "RRULE:BYWEEKNO=20",
       {.frequency = kYearly, .weeksOfTheYear = numbers({20})}},
      {"ByYearDay",
       "RRULE:BYYEARDAY=1,-1",
       {.frequency = kYearly, .daysOfTheYear = numbers({1, -1})}},
      {"RepeatedListsAdd",
       "RRULE:BYMONTH=3;BYMONTH=4",
       {.frequency = kYearly, .monthsOfTheYear = numbers({3, 4})}},
      {"RepeatedWordsOverwrite",
       "RRULE:FREQ=DAILY;INTERVAL=3;FREQ=WEEKLY;INTERVAL=2",
       {.frequency = kWeekly, .interval = 2}},
      {"OtherKeysArePassedOver",
       "RRULE:FREQ=WEEKLY;COUNT=5;UNTIL=x;WKST=MO;BYHOUR=9",
       {.frequency = kWeekly}},
      {"SetPositionsArePassedOver", "RRULE:FREQ=MONTHLY;BYSETPOS=-1", {.frequency = kMonthly}},
      {"WhatStandsBeforeIsIgnored", "DTSTART:20240131\nRRULE:FREQ=DAILY", {.frequency = kDaily}},
      {"NumbersStopAtTheFirstOtherCharacter",
       "RRULE:INTERVAL= +2x",
       {.frequency = kYearly, .interval = 2}},
      {"NumbersSaturate",
       "RRULE:INTERVAL=99999999999999999999;BYMONTH=-99999999999999999999",
       {.frequency = kYearly,
        .interval = NSIntegerMax,
        .monthsOfTheYear = numbers({NSIntegerMin})}},
      {"NegativeNumbersAreTakenAsTheyAre",
       "RRULE:INTERVAL=-2;BYDAY=-99SA",
       {.frequency = kYearly, .interval = -2, .daysOfTheWeek = weekdays({{7, -99}})}},
      {"WeekdaysAddUp",
       "RRULE:FREQ=WEEKLY;BYDAY=MO;BYMONTHDAY=1;BYDAY=+2TU",
       {.frequency = kWeekly,
        .daysOfTheWeek = weekdays({{2, 0}, {3, 2}}),
        .daysOfTheMonth = numbers({1})}},
      {"OtherListsAddUp",
       "RRULE:BYMONTHDAY=1;BYWEEKNO=2;BYYEARDAY=3;BYMONTHDAY=4;BYWEEKNO=5;BYYEARDAY=6",
       {.frequency = kYearly,
        .daysOfTheMonth = numbers({1, 4}),
        .weeksOfTheYear = numbers({2, 5}),
        .daysOfTheYear = numbers({3, 6})}},
      {"KeysInOtherLettersArePassedOver", "RRULE:freq=DAILY;Interval=2", {.frequency = kYearly}},
      {"BlanksBelongToTheKey", "RRULE: FREQ=DAILY", {.frequency = kYearly}},
      {"EmptyKeyIsPassedOver", "RRULE:=", {.frequency = kYearly}},
      {"FirstOfTwoPropertiesCounts", "RRULE:RRULE:FREQ=DAILY", {.frequency = kYearly}},
      {"LineEndBelongsToTheLastValue",
       "RRULE:INTERVAL=2\r\n",
       {.frequency = kYearly, .interval = 2}},
  };
  for (const ReadCase& row : cases) {
    const auto rule = Rule::dateRecurrenceRuleFromICalendarString(row.text);
    ASSERT_TRUE(rule) << row.name;
    Rule::Recurrence fields = row.fields;
    fields.anchorIndex = 1;
    EXPECT_TRUE(rule->isEqual(std::make_shared<Rule>(fields).get())) << row.name;
    EXPECT_EQ(rule->anchorIndex(), 1) << row.name;
    EXPECT_FALSE(rule->absolute()) << row.name;
  }
}

const char* const kUnreadable[] = {
    "",
    "FREQ=DAILY",
    "rrule:FREQ=DAILY",
    "RRULE:",
    "RRULE:FREQ=WEEKLY;",
    "RRULE:FREQ",
    "RRULE:FREQ=DAILY=1",
    "RRULE:COUNT==5",
    "RRULE:COUNT=5=",
    "RRULE:FREQ=weekly",
    "RRULE:FREQ=HOURLY",
    "RRULE:FREQ=QUARTERLY",
    "RRULE:FREQ=DAILY\n",
    "RRULE:FREQ=DAILY;INTERVAL=0",
    "RRULE:FREQ=DAILY;INTERVAL=x",
    "RRULE:INTERVAL=",
    "RRULE:;FREQ=DAILY",
    "RRULE:FREQ=DAILY;;INTERVAL=2",
    "RRULE:FREQ=DAILY RRULE:FREQ=WEEKLY",
    "RRULE:FREQ=",
    "RRULE:FREQ=SECONDLY",
    "RRULE:FREQ=MINUTELY",
    "RRULE:FREQ= DAILY",
    "RRULE:BYMONTH=0",
    "RRULE:BYMONTH=x",
    "RRULE:BYMONTHDAY=0",
    "RRULE:BYMONTHDAY=,1",
    "RRULE:BYWEEKNO=0",
    "RRULE:BYWEEKNO=1,x",
    "RRULE:BYYEARDAY=0",
    "RRULE:BYDAY=",
    "RRULE:BYDAY=1MO,",
    "RRULE:BYDAY=-MO",
    "RRULE:BYDAY=\xC3\xA9",
    "RRULE:BYDAY=MO ",
    "RRULE:BYMONTH=1,",
    "RRULE:BYMONTHDAY=x",
    "RRULE:BYWEEKNO=",
    "RRULE:BYYEARDAY=1,x",
    "RRULE:BYDAY=M",
    "RRULE:BYDAY=XX",
    "RRULE:BYDAY=mo",
    "RRULE:BYDAY=0MO",
    "RRULE:BYDAY=xMO",
    "RRULE:BYDAY=MO,",
};

TEST(RuleText, RefusesWhatItCannotReadWhole) {
  for (const char* text : kUnreadable)
    EXPECT_EQ(Rule::dateRecurrenceRuleFromICalendarString(text), nullptr) << text;
}

TEST(RuleText, DiffersFromARuleOfTheSameIntervalByItsAnchor) {
  const auto read = Rule::dateRecurrenceRuleFromICalendarString("RRULE:FREQ=DAILY;INTERVAL=3");
  EXPECT_FALSE(read->isEqual(std::make_shared<Rule>(kDaily, 3).get()));
  EXPECT_TRUE(Rule::dateRecurrenceRuleFromICalendarString("RRULE:FREQ=DAILY")
                  ->isEqual(std::make_shared<Rule>(kDaily, 1).get()));
}

// ---------------------------------------------------------------- descriptions

TEST(RuleDescription, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "rules_description",
      {{"humanReadableDescription",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(out.get<std::string>(),
                                        orlftest::ruleFromVector(in)->humanReadableDescription());
        }},
       {"partialDescriptionForDaysOfTheWeek",
        [](const Json& in, const Json& out) {
          const auto text =
              Rule::partialDescriptionForDaysOfTheWeek(orlftest::daysOfTheWeekFromVector(in));
          return orlftest::disagreement(out, orlftest::jsonOrNull(text));
        }},
       {"partialDescriptionForDaysOfTheMonth",
        [](const Json& in, const Json& out) {
          const auto text =
              Rule::partialDescriptionForDaysOfTheMonth(orlftest::integersFromVector(in));
          return orlftest::disagreement(out, orlftest::jsonOrNull(text));
        }},
       {"partialDescriptionForMonthsOfYear",
        [](const Json& in, const Json& out) {
          const auto text =
              Rule::partialDescriptionForMonthsOfYear(orlftest::integersFromVector(in));
          return orlftest::disagreement(out, orlftest::jsonOrNull(text));
        }},
       {"nameForWeekday",
        [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out.get<std::string>(),
              std::string(ORLFDateRecurrenceDayOfWeek::nameForWeekday(in.get<NSInteger>())));
        }},
       {"stringForWeekNumber", [](const Json& in, const Json& out) {
          return orlftest::disagreement(
              out.get<std::string>(),
              std::string(ORLFDateRecurrenceDayOfWeek::stringForWeekNumber(in.get<NSInteger>())));
        }}});
}

struct SentenceCase {
  Rule::Recurrence rule;
  const char* sentence;
};

TEST(RuleDescription, MatchesTable) {
  const SentenceCase cases[] = {
      {{.frequency = kYearly}, "repeats yearly."},
      {{.frequency = kMonthly}, "repeats monthly."},
      {{.frequency = kQuarterly}, "repeats quarterly."},
      {{.frequency = kWeekly}, "repeats weekly."},
      {{.frequency = kDaily}, "repeats daily."},
      {{.frequency = kYearly, .interval = 3}, "repeats every 3 years."},
      {{.frequency = kMonthly, .interval = 2}, "repeats every 2 months."},
      {{.frequency = kQuarterly, .interval = 2}, "repeats every 2 quarters."},
      {{.frequency = kWeekly, .interval = 2}, "repeats every 2 weeks."},
      {{.frequency = kDaily, .interval = 10}, "repeats every 10 days."},
      {{.frequency = kDaily, .interval = -1}, "repeats every -1 days."},
      {{.frequency = kMonthly, .daysOfTheMonth = numbers({1, 15})},
       "repeats monthly on the 1st, and 15th"},
      {{.frequency = kWeekly, .daysOfTheWeek = weekdays({{2, 0}, {6, 0}})},
       "repeats weekly on Monday, and Friday"},
      {{.frequency = kMonthly, .daysOfTheWeek = weekdays({{3, 2}})},
       "repeats monthly on the second Tuesday"},
      {{.frequency = kYearly, .daysOfTheMonth = numbers({15}), .monthsOfTheYear = numbers({3})},
       "repeats yearly on the 15th of March"},
      {{.frequency = kYearly, .monthsOfTheYear = numbers({3})}, "repeats yearly in March"},
      {{.frequency = kMonthly,
        .daysOfTheWeek = weekdays({{6, 0}}),
        .daysOfTheMonth = numbers({13}),
        .monthsOfTheYear = numbers({1, 10})},
       "repeats monthly on Friday on the 13th of January, and October"},
      {{.frequency = kYearly, .weeksOfTheYear = numbers({20})}, "repeats yearly."},
  };
  for (const SentenceCase& row : cases)
    EXPECT_EQ(std::make_shared<Rule>(row.rule)->humanReadableDescription(), row.sentence);
}

TEST(RuleDescription, IntervalOfZeroTakesThePlural) {
  EXPECT_EQ(std::make_shared<Rule>(kDaily, 0)->humanReadableDescription(), "repeats every 0 days.");
}

TEST(RuleDescription, WeekdaysAreGroupedByNumberTheLastOnesFirst) {
  const auto text = [](auto entries) { return *Rule::partialDescriptionForDaysOfTheWeek(entries); };
  EXPECT_EQ(text(weekdays({{2, 1}, {6, 0}})), "every Friday, and the first Monday");
  EXPECT_EQ(text(weekdays({{2, 1}, {6, -1}, {3, 1}})),
            "the last Friday, the first Monday, and the first Tuesday");
  EXPECT_EQ(text(weekdays({{-2, -1}})), "the last weekday");
  EXPECT_EQ(text(weekdays({{2, -2}})), "the every Monday");
  EXPECT_EQ(text(weekdays({{2, 0}})), "Monday");
}

struct OrdinalCase {
  NSInteger number;
  const char* text;
};
const OrdinalCase kOrdinals[] = {{1, "1st"},   {2, "2nd"},     {3, "3rd"},   {4, "4th"},
                                 {11, "11th"}, {12, "12th"},   {13, "13th"}, {21, "21st"},
                                 {22, "22nd"}, {111, "111st"}, {-1, "-1th"}, {0, "0th"}};

TEST(RuleDescription, OrdinalsOfDays) {
  for (const OrdinalCase& row : kOrdinals)
    EXPECT_EQ(Rule::partialDescriptionForDaysOfTheMonth(numbers({row.number})), row.text);
}

TEST(RuleDescription, OrdinalsOfAllDaysOfAMonth) {
  const std::string suffixes =
      "st nd rd th th th th th th th th th th th th th th th th th st nd rd th th th th th th th "
      "st";
  for (NSInteger day = 1; day <= 31; ++day)
    EXPECT_EQ(Rule::partialDescriptionForDaysOfTheMonth(numbers({day})),
              std::to_string(day) + suffixes.substr(3 * static_cast<std::size_t>(day - 1), 2));
}

TEST(RuleDescription, NamesOfMonths) {
  const std::vector<std::string> names = {"January",   "February", "March",    "April",
                                          "May",       "June",     "July",     "August",
                                          "September", "October",  "November", "December"};
  for (NSInteger month = 1; month <= 12; ++month)
    EXPECT_EQ(Rule::partialDescriptionForMonthsOfYear(numbers({month})),
              names[static_cast<std::size_t>(month - 1)]);
}

TEST(RuleDescription, ListsKeepTheirOrder) {
  EXPECT_EQ(Rule::partialDescriptionForMonthsOfYear(numbers({12, 3, 7})),
            "December, March, and July");
  EXPECT_EQ(Rule::partialDescriptionForDaysOfTheMonth(numbers({20, 1, 12})), "20th, 1st, and 12th");
  EXPECT_EQ(Rule::partialDescriptionForDaysOfTheWeek(weekdays({{6, 0}, {2, 0}, {4, 0}})),
            "Friday, Monday, and Wednesday");
}

TEST(RuleDescription, ValuesThatEqualTheLastAreSetOffByAnd) {
  EXPECT_EQ(Rule::partialDescriptionForDaysOfTheMonth(numbers({1, 5, 3, 5})),
            "1st, and 5th, 3rd, and 5th");
  EXPECT_EQ(Rule::partialDescriptionForMonthsOfYear(numbers({1, 2})), "January, and February");
  EXPECT_EQ(Rule::partialDescriptionForMonthsOfYear(numbers({2, 2, 1, 2})),
            "February, and February, January, and February");
  EXPECT_EQ(Rule::partialDescriptionForDaysOfTheWeek(weekdays({{6, 1}, {2, 1}, {4, 1}, {2, 1}})),
            "the first Friday, and the first Monday, the first Wednesday, and the first Monday");
}

TEST(RuleDescription, NilAndEmptyListsHaveNone) {
  EXPECT_FALSE(Rule::partialDescriptionForDaysOfTheWeek(std::nullopt));
  EXPECT_FALSE(Rule::partialDescriptionForDaysOfTheWeek(weekdays({})));
  EXPECT_FALSE(Rule::partialDescriptionForDaysOfTheMonth(std::nullopt));
  EXPECT_FALSE(Rule::partialDescriptionForDaysOfTheMonth(numbers({})));
  EXPECT_FALSE(Rule::partialDescriptionForMonthsOfYear(std::nullopt));
  EXPECT_FALSE(Rule::partialDescriptionForMonthsOfYear(numbers({})));
}

TEST(RuleDescriptionDeathTest, UnknownFrequenciesAndMonthsStopTheProcess) {
  EXPECT_DEATH((void)std::make_shared<Rule>(static_cast<ORLFDateRecurrenceFrequency>(7), 1)
                   ->humanReadableDescription(),
               "Fatal error: file ORLFoundation/DateRecurrenceRule, line");
  for (const NSInteger month : {NSInteger{0}, NSInteger{13}, NSIntegerMin, NSIntegerMax}) {
    EXPECT_DEATH((void)Rule::partialDescriptionForMonthsOfYear(numbers({month})),
                 "Fatal error: file ORLFoundation/DateRecurrenceRule, line");
  }
}

}  // namespace
}  // namespace ORLFoundation
