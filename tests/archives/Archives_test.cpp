// Archives of the library's own classes, and what hostile bytes give.
#include <ORLFoundation/decimal/ORLFMutableDecimalNumberHandler.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListUID.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <gtest/gtest.h>
#include <tests/archives/ArchiveSamples.h>
#include <tests/archives/WrittenArchives.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace ORLFoundation;
using orlftest::archived;
using orlftest::jsonFromObject;
using orlftest::WrittenArchive;
using orlftest::writtenArchives;

std::shared_ptr<NSDictionary> rootEntry(const NSData& data) {
  const auto root = NSPropertyListSerialization::propertyListWithData(data, 0).as<NSDictionary>();
  const auto objects = root ? root->objectForKey("$objects").as<NSArray>() : nullptr;
  return objects ? objects->objectAtIndex(1).as<NSDictionary>() : nullptr;
}

/// An archive of one object of that class with the fields given.
NSData archiveOf(std::string_view className, NSDictionary::Entries fields,
                 const std::vector<id>& more = {}) {
  fields.emplace_back("$class", std::make_shared<NSPropertyListUID>(2));
  std::vector<id> objects = {"$null", std::make_shared<NSDictionary>(fields),
                             NSDictionary::dictionaryWithEntries({{"$classname", className}})};
  objects.insert(objects.end(), more.begin(), more.end());
  const id top =
      NSDictionary::dictionaryWithEntries({{"root", std::make_shared<NSPropertyListUID>(1)}});
  return *NSPropertyListSerialization::dataWithPropertyList(
      NSDictionary::dictionaryWithEntries({{"$archiver", "NSKeyedArchiver"},
                                           {"$version", 100000},
                                           {"$top", top},
                                           {"$objects", std::make_shared<NSArray>(objects)}}),
      NSPropertyListBinaryFormat_v1_0, 0);
}

TEST(Archives, OfEachClassReadBackEqualInBothForms) {
  for (const WrittenArchive& row : writtenArchives()) {
    for (const auto format : {NSPropertyListBinaryFormat_v1_0, NSPropertyListXMLFormat_v1_0}) {
      std::shared_ptr<const NSError> error;
      const id back = NSKeyedUnarchiver::unarchivedObject(orlftest::classesToRead(row.className),
                                                          archived(row.object, format), &error);
      ASSERT_FALSE(back.isNil()) << row.name << ": " << error->localizedDescription();
      EXPECT_EQ(back.className(), row.object.className()) << row.name;
      EXPECT_EQ(jsonFromObject(back), jsonFromObject(row.object)) << row.name;
    }
  }
}

TEST(Archives, OfGoodSamplesAreWrittenAgainWithTheSameValues) {
  int written = 0;
  for (const std::string& name : orlftest::sampleNames()) {
    const id object =
        NSKeyedUnarchiver::unarchivedObject(orlftest::allClasses(), orlftest::sampleNamed(name));
    if (object.isNil()) continue;
    const id again = NSKeyedUnarchiver::unarchivedObject(orlftest::allClasses(), archived(object));
    EXPECT_EQ(jsonFromObject(again), jsonFromObject(object)) << name;
    ++written;
  }
  EXPECT_GT(written, 0);
}

TEST(ORLFDateRecurrenceRule, ReadsAnythingMissingAsNilAndZero) {
  const auto rule = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDateRecurrenceRule>(
      archiveOf("ORLFDateRecurrenceRule", {{"frequency", 8}, {"interval", 4}}));
  ASSERT_TRUE(rule);
  EXPECT_EQ(rule->interval(), 4);
  EXPECT_EQ(rule->anchorIndex(), 0);
  EXPECT_FALSE(rule->absolute());
  EXPECT_TRUE(rule->isSimpleRecurrence());
}

TEST(ORLFDateRecurrencePeriod, ReadsMissingNumbersAsZero) {
  const auto read = [](NSDictionary::Entries fields) {
    return NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDateRecurrencePeriod>(
        archiveOf("ORLFDateRecurrencePeriod", std::move(fields)));
  };
  EXPECT_EQ(read({{"frequency", 8}})->interval(), 0);
  EXPECT_EQ(read({{"interval", 3}})->frequency(), 0);
  EXPECT_EQ(read({{"interval", 3}})->interval(), 3);
  EXPECT_FALSE(read({{"interval", "3"}}));
}

TEST(ORLFDateRecurrenceDayOfWeek, ReadsMissingNumbersAsZero) {
  const auto day = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDateRecurrenceDayOfWeek>(
      archiveOf("ORLFDateRecurrenceDayOfWeek", {}));
  ASSERT_TRUE(day);
  EXPECT_EQ(day->dayOfTheWeek(), 0);
  EXPECT_EQ(day->weekNumber(), 0);
}

TEST(ORLFDateRecurrenceEnd, ReadsAMissingDateAsNilAndAMissingCountAsZero) {
  const auto end = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDateRecurrenceEnd>(
      archiveOf("ORLFDateRecurrenceEnd", {}));
  ASSERT_TRUE(end);
  EXPECT_FALSE(end->endDate());
  EXPECT_EQ(end->occurrenceCount(), 0U);
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDateRecurrenceEnd>(
      archiveOf("ORLFDateRecurrenceEnd", {{"endDate", std::make_shared<NSPropertyListUID>(3)}},
                {"2024-01-01"})));
}

TEST(ORLFDateRecurrenceRule, ReadsAnEmptyListAsOne) {
  const auto rule = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDateRecurrenceRule>(
      archived(ORLFDateRecurrenceRule::ruleWithFields(
          {.daysOfTheMonth = std::vector<NSInteger>(), .setPositions = std::nullopt})));
  ASSERT_TRUE(rule);
  ASSERT_TRUE(rule->daysOfTheMonth());
  EXPECT_TRUE(rule->daysOfTheMonth()->empty());
  EXPECT_FALSE(rule->isSimpleRecurrence());
}

TEST(ORLFDateRecurrenceRule, WritesItsFieldsInTheirOrderAndLeavesOutNilLists) {
  const auto entry = rootEntry(archived(std::make_shared<ORLFDateRecurrenceRule>(
      ORLFDateRecurrenceRule::Recurrence{.daysOfTheMonth = {{1}}, .setPositions = {{-1}}})));
  ASSERT_TRUE(entry);
  EXPECT_EQ(entry->allKeys(), (std::vector<id>{"frequency", "interval", "anchorIndex", "absolute",
                                               "daysOfTheMonth", "setPositions", "$class"}));
}

TEST(ORLFDateRecurrenceRule, RefusesListsOfOtherThings) {
  const id uid3 = std::make_shared<NSPropertyListUID>(3);
  const id array = NSDictionary::dictionaryWithEntries({{"$classname", "NSArray"}});
  const id members = NSArray::arrayWithObjects({std::make_shared<NSPropertyListUID>(4)});
  const id listOfFour = NSDictionary::dictionaryWithEntries(
      {{"NS.objects", members}, {"$class", std::make_shared<NSPropertyListUID>(5)}});
  const id emptyList =
      NSDictionary::dictionaryWithEntries({{"NS.objects", std::make_shared<NSArray>()},
                                           {"$class", std::make_shared<NSPropertyListUID>(5)}});
  const auto read = [](const NSData& data) {
    std::shared_ptr<const NSError> error;
    const auto rule =
        NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDateRecurrenceRule>(data, &error);
    EXPECT_EQ(rule == nullptr, error != nullptr);
    return rule;
  };
  const std::string_view name = "ORLFDateRecurrenceRule";
  EXPECT_TRUE(read(archiveOf(name, {{"daysOfTheMonth", uid3}}, {listOfFour, 7, array})));
  EXPECT_FALSE(read(archiveOf(name, {{"daysOfTheMonth", uid3}}, {listOfFour, "7", array})));
  EXPECT_FALSE(read(archiveOf(name, {{"daysOfTheMonth", uid3}}, {listOfFour, emptyList, array})));
  EXPECT_FALSE(read(archiveOf(name, {{"daysOfTheMonth", uid3}}, {7})));
  EXPECT_FALSE(read(archiveOf(name, {{"daysOfTheWeek", uid3}}, {listOfFour, 7, array})));
}

TEST(ORLFDecimalNumberHandler, CutsTheScaleTo16BitsOnReading) {
  const auto read = [](NSDictionary::Entries fields) {
    return NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDecimalNumberHandler>(
        archiveOf("ORLFDecimalNumberHandler", std::move(fields)));
  };
  EXPECT_EQ(read({{"decimalScale", -3}})->scale(), -3);
  EXPECT_EQ(read({{"decimalScale", 65533}})->scale(), -3);
  EXPECT_EQ(read({{"decimalScale", NSIntegerMax}})->scale(), -1);
  EXPECT_EQ(read({})->roundingMode(), NSRoundPlain);
  EXPECT_EQ(static_cast<NSUInteger>(read({{"roundingMode", -1}})->roundingMode()), NSUIntegerMax);
  EXPECT_FALSE(read({{"overflowBehavior", 4294967296}}));
}

TEST(ORLFDecimalNumberHandler, IsReadAsTheClassThatWroteIt) {
  const ORLFDecimalNumberHandler::Fields fields{.roundingMode = NSRoundUp, .scale = 2};
  const auto back = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDecimalNumberHandler>(
      archived(std::make_shared<ORLFMutableDecimalNumberHandler>(fields)));
  ASSERT_TRUE(std::dynamic_pointer_cast<ORLFMutableDecimalNumberHandler>(back));
  EXPECT_EQ(back->scale(), 2);
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFMutableDecimalNumberHandler>(
      archived(std::make_shared<ORLFDecimalNumberHandler>(fields))));
}

TEST(ORLFAmortizationPlanSegment, ComesBackMonthlyWithoutAFrequency) {
  const auto segment = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlanSegment>(
      archiveOf("ORLFAmortizationPlanSegment", {}));
  ASSERT_TRUE(segment);
  EXPECT_EQ(segment->contributionFrequncy()->frequency(), ORLFDateRecurrenceFrequencyMonthly);
  EXPECT_EQ(segment->contributionFrequncy()->interval(), 1);
  EXPECT_FALSE(segment->startDate());
  EXPECT_FALSE(segment->currentPrincipal());
  EXPECT_FALSE(segment->contribution());
  EXPECT_FALSE(segment->anualCompoundingRate());
  EXPECT_FALSE(segment->anualInflationRate());
  EXPECT_FALSE(segment->amortizationPlan());
}

TEST(ORLFAmortizationPlanSegment, WritesItsPlanButDoesNotKeepIt) {
  const auto plan = orlftest::planOfSegments(2);
  const NSData data = archived(plan->segments()[1]);
  const auto segment =
      NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlanSegment>(data);
  ASSERT_TRUE(segment);
  EXPECT_TRUE(segment->isEqualSegment(plan->segments()[1].get()));
  EXPECT_FALSE(segment->amortizationPlan());
  EXPECT_NE(data.text().find("ORLFAmortizationPlan"), std::string_view::npos);
}

TEST(ORLFAmortizationPlan, ComesBackEqualWithItsSegmentsLinked) {
  const auto plan = orlftest::planOfSegments(50);
  const auto back =
      NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlan>(archived(plan));
  ASSERT_TRUE(back);
  EXPECT_TRUE(back->isEqualAmortizationPlan(plan.get()));
  for (const auto& segment : back->segments()) EXPECT_EQ(segment->amortizationPlan(), back);
}

TEST(ORLFAmortizationPlan, RefusesSegmentsThatAreNone) {
  const id uid3 = std::make_shared<NSPropertyListUID>(3);
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlan>(
      archiveOf("ORLFAmortizationPlan", {{"segments", std::make_shared<NSPropertyListUID>(1)}})));
  EXPECT_FALSE(NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlan>(
      archiveOf("ORLFAmortizationPlan", {{"segments", uid3}}, {"text"})));
}

TEST(ORLFAmortizationPlan, ReadsAnythingMissingAsNone) {
  const auto plan = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFAmortizationPlan>(
      archiveOf("ORLFAmortizationPlan", {}));
  ASSERT_TRUE(plan);
  EXPECT_TRUE(plan->segments().empty());
  EXPECT_FALSE(plan->endDate());
}

/// So many of the places 0 to `count` as fit a bound on what all readings take together: all of
/// them in a sample of up to some 3,000 bytes, an even choice in a longer one.
std::vector<std::size_t> placesIn(std::size_t count, std::size_t bytesOfReading) {
  constexpr std::size_t kMostBytes = std::size_t{1} << 26;
  const std::size_t most = kMostBytes / (bytesOfReading + 1) + 1;
  const std::size_t step = (count + most - 1) / most;
  std::vector<std::size_t> places;
  for (std::size_t place = 0; place < count; place += std::max<std::size_t>(step, 1))
    places.push_back(place);
  return places;
}

TEST(PlacesIn, AreAllOfAShortSampleAndAFewOfALongOne) {
  EXPECT_EQ(placesIn(8 * 2000, 2000).size(), 8U * 2000);
  EXPECT_LT(placesIn(8 * 180000, 180000).size(), 400U);
  EXPECT_GT(placesIn(8 * 180000, 180000).size(), 300U);
  EXPECT_EQ(placesIn(std::size_t{1} << 40, std::size_t{1} << 37).size(), 1U);
  EXPECT_TRUE(placesIn(0, 0).empty());
}

TEST(NSKeyedUnarchiver, RefusesSamplesThatAreCutOff) {
  for (const std::string& name : orlftest::sampleNames()) {
    const NSData sample = orlftest::sampleNamed(name);
    for (const std::size_t length : placesIn(sample.length(), sample.length())) {
      std::shared_ptr<const NSError> error;
      const id object = NSKeyedUnarchiver::unarchivedObject(
          orlftest::allClasses(), NSData(sample.bytes().first(length)), &error);
      ASSERT_TRUE(object.isNil() && error) << name << " at " << length;
    }
  }
}

TEST(NSKeyedUnarchiver, AnswersSamplesWithABitFlipped) {
  for (const std::string& name : orlftest::sampleNames()) {
    const NSData sample = orlftest::sampleNamed(name);
    std::vector<std::uint8_t> bytes(sample.bytes().begin(), sample.bytes().end());
    for (const std::size_t bit : placesIn(8 * bytes.size(), bytes.size())) {
      const auto mask = static_cast<std::uint8_t>(1U << bit % 8);
      bytes[bit / 8] ^= mask;
      std::shared_ptr<const NSError> error;
      const id object =
          NSKeyedUnarchiver::unarchivedObject(orlftest::allClasses(), NSData(bytes), &error);
      ASSERT_EQ(object.isNil(), error != nullptr) << name << " bit " << bit;
      if (!object.isNil()) static_cast<void>(jsonFromObject(object));
      bytes[bit / 8] ^= mask;
    }
  }
}

}  // namespace
