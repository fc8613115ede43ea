// The first pass: records of the elements.
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/files/NSDataReading.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <utility>

namespace ORLFoundation {

namespace {

std::optional<std::string> attribute(const NSDictionary& attributes, std::string_view name) {
  return attributes.objectForKey(name).as<std::string>();
}

/// What a map needs as a key or a value.
std::string present(std::optional<std::string> value, std::string_view element,
                    std::string_view name) {
  if (!value)
    throw NSException(
        NSInvalidArgumentException,
        "A <" + std::string(element) + "> is without the attribute " + std::string(name));
  return *std::move(value);
}

ORLFProcessDefinitionPlace placeOfTag(const NSXMLParser& parser) {
  return {parser.startTagLineNumber(), parser.startTagColumnNumber()};
}

}  // namespace

ORLFProcessStepBuilder::Step ORLFProcessStepBuilder::readStepFromURL(const NSURL& url,
                                                                     NSErrorSlot error) {
  const auto held = weak_from_this().lock();  // a delegate may let go of the builder
  const auto data = dataWithContentsOfURL(url, NSDataReadingMappedIfSafe, error);
  if (!data) return nullptr;
  // A file that was left in the middle may have left a record open.
  setCurrentStepData(nullptr);
  // Not held: the builder outlives the parser, and need not be held by a pointer itself.
  const std::shared_ptr<NSXMLParserDelegate> events(this, [](NSXMLParserDelegate*) {});
  NSXMLParser parser(*data);
  parser.setDelegate(events);
  if (!parser.parse()) {
    NSFillErrorSlot(error, parser.parserError());
    return nullptr;
  }
  const auto root = rootStepId_ ? rootStepInstances_.find(*rootStepId_) : rootStepInstances_.end();
  return root == rootStepInstances_.end() ? nullptr : root->second;
}

void ORLFProcessStepBuilder::ruleIsBroken(NSXMLParser&, std::string_view condition,
                                          std::string_view message) {
  ORLFLogFailedCondition(condition, message);
}

void ORLFProcessStepBuilder::test(NSXMLParser& parser, bool holds, std::string_view condition,
                                  std::string_view message) {
  if (!holds) ruleIsBroken(parser, condition, message);
}

void ORLFProcessStepBuilder::parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) {
  using Start = void (ORLFProcessStepBuilder::*)(NSXMLParser&, const NSDictionary&);
  struct Element {
    std::string_view name;
    Start start;
  };
  static constexpr Element kElements[] = {
      {"process", &ORLFProcessStepBuilder::startProcess},
      {"step", &ORLFProcessStepBuilder::startStep},
      {"stepref", &ORLFProcessStepBuilder::startStepReference},
      {"transition", &ORLFProcessStepBuilder::startTransition},
      {"representedobject", &ORLFProcessStepBuilder::startRepresentedObject},
      {"property", &ORLFProcessStepBuilder::startProperty},
  };
  for (const Element& element : kElements)
    if (element.name == tag.didStartElement) return (this->*element.start)(parser, *tag.attributes);
}

void ORLFProcessStepBuilder::parserDidEndElement(NSXMLParser& parser,
                                                 std::string_view didEndElement,
                                                 std::optional<std::string_view>,
                                                 std::optional<std::string_view>) {
  const bool isStep = didEndElement == "step";
  if (!isStep && didEndElement != "stepref") return;
  test(parser, currentStepData_ != nullptr, "self.currentStepData != nil",
       isStep ? "We should only get an end <step> element with a current stepdata"
              : "We should only get an end <stepref> element with a current stepdata");
  setCurrentStepData(currentStepData_ ? currentStepData_->parentStep() : nullptr);
}

void ORLFProcessStepBuilder::startProcess(NSXMLParser& parser, const NSDictionary& attributes) {
  test(parser, !rootStepId_, "rootStepId == nil",
       "We should only ever have on <process> element and it should have the rootstep attribute");
  setRootStepId(attribute(attributes, "rootstep"));
  test(parser, rootStepId_.has_value(), "rootStepId != nil",
       "The <process> element needs to have a rootstep attribute");
}

/// Puts the record where the file has it, and goes into it.
void ORLFProcessStepBuilder::openRecord(const StepData& record) {
  if (currentStepData_) {
    record->setParentStep(currentStepData_);
    currentStepData_->childSteps().push_back(record);
  } else if (!record->reference() && record->identifier()) {
    rootStepDatas_.insert_or_assign(*record->identifier(), record);
  }
  setCurrentStepData(record);
}

void ORLFProcessStepBuilder::startStep(NSXMLParser& parser, const NSDictionary& attributes) {
  const auto record = std::make_shared<ORLFProcessStepBuilderStepData>();
  record->setPlace(placeOfTag(parser));
  record->setIdentifier(attribute(attributes, "id"));
  record->setFirstStep(attribute(attributes, "firststep"));
  record->setGroup(record->firstStep().has_value());
  test(parser, record->identifier().has_value(), "identifier != nil",
       "All <steps> should have an id attribute");
  test(parser, !currentStepData_ || currentStepData_->group(),
       "self.currentStepData == nil || self.currentStepData.group",
       "The <step> element should only occure in a step group or at the root");
  openRecord(record);
}

void ORLFProcessStepBuilder::startStepReference(NSXMLParser& parser,
                                                const NSDictionary& attributes) {
  test(parser, currentStepData_ != nullptr, "self.currentStepData != nil",
       "The <stepref> element should never be at the root");
  test(parser, !currentStepData_ || currentStepData_->group(), "self.currentStepData.group",
       "The <stepref> element should only occure in a step group");
  const auto record = std::make_shared<ORLFProcessStepBuilderStepData>();
  record->setPlace(placeOfTag(parser));
  record->setReference(true);
  record->setIdentifier(attribute(attributes, "id"));
  openRecord(record);
}

void ORLFProcessStepBuilder::startTransition(NSXMLParser& parser, const NSDictionary& attributes) {
  test(parser, currentStepData_ != nullptr, "self.currentStepData != nil",
       "We should only get a <transition> element inside a <step> or <stepref> tag.");
  if (!currentStepData_) return;
  auto transition = present(attribute(attributes, "value"), "transition", "value");
  currentStepData_->transitionPlaces().insert_or_assign(transition, placeOfTag(parser));
  if (auto sibling = attribute(attributes, "stepid")) {
    currentStepData_->transitionMap().insert_or_assign(std::move(transition), *std::move(sibling));
    return;
  }
  currentStepData_->transitionMap().insert_or_assign(transition, NSNull());
  currentStepData_->responseMap().insert_or_assign(
      std::move(transition), present(attribute(attributes, "end"), "transition", "end"));
}

void ORLFProcessStepBuilder::startRepresentedObject(NSXMLParser&, const NSDictionary& attributes) {
  if (currentStepData_) currentStepData_->setRepresentedObjectType(attribute(attributes, "type"));
}

void ORLFProcessStepBuilder::startProperty(NSXMLParser&, const NSDictionary& attributes) {
  if (!currentStepData_) return;
  const id value = readPropertyValueFromAttributes(attributes);
  const auto key = present(attribute(attributes, "key"), "property", "key");
  currentStepData_->representedObjectData()->setValueForKey(value, key);
}

id ORLFProcessStepBuilder::readPropertyValueFromAttributes(const NSDictionary& attributes) {
  const auto truth = attribute(attributes, "bool");
  for (const bool value : {false, true})
    if (truth && internal::base::equalsIgnoringCase(*truth, value ? "YES" : "NO")) return value;
  for (const std::string_view name : {"real", "int", "bool", "decimal"}) {
    const auto text = attribute(attributes, name);
    if (!text) continue;
    NSNumberFormatter formatter;
    formatter.setGeneratesDecimalNumbers(name == "decimal");
    if (const auto number = formatter.numberFromString(*text)) return *number;
    break;
  }
  return attribute(attributes, "string");
}

}  // namespace ORLFoundation
