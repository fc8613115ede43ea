#include <tests/archives/ArchiveSamples.h>

#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>
#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>
#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>
#include <tests/support/Files.h>
#include <tests/support/VectorFile.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>

namespace orlftest {

using namespace ORLFoundation;

const NSCodingClass& SerializableObject::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<SerializableObject>("ORLFSerializableObject");
  return record;
}

std::shared_ptr<SerializableObject> SerializableObject::initWithCoder(NSCoder& coder) {
  return std::make_shared<SerializableObject>(
      coder.decodeObjectOfClasses<NSArray, NSDictionary, NSSet, std::string, NSNumber, NSDate,
                                  NSData, NSURL, NSUUID, NSNull, ORLFDateRecurrenceRule>("data"));
}

void SerializableObject::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObject(data_, "data");
}

NSCodingClasses classesToRead(const std::string& name) {
  static const std::map<std::string, NSCodingClasses> known = {
      {"NSNumber", NSCodingClassesOf<NSNumber>()},
      {"NSString", NSCodingClassesOf<std::string>()},
      {"NSDate", NSCodingClassesOf<NSDate>()},
      {"NSData", NSCodingClassesOf<NSData>()},
      {"NSURL", NSCodingClassesOf<NSURL>()},
      {"NSUUID", NSCodingClassesOf<NSUUID>()},
      {"NSNull", NSCodingClassesOf<NSNull>()},
      {"NSDecimalNumber", NSCodingClassesOf<NSDecimalNumber>()},
      {"NSArray", NSCodingClassesOf<NSArray, NSDictionary, NSSet, std::string, NSNumber, NSDate,
                                    NSData, NSURL, NSUUID, NSNull>()},
      {"NSDictionary", NSCodingClassesOf<NSDictionary, NSArray, NSSet, std::string, NSNumber,
                                         NSDate, NSData, NSURL, NSUUID, NSNull>()},
      {"NSSet", NSCodingClassesOf<NSSet, NSArray, NSDictionary, std::string, NSNumber, NSDate,
                                  NSData, NSURL, NSUUID, NSNull>()},
      {"ORLFDateRecurrencePeriod", NSCodingClassesOf<ORLFDateRecurrencePeriod>()},
      {"ORLFDateRecurrenceDayOfWeek", NSCodingClassesOf<ORLFDateRecurrenceDayOfWeek>()},
      {"ORLFDateRecurrenceEnd", NSCodingClassesOf<ORLFDateRecurrenceEnd>()},
      {"ORLFDateRecurrenceRule", NSCodingClassesOf<ORLFDateRecurrenceRule>()},
      {"ORLFDecimalNumberHandler", NSCodingClassesOf<ORLFDecimalNumberHandler>()},
      {"ORLFAmortizationPlanSegment", NSCodingClassesOf<ORLFAmortizationPlanSegment>()},
      {"ORLFAmortizationPlan", NSCodingClassesOf<ORLFAmortizationPlan>()},
      {"ORLFSerializableObject", NSCodingClassesOf<SerializableObject>()},
  };
  const auto found = known.find(name);
  if (found == known.end()) throw std::runtime_error("unknown class " + name);
  return found->second;
}

NSCodingClasses allClasses() {
  return NSCodingClassesOf<NSArray, NSDictionary, NSSet, std::string, NSNumber, NSDecimalNumber,
                           NSDate, NSData, NSURL, NSUUID, NSNull, ORLFDateRecurrencePeriod,
                           ORLFDateRecurrenceDayOfWeek, ORLFDateRecurrenceEnd,
                           ORLFDateRecurrenceRule, ORLFDecimalNumberHandler,
                           ORLFAmortizationPlanSegment, ORLFAmortizationPlan, SerializableObject>();
}

namespace {

const std::string kSampleFolder = "files/archives/";

}  // namespace

NSData archived(const id& object, NSPropertyListFormat format) {
  NSKeyedArchiver archiver(true);
  archiver.setOutputFormat(format);
  archiver.encodeObject(object, NSKeyedArchiveRootObjectKey);
  return archiver.encodedData();
}

NSData sampleNamed(const std::string& file) {
  return NSData(std::string_view(contentOf(vectorFile(kSampleFolder + file))));
}

std::vector<std::string> sampleNames() {
  std::set<std::string> names;
  for (const auto& folder : {vectorFolder(), testDataFolder() / "vectors"}) {
    if (!std::filesystem::is_directory(folder / kSampleFolder)) continue;
    for (const auto& entry : std::filesystem::directory_iterator(folder / kSampleFolder))
      names.insert(entry.path().filename().string());
  }
  return {names.begin(), names.end()};
}

namespace {

Json jsonFromDate(const std::optional<NSDate>& date) {
  return date ? Json(vectorFromDate(date)) : Json();
}

Json jsonFromDecimal(const std::optional<NSDecimalNumber>& decimal) {
  return decimal ? Json(decimal->stringValue()) : Json();
}

Json jsonFromPeriod(const std::shared_ptr<ORLFDateRecurrencePeriod>& period) {
  if (!period) return {};
  return Json::array({static_cast<std::int64_t>(period->frequency()), period->interval()});
}

Json jsonFromNumber(const NSNumber& number) {
  switch (number.kind()) {
    case NSNumber::Kind::Boolean:
      return number.boolValue();
    case NSNumber::Kind::Integer:
      return number.integerValue();
    case NSNumber::Kind::UnsignedInteger:
      return number.unsignedIntegerValue();
    case NSNumber::Kind::Double:
      return number.doubleValue();
    default:
      return number.stringValue();
  }
}

Json jsonFromSet(const NSSet& set) {
  Json members = Json::array();
  for (const id& member : set.allObjects()) members.push_back(jsonFromObject(member));
  std::sort(members.begin(), members.end());
  return {{"set", members}};
}

Json jsonFromDictionary(const NSDictionary& dictionary) {
  Json object = Json::object();
  for (const auto& [key, value] : dictionary.entries())
    object[key.description()] = jsonFromObject(value);
  return object;
}

Json jsonFromRule(const ORLFDateRecurrenceRule& rule) {
  const auto list = [](const ORLFDateRecurrenceRule::Integers& integers) {
    return integers ? Json(*integers) : Json();
  };
  Json days;
  if (rule.daysOfTheWeek()) {
    days = Json::array();
    for (const auto& day : *rule.daysOfTheWeek())
      days.push_back(Json::array({day->dayOfTheWeek(), day->weekNumber()}));
  }
  return {{"frequency", static_cast<std::int64_t>(rule.frequency())},
          {"interval", rule.interval()},
          {"anchorIndex", rule.anchorIndex()},
          {"absolute", rule.absolute()},
          {"daysOfTheWeek", days},
          {"daysOfTheMonth", list(rule.daysOfTheMonth())},
          {"monthsOfTheYear", list(rule.monthsOfTheYear())},
          {"weeksOfTheYear", list(rule.weeksOfTheYear())},
          {"daysOfTheYear", list(rule.daysOfTheYear())},
          {"setPositions", list(rule.setPositions())}};
}

Json jsonFromHandler(const ORLFDecimalNumberHandler& handler) {
  return {{"roundingMode", static_cast<std::int64_t>(handler.roundingMode())},
          {"decimalScale", handler.scale()},
          {"exactnessBehavior", handler.exactnessBehavior()},
          {"overflowBehavior", handler.overflowBehavior()},
          {"underflowBehavior", handler.underflowBehavior()},
          {"divideByZeroBehavior", handler.divideByZeroBehavior()}};
}

Json jsonFromSegment(const ORLFAmortizationPlanSegment& segment) {
  return {{"startDate", jsonFromDate(segment.startDate())},
          {"currentPrincipal", jsonFromDecimal(segment.currentPrincipal())},
          {"contribution", jsonFromDecimal(segment.contribution())},
          {"contributionFrequncy", jsonFromPeriod(segment.contributionFrequncy())},
          {"anualCompoundingRate", jsonFromDecimal(segment.anualCompoundingRate())},
          {"compoundingFrequncy", jsonFromPeriod(segment.compoundingFrequncy())},
          {"anualInflationRate", jsonFromDecimal(segment.anualInflationRate())}};
}

Json jsonFromPlan(const std::shared_ptr<ORLFAmortizationPlan>& plan) {
  Json segments = Json::array();
  for (const auto& segment : plan->segments()) {
    if (segment->amortizationPlan() != plan) return "a segment does not point back to its plan";
    segments.push_back(jsonFromSegment(*segment));
  }
  return {{"endDate", jsonFromDate(plan->endDate())}, {"segments", segments}};
}

Json jsonFromLibraryObject(const id& object) {
  if (const auto period = object.as<ORLFDateRecurrencePeriod>())
    return {{"frequency", static_cast<std::int64_t>(period->frequency())},
            {"interval", period->interval()}};
  if (const auto day = object.as<ORLFDateRecurrenceDayOfWeek>())
    return {{"dayOfTheWeek", day->dayOfTheWeek()}, {"weekNumber", day->weekNumber()}};
  if (const auto end = object.as<ORLFDateRecurrenceEnd>())
    return {{"endDate", jsonFromDate(end->endDate())}, {"occurrenceCount", end->occurrenceCount()}};
  if (const auto rule = object.as<ORLFDateRecurrenceRule>()) return jsonFromRule(*rule);
  if (const auto handler = object.as<ORLFDecimalNumberHandler>()) return jsonFromHandler(*handler);
  if (const auto segment = object.as<ORLFAmortizationPlanSegment>())
    return jsonFromSegment(*segment);
  if (const auto plan = object.as<ORLFAmortizationPlan>()) return jsonFromPlan(plan);
  if (const auto serializable = object.as<SerializableObject>())
    return jsonFromObject(serializable->data());
  throw std::runtime_error("no JSON for " + object.className());
}

}  // namespace

Json jsonFromObject(const id& object) {
  if (object.isNil() || object.isNull()) return {};
  if (const auto* number = object.get<NSNumber>()) return jsonFromNumber(*number);
  if (const auto* text = object.get<std::string>()) return *text;
  if (const auto* date = object.get<NSDate>()) return jsonFromDate(*date);
  if (const auto* url = object.get<NSURL>()) return url->absoluteString();
  if (const auto* uuid = object.get<NSUUID>()) return uuid->UUIDString();
  if (const auto* data = object.get<NSData>())
    return {{"base64", internal::base::base64Text(data->text())}};
  if (const auto set = object.as<NSSet>()) return jsonFromSet(*set);
  if (const auto dictionary = object.as<NSDictionary>()) return jsonFromDictionary(*dictionary);
  if (const auto array = object.as<NSArray>()) {
    Json members = Json::array();
    for (const id& member : *array) members.push_back(jsonFromObject(member));
    return members;
  }
  return jsonFromLibraryObject(object);
}

}  // namespace orlftest
