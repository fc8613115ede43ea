#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderDelegate.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder_testing.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>
#include <tests/support/VectorFile.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using orlftest::jsonOrNull;

Json jsonOfValue(const id& value) {
  if (const auto* text = value.get<std::string>()) return *text;
  if (value.get<NSNumber>() && value.get<NSNumber>()->kind() == NSNumber::Kind::Boolean)
    return *value.as<bool>();
  const auto number = value.as<double>();
  if (!number) throw std::runtime_error("a value that no row knows: " + value.description());
  const auto whole = static_cast<std::int64_t>(*number);
  return static_cast<double>(whole) == *number ? Json(whole) : Json(*number);
}

Json jsonOfData(const std::shared_ptr<NSMutableDictionary>& data) {
  Json object = Json::object();
  for (const auto& [key, value] : data->entries())
    object[*key.as<std::string>()] = jsonOfValue(value);
  return object;
}

/// Gives a step the call's own number, by which the tree finds what it was called with.
class PairMaker final : public ORLFProcessStepBuilderDelegate {
 public:
  std::vector<Json> calls;
  std::vector<Json> pairs;

  id processStepBuilderRepresentedObjectForStep(
      ORLFProcessStepBuilder&, const std::shared_ptr<ORLFProcessStep>& step,
      const std::optional<std::string>& withType,
      const std::shared_ptr<NSMutableDictionary>& data) override {
    calls.push_back({step->identifier(), jsonOrNull(withType), jsonOfData(data)});
    pairs.push_back({jsonOrNull(withType), jsonOfData(data)});
    return pairs.size() - 1;
  }
};

Json jsonOfStep(ORLFProcessStep& step, const PairMaker& maker) {
  Json transitions = Json::object();
  Json responses = Json::object();
  Json children = Json::object();
  for (const std::string& name : step.possibleTransitions().value_or(std::vector<std::string>()))
    transitions[name] = jsonOrNull(step.siblingIdentiferForTransition(name).as<std::string>());
  if (step.responseMapCreate(false))
    for (const auto& [name, response] : *step.responseMapCreate(false)) responses[name] = response;
  if (step.childStepMap(false))
    for (const auto& [name, child] : *step.childStepMap(false))
      children[name] = jsonOfStep(*child, maker);
  const auto number = step.representedObject().as<std::size_t>();
  return {{"identifier", step.identifier()},
          {"initial", jsonOrNull(step.intialStepIdentifier())},
          {"representedObject", number ? maker.pairs.at(*number) : Json()},
          {"transitions", transitions},
          {"responses", responses},
          {"children", children}};
}

std::string readDefinition(const Json& in, const Json& out) {
  const Replaced locale(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("en_US"));
  orlftest::Reading reading;
  const auto maker = std::make_shared<PairMaker>();
  reading.builder.setDelegate(maker);
  const auto root = reading.read(in.get<std::string>());
  std::sort(maker->calls.begin(), maker->calls.end(),
            [](const Json& left, const Json& right) { return left.dump() < right.dump(); });
  return orlftest::disagreement(out, Json{{"root", root ? jsonOfStep(*root, *maker) : Json()},
                                          {"log", reading.log.lines()},
                                          {"representedObjectCalls", maker->calls}});
}

TEST(ORLFProcessStepBuilder, AgreesWithVectorsOfDefinitions) {
  orlftest::runJsonVectors("process_definition", {{"read", readDefinition}});
}

}  // namespace
}  // namespace ORLFoundation
