#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <gtest/gtest.h>
#include <tests/archives/ArchiveSamples.h>
#include <tests/support/VectorFile.h>

#include <algorithm>
#include <chrono>

namespace {

using namespace ORLFoundation;
using orlftest::Json;

Json sortedSets(Json value) {
  if (value.is_object() && value.contains("set"))
    std::sort(value["set"].begin(), value["set"].end());
  return value;
}

/// An odd sample may be read or refused: then the table names both outcomes.
bool allowsNil(const Json& row) { return row.at("outcome").get<std::string>().starts_with("nil"); }

std::string checkOutcome(const Json& row, const id& object,
                         const std::shared_ptr<const NSError>& error) {
  const auto outcome = row.at("outcome").get<std::string>();
  if (object.isNil()) {
    if (!error) return "nil without an error";
    return allowsNil(row) ? "" : "expected a value, got nil: " + error->localizedDescription();
  }
  if (error) return "an error beside a value";
  if (outcome == "nil") return "expected nil, got " + orlftest::jsonFromObject(object).dump();
  if (outcome == "nil or a date") return object.get<NSDate>() != nullptr ? "" : "expected a date";
  if (outcome == "nil or a rule with daysOfTheMonth nil")
    return orlftest::jsonFromObject(object).at("daysOfTheMonth").is_null() ? "" : "a list of text";
  if (outcome != "value") return "unknown outcome " + outcome;
  const Json actual = orlftest::jsonFromObject(object);
  return orlftest::disagreement(sortedSets(row.at("value")).dump(), actual.dump());
}

TEST(NSKeyedUnarchiver, AgreesWithVectorsOfArchives) {
  orlftest::runJsonRows("archives_samples", [](const Json& row) -> std::string {
    const auto begin = std::chrono::steady_clock::now();
    std::shared_ptr<const NSError> error;
    const id object = NSKeyedUnarchiver::unarchivedObject(
        orlftest::classesToRead(row.at("class").get<std::string>()),
        orlftest::sampleNamed(row.at("file").get<std::string>()), &error);
    if (std::chrono::steady_clock::now() - begin > std::chrono::seconds(1)) return "took too long";
    return checkOutcome(row, object, error);
  });
}

}  // namespace
