#include <ORLFoundation/process/definition/internal/ORLFCheckingStepBuilder.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/process/definition/internal/ORLFFindingText.h>
#include <ORLFoundation/process/definition/internal/ORLFReferenceCensus.h>
#include <ORLFoundation/process/definition/internal/ORLFStepTreeCheck.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation::internal::definition {

namespace {

std::optional<std::string> attributeOf(const NSXMLStartTag& tag, std::string_view name) {
  return tag.attributes->objectForKey(name).as<std::string>();
}

}  // namespace

void CheckingStepBuilder::add(ORLFProcessDefinitionFindingKind kind,
                              ORLFProcessDefinitionPlace place, std::string message) {
  findings_.push_back({kind, place, std::move(message)});
}

void CheckingStepBuilder::parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) {
  place_ = {parser.startTagLineNumber(), parser.startTagColumnNumber()};
  const bool isProcess = tag.didStartElement == "process";
  if (isProcess || processPlace_ == ORLFProcessDefinitionPlace()) processPlace_ = place_;
  holdsProcess_ = holdsProcess_ || isProcess;
  checkNames(tag);
  try {
    ORLFProcessStepBuilder::parserDidStartElement(parser, tag);
  } catch (const NSException& exception) {
    add(ORLFProcessDefinitionFindingMissingAttribute, place_, exception.reason());
  }
}

void CheckingStepBuilder::parserDidEndElement(NSXMLParser& parser, std::string_view didEndElement,
                                              std::optional<std::string_view> namespaceURI,
                                              std::optional<std::string_view> qualifiedName) {
  place_ = {parser.lineNumber(), parser.columnNumber()};
  ORLFProcessStepBuilder::parserDidEndElement(parser, didEndElement, namespaceURI, qualifiedName);
}

void CheckingStepBuilder::parserDidEndDocument(NSXMLParser&) {}

void CheckingStepBuilder::ruleIsBroken(NSXMLParser&, std::string_view, std::string_view message) {
  add(ORLFProcessDefinitionFindingBrokenRule, place_, std::string(message));
}

void CheckingStepBuilder::fillStepWithTransitionsFromData(const Step& step, const StepData& data) {
  origins_[step.get()].push_back(data);
  ORLFProcessStepBuilder::fillStepWithTransitionsFromData(step, data);
}

/// What is taken down under a name that is taken goes where the other one stood.
void CheckingStepBuilder::checkNames(const NSXMLStartTag& tag) {
  const auto id = attributeOf(tag, "id");
  if (tag.didStartElement == "step" && id && (id->empty() || id->find('.') != std::string::npos))
    add(ORLFProcessDefinitionFindingUnusableIdentifier, place_,
        "The identifier " + quotedName(*id) + " is one to which no path leads");
  if (tag.didStartElement == "step" && !currentStepData() && id) {
    const auto namesake = rootStepDatas().find(*id);
    if (namesake != rootStepDatas().end())
      add(ORLFProcessDefinitionFindingReplaced, namesake->second->place(),
          "The step " + quotedName(namesake->first) + " is replaced by a later one of its name");
  }
  const auto value = attributeOf(tag, "value");
  if (tag.didStartElement == "transition" && currentStepData() && value) {
    auto& places = currentStepData()->transitionPlaces();
    const auto namesake = places.find(*value);
    if (namesake != places.end())
      add(ORLFProcessDefinitionFindingReplaced, namesake->second,
          "The transition " + quotedName(namesake->first) +
              " is replaced by a later one of its name");
  }
}

std::vector<ORLFProcessDefinitionFinding> CheckingStepBuilder::findingsOfRecords() {
  checkRootStep();
  for (const auto& entry : rootStepDatas()) {
    std::vector<StepData> open = {entry.second};
    while (!open.empty()) {
      const StepData record = std::move(open.back());
      open.pop_back();
      checkChildren(record, open);
    }
  }
  checkReferences();
  if (isWithinLimit()) checkTrees();
  return findings_;
}

void CheckingStepBuilder::checkRootStep() {
  if (!holdsProcess_)
    add(ORLFProcessDefinitionFindingMissingRootStep, processPlace_,
        "There is no <process>, and so no step to begin with");
  if (rootStepId() && rootStepDatas().count(*rootStepId()) == 0)
    add(ORLFProcessDefinitionFindingMissingRootStep, processPlace_,
        "The process begins with " + quotedName(*rootStepId()) +
            ", and there is no such step at the top of the file");
}

/// Takes out children that no map takes, and those whose place a namesake takes.
void CheckingStepBuilder::checkChildren(const StepData& record, std::vector<StepData>& open) {
  auto& children = record->childSteps();
  std::set<std::string, std::less<>> names;
  std::vector<StepData> kept;
  std::for_each(children.rbegin(), children.rend(), [&](const StepData& child) {
    if (!child->identifier()) {
      // Of a step, that is a rule that was told of.
      if (child->reference())
        add(ORLFProcessDefinitionFindingMissingAttribute, child->place(),
            "A <stepref> is without the attribute id");
      return;
    }
    const std::string& name = *child->identifier();
    if (!names.insert(name).second)
      return add(ORLFProcessDefinitionFindingReplaced, child->place(),
                 "The step " + quotedName(name) + " is replaced by a later one of its name");
    if (child->reference() && rootStepDatas().count(name) == 0) {
      add(ORLFProcessDefinitionFindingDanglingReference, child->place(),
          "The reference to " + quotedName(name) + " leads to no step at the top of the file");
      child->setReference(false);
    }
    if (child->reference()) referred_.insert(name);
    kept.push_back(child);
    open.push_back(child);
  });
  std::reverse(kept.begin(), kept.end());
  children = std::move(kept);
}

void CheckingStepBuilder::checkReferences() {
  ReferenceCensus census(rootStepDatas(), stepLimit());
  census.setCycleBlock([this](const StepData& reference, const std::string& way) {
    add(ORLFProcessDefinitionFindingCyclicReference, reference->place(),
        quotedName(reference->identifier().value_or("")) + " refers to itself " + way);
    reference->setReference(false);
  });
  for (const auto& entry : rootStepDatas()) static_cast<void>(census.count(entry.second));
}

/// A reader makes the trees of all steps at the top.
bool CheckingStepBuilder::isWithinLimit() {
  std::vector<StepData> records;
  for (const auto& entry : rootStepDatas()) records.push_back(entry.second);
  try {
    static_cast<void>(countOfSteps(records));
  } catch (const NSException& exception) {
    add(ORLFProcessDefinitionFindingTooManySteps, processPlace_, exception.reason());
    return false;
  }
  return true;
}

void CheckingStepBuilder::checkTrees() {
  StepTreeCheck check(origins_, findings_);
  const auto main = rootStepId() ? rootStepDatas().find(*rootStepId()) : rootStepDatas().end();
  const bool isKnown = main != rootStepDatas().end();
  if (isKnown) {
    const Step root = rootStepInstanceWithIdentifier(main->first);
    check.checkSteps(root);
    check.checkReach(root);
  }
  for (const auto& [name, record] : rootStepDatas()) {
    if (record == (isKnown ? main->second : nullptr) || referred_.count(name) > 0) continue;
    if (isKnown)
      add(ORLFProcessDefinitionFindingUnreachableStep, record->place(),
          "No reference leads to the step " + quotedName(name));
    check.checkStepsBelow(rootStepInstanceWithIdentifier(name));
  }
}

}  // namespace ORLFoundation::internal::definition
