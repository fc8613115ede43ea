// The second pass: steps of the records.
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderDelegate.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>
#include <ORLFoundation/process/definition/internal/ORLFReferenceCensus.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {

using internal::definition::ReferenceCensus;

namespace {

/// What is left to be done; the last comes first.
struct Task {
  enum Kind { kFill, kMakeChild, kAddChild } kind;
  std::shared_ptr<ORLFProcessStep> step;
  std::shared_ptr<ORLFProcessStepBuilderStepData> data;
  std::shared_ptr<ORLFProcessStep> child;
};

[[noreturn]] void raiseNoIdentifier(const ORLFProcessStepBuilder::StepData& record,
                                    const ORLFProcessStep& parent) {
  const std::string what =
      record && record->reference()
          ? "<stepref id=\"" + record->identifier().value_or("") + "\"> refers to no step"
          : "<step> has no id";
  throw NSException(NSInvalidArgumentException, "In \"" + parent.identifier() + "\", a " + what);
}

}  // namespace

void ORLFProcessStepBuilder::parserDidEndDocument(NSXMLParser&) {
  std::vector<StepData> records;
  for (const auto& [identifier, data] : rootStepDatas_)
    if (rootStepInstances_.count(identifier) == 0) records.push_back(data);
  static_cast<void>(countOfSteps(records));
  // A delegate may put in records of its own meanwhile.
  for (const auto& entry : StepDataMap(rootStepDatas_)) rootStepInstanceWithIdentifier(entry.first);
}

/// The limit holds for what is made, too: whoever is asked for objects may change the records.
ORLFProcessStepBuilder::Step ORLFProcessStepBuilder::newStep(const std::string& identifier) {
  if (stepCount_ >= stepLimit_)
    throw NSException(NSGenericException, "A definition came to more than " +
                                              std::to_string(stepLimit_) +
                                              " steps while they were made, at " + identifier);
  ++stepCount_;
  return std::make_shared<ORLFProcessStep>(identifier);
}

ORLFProcessStepBuilder::Step ORLFProcessStepBuilder::rootStepInstanceWithIdentifier(
    const std::string& identifier) {
  const auto known = rootStepInstances_.find(identifier);
  if (known != rootStepInstances_.end()) return known->second;
  const auto entry = rootStepDatas_.find(identifier);
  const StepData data = entry == rootStepDatas_.end() ? nullptr : entry->second;
  static_cast<void>(countOfSteps({data}));
  auto step = newStep(identifier);
  rootStepInstances_.emplace(identifier, step);
  makeSteps(step, data);
  return step;
}

void ORLFProcessStepBuilder::fillStepWithData(const Step& step, const StepData& data) {
  if (!step) throw NSException(NSInvalidArgumentException, "There is no step to fill");
  static_cast<void>(countOfSteps({data}));
  makeSteps(step, data);
}

NSUInteger ORLFProcessStepBuilder::countOfSteps(const std::vector<StepData>& records) const {
  ReferenceCensus census(rootStepDatas_, stepLimit_);
  StepData costliest;
  NSUInteger total = 0;
  for (const StepData& data : records) {
    if (!data) continue;
    const NSUInteger count = census.count(data);
    if (!costliest || count > census.count(costliest)) costliest = data;
    const NSUInteger left = stepLimit_ - std::min(stepLimit_, stepCount_ + total);
    if (count > left)
      throw NSException(NSGenericException,
                        "The definition comes to more than " + std::to_string(stepLimit_) +
                            " steps, most of all by " + census.costliestChain(costliest));
    total += count;
  }
  return total;
}

ORLFProcessStepBuilder::StepData ORLFProcessStepBuilder::targetOf(const StepData& record) const {
  if (!record || !record->reference()) return record;
  if (!record->identifier()) return nullptr;
  const auto target = rootStepDatas_.find(*record->identifier());
  return target == rootStepDatas_.end() ? nullptr : target->second;
}

// Fills as deep as the records go, on a list of its own: a child is made, filled from its target,
// filled from the reference to it, and added, in this order and before the next child.
void ORLFProcessStepBuilder::makeSteps(const Step& step, const StepData& data) {
  std::vector<Task> tasks = {{Task::kFill, step, data, nullptr}};
  while (!tasks.empty()) {
    const Task task = std::move(tasks.back());
    tasks.pop_back();
    if (task.kind == Task::kAddChild) {
      task.step->addChildStep(task.child);
    } else if (task.kind == Task::kMakeChild) {
      const StepData target = targetOf(task.data);
      if (!target || !target->identifier()) raiseNoIdentifier(task.data, *task.step);
      const auto child = newStep(*target->identifier());
      tasks.push_back({Task::kAddChild, task.step, nullptr, child});
      if (target != task.data) tasks.push_back({Task::kFill, child, task.data, nullptr});
      tasks.push_back({Task::kFill, child, target, nullptr});
    } else {
      fillStepWithTransitionsFromData(task.step, task.data);
      if (!task.data) continue;
      if (task.data->group()) task.step->setIntialStepIdentifier(task.data->firstStep());
      const auto& children = task.data->childSteps();
      std::for_each(children.rbegin(), children.rend(), [&](const StepData& child) {
        tasks.push_back({Task::kMakeChild, task.step, child, nullptr});
      });
    }
  }
}

void ORLFProcessStepBuilder::fillStepWithTransitionsFromData(const Step& step,
                                                             const StepData& data) {
  if (data) {
    for (const auto& [transition, sibling] : data->transitionMap())
      step->setSiblingIdentifier(sibling, transition);
    for (const auto& [transition, response] : data->responseMap())
      step->setResponse(response, transition);
    if (data->reference() && data->representedObjectType().value_or("").empty()) return;
  }
  const auto maker = delegate();
  step->setRepresentedObject(maker ? maker->processStepBuilderRepresentedObjectForStep(
                                         *this, step,
                                         data ? data->representedObjectType() : std::nullopt,
                                         data ? data->representedObjectData() : nullptr)
                                   : nullptr);
}

}  // namespace ORLFoundation
