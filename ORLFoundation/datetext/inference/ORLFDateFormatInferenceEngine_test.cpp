#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>

#include <ORLFoundation/calendar/ORLFCalendarNow.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr NSInteger kFormats = 6;

/// In UTC, with 2026 for the current year.
class Engine : public ORLFDateFormatInferenceEngine {
 public:
  Engine() {
    setDateParsingCalendar(orlftest::calendarIn("UTC"));
    setCurrentYear(2026);
  }
  explicit Engine(std::initializer_list<std::string_view> texts) : Engine() {
    for (const std::string_view text : texts) processDateString(text);
  }
  void favour(std::initializer_list<id> formats) {
    setPerferedDateFormats(NSSet::setWithObjects(formats));
  }
  [[nodiscard]] std::optional<NSDate> day(NSInteger year, NSInteger month, NSInteger day) const {
    NSDateComponents components;
    components.setYear(year);
    components.setMonth(month);
    components.setDay(day);
    return dateParsingCalendar()->dateFromComponents(components);
  }
};

TEST(ORLFDateFormatInferenceEngine, StartsWithEverythingOpen) {
  const ORLFDateFormatInferenceEngine engine;
  EXPECT_EQ(engine.bits(), 511);
  EXPECT_EQ(engine.currentYear(), 0U);
  EXPECT_EQ(engine.perferedDateFormats(), nullptr);
  EXPECT_EQ(engine.dateParsingCalendar()->calendarIdentifier(), NSCalendarIdentifierGregorian);
  const auto isSetOf = [](const std::shared_ptr<NSCharacterSet>& set, std::string_view members) {
    return set->isEqual(NSCharacterSet::characterSetWithCharactersInString(members).get());
  };
  EXPECT_TRUE(isSetOf(engine.dateSeperatorCharacterSet(), "/: -."));
  EXPECT_TRUE(isSetOf(engine.dateY2KSeperatorCharacterSet(), "'"));
  EXPECT_TRUE(isSetOf(engine.allDateSeperatorCharacterSet(), "/: -.'"));
  EXPECT_EQ(engine.className(), "ORLFDateFormatInferenceEngine");
}

struct InferenceCase {
  std::string_view name;
  std::vector<std::string_view> texts;
  std::vector<NSInteger> formats;
};
const InferenceCase kInferenceCases[] = {
    {"ThirteenIsNoMonth", {"13/02/2021"}, {1}},
    {"ThirteenBehindIsADay", {"02/13/2021"}, {2}},
    {"YearsInFront", {"2021-02-13"}, {3}},
    {"SmallNumbersLeaveAllThree", {"03/04/21"}, {1, 2, 3}},
    {"ALaterDateDecides", {"03/04/21", "03/13/21"}, {2}},
    {"TextsThatAreNoDatesSayNothing", {"Date", "03/13/2021", "total: 5"}, {2}},
    {"OnlyUnfavouredOnesAreLeft", {"2021/13/02"}, {4}},
    {"AYearInTheMiddle", {"13-2021-02"}, {6}},
    {"AMonthThenAYear", {"02-2021-13"}, {5}},
    {"DatesThatContradictEachOther", {"13/02/2021", "02/13/2021"}, {}},
};

TEST(ORLFDateFormatInferenceEngine, LeavesFormats) {
  for (const InferenceCase& row : kInferenceCases) {
    Engine engine;
    for (const std::string_view text : row.texts) engine.processDateString(text);
    EXPECT_EQ(engine.possibleDateFormats(), row.formats) << row.name;
  }
}

TEST(ORLFDateFormatInferenceEngine, TakesTheDayFirstWhereBothFit) {
  Engine engine;
  EXPECT_EQ(engine.dateInferredFromString("03/04/21"), engine.day(2021, 4, 3));
}

TEST(ORLFDateFormatInferenceEngine, InfersOneTextWithoutAChange) {
  Engine engine({"03/04/21"});
  const NSInteger bits = engine.bits();
  EXPECT_EQ(engine.dateInferredFromString("03/13/2021"), engine.day(2021, 3, 13));
  EXPECT_EQ(engine.dateInferredFromString("13/03/2021"), engine.day(2021, 3, 13));
  EXPECT_EQ(engine.bits(), bits);
  engine.processDateString("02/13/2021");
  EXPECT_EQ(engine.dateInferredFromString("03/04/2021"), engine.day(2021, 3, 4));
  // No format remains after both.
  EXPECT_EQ(engine.dateInferredFromString("13/02/2021"), std::nullopt);
  EXPECT_EQ(engine.dateInferredFromString("13/02"), std::nullopt);
}

TEST(ORLFDateFormatInferenceEngine, ZeroIsAYearAlone) {
  Engine engine;
  engine.processDateComponent1(0, 1, 2);
  EXPECT_EQ(engine.bits(), 4 | 8 | 16 | 64 | 128);
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(3));
  engine.reset();
  engine.processDateComponent1(1, 0, 2);
  EXPECT_EQ(engine.bits(), 1 | 2 | 32 | 64 | 128);
  engine.reset();
  engine.processDateComponent1(1, 2, 0);
  EXPECT_EQ(engine.bits(), 1 | 2 | 8 | 16 | 256);
}

TEST(ORLFDateFormatInferenceEngine, DropsBitsBeyondTheNine) {
  for (const NSInteger wild : {NSIntegerMax, NSInteger{-1}, NSIntegerMin | 511, NSInteger{1023}}) {
    Engine engine;
    engine.setBits(wild);
    EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(1, 2, 3));
    engine.processDateComponent1(13, 2, 2021);
    EXPECT_EQ(engine.bits(), 273);
  }
  Engine engine;
  engine.setBits(NSIntegerMin);
  EXPECT_THAT(engine.possibleDateFormats(), IsEmpty());
  engine.processDateComponent1(1, 2, 3);
  EXPECT_EQ(engine.bits(), 0);
}

TEST(ORLFDateFormatInferenceEngine, ResetOpensAllRoles) {
  Engine engine({"13/02/2021"});
  engine.reset();
  EXPECT_EQ(engine.bits(), 511);
}

TEST(ORLFDateFormatInferenceEngine, FavouredFormatsDecide) {
  Engine engine;
  engine.favour({NSInteger{4}});
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(4));
  engine.processDateString("13/02/2021");
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(1));  // it may not leave nothing
  engine.reset();
  engine.favour({NSInteger{6}, 2.0, NSInteger{5}, NSInteger{5}});
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(2, 5, 6));
  engine.favour({});
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(1, 2, 3, 4, 5, 6));
  engine.favour({NSInteger{99}, NSInteger{0}, NSInteger{-1}, "1", NSNull()});
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(1, 2, 3, 4, 5, 6));
  engine.favour({NSInteger{99}, NSInteger{3}});
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(3));
  engine.setPerferedDateFormats(nullptr);
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(1, 2, 3));
}

TEST(ORLFDateFormatInferenceEngine, HoldsCopiesOfSets) {
  Engine engine;
  const auto formats = std::make_shared<NSMutableSet>();
  formats->addObject(NSInteger{2});
  engine.setPerferedDateFormats(formats);
  ORLFDateFormatInferenceEngine::setClassPerferedDateFormats(formats);
  formats->addObject(NSInteger{5});
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(2));
  engine.setPerferedDateFormats(nullptr);
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(2));
  ORLFDateFormatInferenceEngine::setClassPerferedDateFormats(nullptr);
  EXPECT_THAT(engine.possibleDateFormats(), ElementsAre(1, 2, 3));
}

TEST(ORLFDateFormatInferenceEngine, TheSetOfTheClassIsReadAndReplacedOnAnyThread) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread)
    threads.emplace_back([thread] {
      for (int round = 0; round < 500; ++round) {
        if (thread == 0)
          ORLFDateFormatInferenceEngine::setClassPerferedDateFormats(
              NSSet::setWithObjects({NSInteger{2}, NSInteger{round}}));
        EXPECT_TRUE(ORLFDateFormatInferenceEngine::classPerferedDateFormats()->containsObject(
            NSInteger{2}));
      }
    });
  for (std::thread& thread : threads) thread.join();
  ORLFDateFormatInferenceEngine::setClassPerferedDateFormats(nullptr);
}

struct BuildingCase {
  NSUInteger currentYear, year;
  NSInteger built;  // 0 for no date
};
const BuildingCase kBuildingCases[] = {
    {2026, 27, 2027},   {2026, 28, 1928}, {2026, 0, 2000},
    {2026, 26, 2026},   {2026, 99, 1999}, {2026, 100, 2000},
    {2026, 101, 0},     {2026, 999, 0},   {2026, 1000, 1000},
    {2026, 2021, 2021}, {2099, 99, 2099}, {2099, 100, 2100},
    {2098, 100, 2000},  {2000, 1, 2001},  {2000, 2, 1902},
    {1999, 0, 1900},    {99, 0, 0},       {99, 7, 7},
    {50, 52, 52 - 100}, {7, 8, 8},        {2026, 100000, 100000}};

TEST(ORLFDateFormatInferenceEngine, PlacesShortYears) {
  for (const BuildingCase& row : kBuildingCases) {
    Engine engine;
    engine.setCurrentYear(row.currentYear);
    const auto date = engine.buildDateWithComponentsNumber1(3, 4, row.year, 1);
    const auto expected = row.built == 0 ? std::nullopt : engine.day(row.built, 4, 3);
    EXPECT_EQ(date, expected) << row.currentYear << ' ' << row.year;
  }
}

TEST(ORLFDateFormatInferenceEngine, TheFormatSaysWhichNumberIsWhich) {
  Engine engine;
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(3, 4, 2005, 1), engine.day(2005, 4, 3));
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(4, 3, 2005, 2), engine.day(2005, 4, 3));
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(2005, 4, 3, 3), engine.day(2005, 4, 3));
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(2005, 3, 4, 4), engine.day(2005, 4, 3));
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(4, 2005, 3, 5), engine.day(2005, 4, 3));
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(3, 2005, 4, 6), engine.day(2005, 4, 3));
  for (const NSInteger unknown :
       {NSInteger{0}, NSInteger{7}, NSInteger{9}, NSInteger{-1}, NSIntegerMax, NSIntegerMin}) {
    EXPECT_EQ(engine.buildDateWithComponentsNumber1(3, 4, 2005, unknown), std::nullopt);
    EXPECT_EQ(engine.dateFromString("3/4/2005", unknown), std::nullopt);
  }
}

TEST(ORLFDateFormatInferenceEngine, GivesNoDateForADayOrMonthOfZero) {
  Engine engine;
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(0, 4, 2005, 1), std::nullopt);
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(3, 0, 2005, 1), std::nullopt);
  engine.setCurrentYear(50);
  EXPECT_EQ(engine.buildDateWithComponentsNumber1(3, 4, 0, 1), std::nullopt);
}

TEST(ORLFDateFormatInferenceEngine, DaysAndMonthsOutOfRangeRollOver) {
  Engine engine;
  EXPECT_EQ(engine.dateFromString("31/02/2021", 1), engine.day(2021, 3, 3));
  EXPECT_EQ(engine.dateFromString("31/13/2021", 1), engine.day(2022, 1, 31));
  EXPECT_EQ(engine.dateFromString("40/1/2021", 1), engine.day(2021, 2, 9));
}

TEST(ORLFDateFormatInferenceEngine, HugeNumbersGiveDatesOnlyWhereTheCalendarHasThem) {
  Engine engine;
  for (const NSUInteger huge : {NSUInteger{INT64_MAX}, NSUInteger{UINT64_MAX}, NSUInteger{1} << 63,
                                NSUInteger{1'400'000}}) {
    EXPECT_EQ(engine.buildDateWithComponentsNumber1(3, 4, huge, 1),
              engine.day(static_cast<NSInteger>(huge), 4, 3));
    EXPECT_EQ(engine.buildDateWithComponentsNumber1(huge, 4, 2021, 1),
              engine.day(2021, 4, static_cast<NSInteger>(huge)));
    EXPECT_EQ(engine.buildDateWithComponentsNumber1(3, huge, 2021, 1),
              engine.day(2021, static_cast<NSInteger>(huge), 3));
    engine.setCurrentYear(huge);
    static_cast<void>(engine.buildDateWithComponentsNumber1(3, 4, 5, 1));
  }
}

/// The steps word for word; nil where no components are made.
std::optional<std::vector<NSInteger>> fieldsByTheLetter(const std::vector<NSUInteger>& numbers,
                                                        NSInteger format, NSUInteger currentYear) {
  NSUInteger day = 0, month = 0, year = 0;
  const char* const orders[]{"", "dmy", "mdy", "ymd", "ydm", "myd", "dym"};
  if (format >= 1 && format <= kFormats)
    for (std::size_t place = 0; place < 3; ++place) {
      const char role = orders[format][place];
      (role == 'd' ? day : role == 'm' ? month : year) = numbers[place];
    }
  if (!(year > 999)) {
    if (year > 100) return std::nullopt;
    NSUInteger century = currentYear / 100 * 100;
    if (year > currentYear % 100 + 1) century -= 100;
    year += century;
  }
  if (day == 0 || month == 0 || year == 0) return std::nullopt;
  return std::vector<NSInteger>{static_cast<NSInteger>(year), static_cast<NSInteger>(month),
                                static_cast<NSInteger>(day)};
}

TEST(ORLFDateFormatInferenceEngine, BuildsDatesByTheLetter) {
  std::mt19937_64 random(53);
  const auto number = [&random]() -> NSUInteger {
    constexpr NSUInteger kEnds[]{0, 1, 12, 13, 31, 32, 99, 100, 101, 999, 1000, UINT64_MAX};
    switch (random() % 4) {
      case 0:
        return kEnds[random() % std::size(kEnds)];
      case 1:
        return random();
      default:
        return random() % 110;
    }
  };
  Engine engine;
  for (int round = 0; round < 100'000; ++round) {
    const std::vector<NSUInteger> numbers{number(), number(), number()};
    const NSInteger format = static_cast<NSInteger>(random() % 9) - 1;
    const NSUInteger currentYear = 1 + random() % 2200;
    engine.setCurrentYear(currentYear);
    const auto fields = fieldsByTheLetter(numbers, format, currentYear);
    const auto expected =
        fields ? engine.day((*fields)[0], (*fields)[1], (*fields)[2]) : std::nullopt;
    ASSERT_EQ(engine.buildDateWithComponentsNumber1(numbers[0], numbers[1], numbers[2], format),
              expected)
        << testing::PrintToString(numbers) << ' ' << format << ' ' << currentYear;
  }
}

TEST(ORLFDateFormatInferenceEngine, TheCurrentYearIsReadAtTheFirstNeed) {
  Engine engine;
  orlfSetNow(*engine.dateParsingCalendar(), engine.day(1985, 6, 1));
  engine.setCurrentYear(0);
  static_cast<void>(engine.dateFromString("3/4/2005", 1));
  EXPECT_EQ(engine.currentYear(), 0U);  // no short year, no need
  EXPECT_EQ(engine.dateFromString("3/4/86", 1), engine.day(1986, 4, 3));
  EXPECT_EQ(engine.currentYear(), 1985U);
  orlfSetNow(*engine.dateParsingCalendar(), engine.day(2050, 6, 1));
  EXPECT_EQ(engine.dateFromString("3/4/87", 1), engine.day(1887, 4, 3));
  engine.setCurrentYear(0);
  EXPECT_EQ(engine.dateFromString("3/4/500", 1), std::nullopt);
  EXPECT_EQ(engine.currentYear(), 2050U);  // also where the year is refused
  engine.setCurrentYear(0);
  EXPECT_EQ(engine.dateFromString("3/4/2005", 9), std::nullopt);
  EXPECT_EQ(engine.currentYear(), 2050U);  // an unknown format has the short year 0
}

TEST(ORLFDateFormatInferenceEngine, ReadsByItsCalendar) {
  Engine engine;
  engine.setDateParsingCalendar(
      NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierBuddhist));
  engine.dateParsingCalendar()->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  engine.setCurrentYear(2569);
  EXPECT_EQ(engine.dateFromString("3/4/69", 1), Engine().day(2026, 4, 3));
  engine.setDateParsingCalendar(nullptr);
  EXPECT_EQ(engine.dateFromString("3/4/69", 1), std::nullopt);
  engine.setCurrentYear(0);
  EXPECT_EQ(engine.dateInferredFromString("3/4/69"), std::nullopt);
  EXPECT_EQ(engine.currentYear(), 0U);
}

TEST(ORLFDateFormatInferenceEngine, JoinsSeparatorsWhenEitherSetIsAnother) {
  Engine engine;
  const auto bar = NSCharacterSet::characterSetWithCharactersInString("|");
  engine.setAllDateSeperatorCharacterSet(bar);
  EXPECT_TRUE(engine.processDateString("3|4|5"));
  EXPECT_FALSE(engine.processDateString("3/4/5"));
  engine.setDateSeperatorCharacterSet(engine.dateSeperatorCharacterSet());
  engine.setDateY2KSeperatorCharacterSet(engine.dateY2KSeperatorCharacterSet());
  EXPECT_EQ(engine.allDateSeperatorCharacterSet(), bar);  // the same objects change nothing
  engine.setDateY2KSeperatorCharacterSet(
      NSCharacterSet::characterSetWithCharactersInString("'"));  // equal, but another
  EXPECT_FALSE(engine.processDateString("3|4|5"));
  EXPECT_TRUE(engine.processDateString("3/4'5"));
  engine.setAllDateSeperatorCharacterSet(bar);
  engine.setDateSeperatorCharacterSet(NSCharacterSet::characterSetWithCharactersInString("~"));
  EXPECT_TRUE(engine.processDateString("3~4'5"));
  EXPECT_FALSE(engine.processDateString("3/4'5"));
  engine.setAllDateSeperatorCharacterSet(bar);
  engine.updateAllDateSeperatorCharacterSet();
  EXPECT_TRUE(engine.processDateString("3~4'5"));
}

TEST(ORLFDateFormatInferenceEngine, FieldsAreKeys) {
  const auto engine = std::make_shared<ORLFDateFormatInferenceEngine>();
  engine->setValueForKey(NSInteger{7}, "bits");
  EXPECT_EQ(engine->bits(), 7);
  engine->setValueForKey(NSInteger{1999}, "currentYear");
  EXPECT_EQ(engine->valueForKey("currentYear"), id(1999));
  for (const char* key : {"dateSeperatorCharacterSet", "dateY2KSeperatorCharacterSet",
                          "allDateSeperatorCharacterSet", "dateParsingCalendar"}) {
    EXPECT_FALSE(engine->valueForKey(key).isNil()) << key;
    engine->setValueForKey(nullptr, key);
    EXPECT_TRUE(engine->valueForKey(key).isNil()) << key;
  }
  engine->setValueForKey(NSSet::setWithObjects({NSInteger{4}}), "perferedDateFormats");
  EXPECT_EQ(engine->perferedDateFormats()->count(), 1U);
}

TEST(ORLFDateFormatInferenceEngine, ObserversHearOfNarrowingAlone) {
  const auto engine = std::make_shared<Engine>();
  int changes = 0;
  const auto token = engine->addObserver("bits", NSKeyValueObservingOptionNew,
                                         [&changes](const NSKeyValueChange&) { ++changes; });
  engine->processDateString("13/02/2021");
  EXPECT_EQ(changes, 1);
  static_cast<void>(engine->dateInferredFromString("13/02/2021"));
  engine->processDateString("13/02");
  EXPECT_EQ(changes, 1);
  engine->reset();
  EXPECT_EQ(changes, 2);
}

}  // namespace
}  // namespace ORLFoundation
