#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <array>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::Json;

std::shared_ptr<NSSet> setOf(const Json& formats) {
  if (formats.is_null()) return nullptr;
  std::vector<id> members;
  for (const Json& format : formats) members.emplace_back(format.get<NSInteger>());
  return std::make_shared<NSSet>(members);
}

/// An engine under what a row gives of "currentYear", "bits", favoured formats and separators.
std::shared_ptr<ORLFDateFormatInferenceEngine> engineOf(const Json& in) {
  auto engine = std::make_shared<ORLFDateFormatInferenceEngine>();
  engine->setDateParsingCalendar(orlftest::calendarIn("UTC"));
  if (in.contains("currentYear")) engine->setCurrentYear(in.at("currentYear").get<NSUInteger>());
  if (in.contains("bits")) engine->setBits(in.at("bits").get<NSInteger>());
  for (const char* key : {"preferred", "perferedDateFormats"})
    if (in.contains(key)) engine->setPerferedDateFormats(setOf(in.at(key)));
  const auto characters = [](const Json& text) {
    return NSCharacterSet::characterSetWithCharactersInString(text.get<std::string>());
  };
  if (in.contains("separators"))
    engine->setDateSeperatorCharacterSet(characters(in.at("separators")));
  if (in.contains("y2kSeparators"))
    engine->setDateY2KSeperatorCharacterSet(characters(in.at("y2kSeparators")));
  return engine;
}

/// As the row writes it: a day alone, or with its time.
Json jsonOf(const std::optional<NSDate>& date, const Json& expected) {
  if (!date) return nullptr;
  constexpr NSUInteger kFields = NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay |
                                 NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond |
                                 NSCalendarUnitEra;
  const NSDateComponents fields = orlftest::utcCalendar().components(kFields, *date);
  std::array<char, 80> text{};
  const std::size_t length = static_cast<std::size_t>(
      std::snprintf(text.data(), text.size(), "%s%04lld-%02lld-%02lldT%02lld:%02lld:%02lldZ",
                    fields.era() == 0 ? "BC " : "", static_cast<long long>(fields.year()),
                    static_cast<long long>(fields.month()), static_cast<long long>(fields.day()),
                    static_cast<long long>(fields.hour()), static_cast<long long>(fields.minute()),
                    static_cast<long long>(fields.second())));
  std::string whole(text.data(), length);
  const bool isDay = expected.is_string() && expected.get<std::string>().size() == 10;
  if (isDay && whole.ends_with("T00:00:00Z")) whole.resize(10);
  return whole;
}

Json numbersIn(const ORLFDateFormatInferenceEngine& engine, const std::string& text) {
  constexpr NSUInteger kUntouched = 0x5EED5EED5EED5EED;
  std::array<NSUInteger, 3> numbers{kUntouched, kUntouched, kUntouched};
  static_cast<void>(engine.parseDate(text, &numbers[0], &numbers[1], &numbers[2]));
  if (numbers[0] == kUntouched) return nullptr;
  Json list = Json::array();
  for (const NSUInteger number : numbers) list.push_back(static_cast<NSInteger>(number));
  return list;
}

/// The roles of a place as letters: "dmy".
Json rolesOf(NSInteger bits) {
  Json roles = Json::array();
  for (int place = 0; place < 3; ++place) {
    std::string letters;
    for (int role = 0; role < 3; ++role)
      if ((bits >> (3 * place + role) & 1) != 0) letters += "dmy"[role];
    roles.push_back(letters);
  }
  return roles;
}

/// The dates of all texts, each written as its expectation is.
template <class Read>
Json datesOf(const Json& texts, const Json& expected, Read read) {
  Json dates = Json::array();
  for (std::size_t index = 0; index < texts.size(); ++index)
    dates.push_back(jsonOf(read(texts[index].get<std::string>()), expected.at(index)));
  return dates;
}

std::shared_ptr<NSSet> exchangeClassFormats(std::shared_ptr<NSSet> formats) {
  auto before = ORLFDateFormatInferenceEngine::classPerferedDateFormats();
  ORLFDateFormatInferenceEngine::setClassPerferedDateFormats(formats);
  return before;
}

std::string checkInference(const Json& in, const Json& out) {
  const Replaced favoured(&exchangeClassFormats,
                          in.contains("classPreferred") ? setOf(in.at("classPreferred")) : nullptr);
  const auto engine = engineOf(in);
  Json came{{"parsed", Json::array()}, {"bitsAfter", Json::array()}, {"numbers", Json::array()}};
  for (const Json& text : in.at("texts")) {
    came["numbers"].push_back(numbersIn(*engine, text.get<std::string>()));
    came["parsed"].push_back(engine->processDateString(text.get<std::string>()));
    came["bitsAfter"].push_back(engine->bits());
  }
  const std::vector<NSInteger> formats = engine->possibleDateFormats();
  came["bits"] = engine->bits();
  came["roles"] = rolesOf(engine->bits());
  came["formats"] = formats;
  came["first"] = formats.empty() ? 0 : formats.front();
  came["dates"] = Json::object();
  for (const auto& entry : out.at("dates").items()) {
    const NSInteger format = std::stoll(entry.key());
    came["dates"][entry.key()] =
        datesOf(in.at("texts"), entry.value(),
                [&](const std::string& text) { return engine->dateFromString(text, format); });
  }
  if (out.contains("inferred"))
    came["inferred"] = datesOf(in.at("texts"), out.at("inferred"), [&](const std::string& text) {
      return engine->dateInferredFromString(text);
    });
  if (engine->bits() != came["bits"]) return "reading dates changed the bits";
  for (const auto& [key, value] : out.items()) {
    const std::string difference = orlftest::disagreement(value.dump(), came.at(key).dump());
    if (!difference.empty()) return key + ": " + difference;
  }
  return {};
}

std::string checkParse(const Json& in, const Json& out) {
  const auto engine = engineOf(in);
  const auto text = in.at("text").get<std::string>();
  const Json came{{"numbers", numbersIn(*engine, text)},
                  {"ok", engine->parseDate(text, nullptr, nullptr, nullptr)}};
  return orlftest::disagreement(out.dump(), came.dump());
}

std::string checkNarrowing(const Json& in, const Json& out) {
  const auto engine = engineOf(in);
  for (const Json& numbers : in.at("numbers"))
    engine->processDateComponent1(numbers.at(0).get<NSInteger>(), numbers.at(1).get<NSInteger>(),
                                  numbers.at(2).get<NSInteger>());
  const Json came{{"bits", engine->bits()},
                  {"formats", engine->possibleDateFormats()},
                  {"roles", rolesOf(engine->bits())}};
  return orlftest::disagreement(out.dump(), came.dump());
}

std::string checkBitsOfNumbers(const Json& in, const Json& out) {
  ORLFDateFormatInferenceEngine engine;
  engine.processDateComponent1(in.at(0).get<NSInteger>(), in.at(1).get<NSInteger>(),
                               in.at(2).get<NSInteger>());
  return orlftest::disagreement(out.get<NSInteger>(), engine.bits());
}

std::string checkFormats(const Json& in, const Json& out) {
  return orlftest::disagreement(out.dump(), Json(engineOf(in)->possibleDateFormats()).dump());
}

std::string checkBuilding(const Json& in, const Json& out) {
  const auto number = [&in](std::size_t place) {
    return static_cast<NSUInteger>(in.at("numbers").at(place).get<NSInteger>());
  };
  const auto date = engineOf(in)->buildDateWithComponentsNumber1(number(0), number(1), number(2),
                                                                 in.at("format").get<NSInteger>());
  return orlftest::disagreement(out.dump(), jsonOf(date, out).dump());
}

TEST(ORLFDateFormatInferenceEngine, AgreesWithVectorsOfTypedDates) {
  orlftest::runJsonVectors("typed_inference", {{"infer", &checkInference},
                                               {"processDateComponents", &checkBitsOfNumbers},
                                               {"buildDate", &checkBuilding}});
}

TEST(ORLFDateFormatInferenceEngine, AgreesWithVectorsOfEntry) {
  orlftest::runJsonVectors(
      "entry_inference",
      {{"infer", &checkInference},
       {"parseDate", &checkParse},
       {"processDateComponent1:component2:component3:", &checkNarrowing},
       {"possibleDateFormats", &checkFormats},
       {"buildDateWithComponentsNumber1:number2:number3:withFormat:", &checkBuilding}});
}

}  // namespace
}  // namespace ORLFoundation
