#include <tests/archives/WrittenArchives.h>

#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <tests/archives/ArchiveSamples.h>

namespace orlftest {

using namespace ORLFoundation;

namespace {

using Day = ORLFDateRecurrenceDayOfWeek;

NSDecimalNumber decimal(std::string_view text) { return NSDecimalNumber(text); }
NSDate date(double seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }

std::shared_ptr<ORLFDateRecurrencePeriod> period(std::int64_t frequency, NSInteger interval) {
  return std::make_shared<ORLFDateRecurrencePeriod>(
      static_cast<ORLFDateRecurrenceFrequency>(frequency), interval);
}

std::shared_ptr<ORLFDateRecurrenceRule> ruleWithAllLists() {
  return ORLFDateRecurrenceRule::ruleWithFields(
      {.frequency = ORLFDateRecurrenceFrequencyYearly,
       .interval = 3,
       .anchorIndex = -9,
       .absolute = true,
       .daysOfTheWeek = {{std::make_shared<Day>(2, -1), std::make_shared<Day>(-3)}},
       .daysOfTheMonth = {{1, 15, -1}},
       .monthsOfTheYear = {{2, 11}},
       .weeksOfTheYear = {{53}},
       .daysOfTheYear = {{366, -366}},
       .setPositions = {std::vector<NSInteger>()}});
}

std::vector<WrittenArchive> libraryArchives() {
  const auto rule = std::make_shared<ORLFDateRecurrenceRule>(ORLFDateRecurrenceFrequencyMonthly, 2);
  const auto handler = std::make_shared<ORLFDecimalNumberHandler>(
      ORLFDecimalNumberHandler::Fields{.roundingMode = NSRoundBankers,
                                       .scale = -3,
                                       .exactnessBehavior = 9,
                                       .overflowBehavior = -1,
                                       .underflowBehavior = 2,
                                       .divideByZeroBehavior = 1});
  auto segment = std::make_shared<ORLFAmortizationPlanSegment>();
  segment->setContribution(decimal("-0.01"));
  return {
      {"period", "ORLFDateRecurrencePeriod", period(8, 1)},
      {"period-odd", "ORLFDateRecurrencePeriod", period(-99, NSIntegerMin)},
      {"day", "ORLFDateRecurrenceDayOfWeek", std::make_shared<Day>(-2, -1)},
      {"end-date", "ORLFDateRecurrenceEnd",
       ORLFDateRecurrenceEnd::initEndWithEndDate(date(730962000))},
      {"end-count", "ORLFDateRecurrenceEnd", ORLFDateRecurrenceEnd::initEndWithOccurrenceCount(12)},
      {"rule", "ORLFDateRecurrenceRule", rule},
      {"rule-lists", "ORLFDateRecurrenceRule", ruleWithAllLists()},
      {"handler", "ORLFDecimalNumberHandler", handler},
      {"handler-mutable", "ORLFDecimalNumberHandler", handler->mutableCopy()},
      {"segment", "ORLFAmortizationPlanSegment", segment},
      {"plan-empty", "ORLFAmortizationPlan", std::make_shared<ORLFAmortizationPlan>()},
      {"plan", "ORLFAmortizationPlan", planOfSegments(3)},
      {"serializable", "ORLFSerializableObject",
       std::make_shared<SerializableObject>(NSDictionary::dictionaryWithEntries(
           {{"rule", rule}, {"set", NSSet::setWithObjects({3, 1})}}))},
  };
}

std::vector<WrittenArchive> plainArchives() {
  return {
      {"true", "NSNumber", true},
      {"negative", "NSNumber", -7},
      {"unsigned", "NSNumber", NSUIntegerMax},
      {"real", "NSNumber", 0.1},
      {"text", "NSString", "Café 日本 😀"},
      {"text-long", "NSString", std::string(300, 'x')},
      {"data", "NSData", NSData(std::string_view("\0\xFF\x10", 3))},
      {"date", "NSDate", date(-1)},
      {"decimal", "NSDecimalNumber", decimal("-1432.25")},
      {"decimal-zero", "NSDecimalNumber", decimal("0")},
      {"decimal-none", "NSDecimalNumber", NSDecimalNumber::notANumber()},
      {"decimal-long", "NSDecimalNumber", decimal("-99999999999999999999999999999999999999")},
      {"decimal-small", "NSDecimalNumber", decimal("1e-128")},
      {"address", "NSURL", *NSURL::URLWithString("https://example.com/a%20b?c=d#e")},
      {"identifier", "NSUUID", *NSUUID::initWithUUIDString("E621E1F8-C36C-495A-93FC-0C247A3E6E5F")},
      {"array", "NSArray", NSArray::arrayWithObjects({1, "two", date(0), NSNull::null()})},
      {"dictionary", "NSDictionary",
       NSDictionary::dictionaryWithEntries({{"a", 1}, {"b", NSArray::arrayWithObjects({true})}})},
      {"set", "NSSet", NSSet::setWithObjects({1, 2, 3})},
  };
}

}  // namespace

std::shared_ptr<ORLFAmortizationPlan> planOfSegments(int count) {
  auto plan = std::make_shared<ORLFAmortizationPlan>();
  std::vector<ORLFAmortizationPlan::Segment> segments;
  for (int index = 0; index < count; ++index) {
    auto segment = std::make_shared<ORLFAmortizationPlanSegment>();
    segment->setStartDate(date(730962000 + 2592000.0 * index));
    segment->setCurrentPrincipal(decimal("-250000.75"));
    segment->setContribution(NSDecimalNumber(NSDecimal::fromInteger(1000 + index)));
    segment->setContributionFrequncy(period(8, 1));
    segment->setAnualCompoundingRate(
        NSDecimalNumber(NSDecimal(static_cast<NSDecimal::Mantissa>(500 + index), -4, false)));
    segment->setCompoundingFrequncy(period(16, index));
    segment->setAnualInflationRate(decimal("0.02"));
    segments.push_back(std::move(segment));
  }
  plan->setSegments(std::move(segments));
  plan->setEndDate(NSDate::distantFuture());
  return plan;
}

const std::vector<WrittenArchive>& writtenArchives() {
  static const std::vector<WrittenArchive> archives = [] {
    std::vector<WrittenArchive> all = plainArchives();
    for (WrittenArchive& each : libraryArchives()) all.push_back(std::move(each));
    return all;
  }();
  return archives;
}

}  // namespace orlftest
