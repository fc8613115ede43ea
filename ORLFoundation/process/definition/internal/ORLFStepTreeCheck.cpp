#include <ORLFoundation/process/definition/internal/ORLFStepTreeCheck.h>

#include <ORLFoundation/process/definition/internal/ORLFFindingText.h>
#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace ORLFoundation::internal::definition {

namespace {

/// The first of them comes to stand at the end, and so next.
void addChildren(ORLFProcessStep& step, std::vector<std::shared_ptr<ORLFProcessStep>>& open) {
  const auto* const children = step.childStepMap(false);
  if (children == nullptr) return;
  std::for_each(children->rbegin(), children->rend(),
                [&](const auto& entry) { open.push_back(entry.second); });
}

}  // namespace

const StepTreeCheck::StepData& StepTreeCheck::placeHolderOf(const ORLFProcessStep& step) const {
  return origins_.at(&step).back();
}

StepTreeCheck::StepData StepTreeCheck::originOf(const ORLFProcessStep& step,
                                                const std::string& transition) const {
  const auto& records = origins_.at(&step);
  return *std::find_if(records.rbegin(), records.rend(), [&](const StepData& record) {
    return record->transitionMap().count(transition) > 0;
  });
}

bool StepTreeCheck::isNew(ORLFProcessDefinitionFindingKind kind, const StepData& record,
                          const std::string& transition) {
  return told_.emplace(kind, record.get(), transition).second;
}

void StepTreeCheck::addOfStep(ORLFProcessDefinitionFindingKind kind, const StepData& record,
                              std::string message) {
  findings_.push_back({kind, record->place(), std::move(message)});
}

void StepTreeCheck::addOfTransition(ORLFProcessDefinitionFindingKind kind,
                                    const ORLFProcessStep& step, const std::string& transition,
                                    const std::string& fault) {
  const StepData record = originOf(step, transition);
  findings_.push_back(
      {kind, record->transitionPlaces().find(transition)->second,
       "The transition " + quotedName(transition) + " of " + quotedFullName(step) + fault});
}

void StepTreeCheck::checkSteps(const Step& root) { checkTree(root, true); }
void StepTreeCheck::checkStepsBelow(const Step& root) { checkTree(root, false); }

void StepTreeCheck::checkTree(const Step& root, bool isProcess) {
  std::vector<Step> open = {root};
  while (!open.empty()) {
    const Step step = std::move(open.back());
    open.pop_back();
    checkFirstStep(*step);
    if (isProcess || step != root) checkTransitions(*step);
    addChildren(*step, open);
  }
}

void StepTreeCheck::checkFirstStep(ORLFProcessStep& step) {
  const std::optional<std::string>& first = step.intialStepIdentifier();
  if (!first || step.childStepWithIdentifier(*first)) return;
  const auto& records = origins_.at(&step);
  const auto group = std::find_if(records.begin(), records.end(),
                                  [](const StepData& record) { return record->group(); });
  if (isNew(ORLFProcessDefinitionFindingMissingFirstStep, *group, ""))
    addOfStep(ORLFProcessDefinitionFindingMissingFirstStep, *group,
              "The group " + quotedFullName(step) + " begins with " + quotedName(*first) +
                  ", a step that it does not have");
}

void StepTreeCheck::checkTransitions(ORLFProcessStep& step) {
  for (const std::string& name : step.possibleTransitions().value_or(std::vector<std::string>()))
    checkTransition(step, name);
}

void StepTreeCheck::checkTransition(ORLFProcessStep& step, const std::string& transition) {
  const id target = step.siblingIdentiferForTransition(transition);
  const Step parent = step.parentStep();
  const auto isNewHere = [&](ORLFProcessDefinitionFindingKind kind) {
    return isNew(kind, originOf(step, transition), transition);
  };
  if (const auto* const sibling = target.get<std::string>()) {
    const bool isThere = parent && parent->childStepWithIdentifier(*sibling);
    if (!isThere && isNewHere(ORLFProcessDefinitionFindingMissingTarget))
      addOfTransition(ORLFProcessDefinitionFindingMissingTarget, step, transition,
                      " leads to " + quotedName(*sibling) + ", which does not stand beside it");
    return;
  }
  // The process's own step, or one that nobody refers to: outside of it there is no group.
  if (!parent || !parent->parentStep()) return;
  const auto response = step.responseForTransition(transition);
  if (!response || !parent->siblingIdentiferForTransition(response).isNil()) return;
  if (isNewHere(ORLFProcessDefinitionFindingUntakenResponse))
    addOfTransition(ORLFProcessDefinitionFindingUntakenResponse, step, transition,
                    " answers " + quotedName(*response) + ", which the group " +
                        quotedFullName(*parent) + " does not take");
}

/// The step and the groups around it; false where it was reached before.
bool StepTreeCheck::reach(Step step) {
  bool isNew = false;
  for (; step && reached_.insert(step.get()).second; step = step->parentStep()) {
    reachedRecords_.insert(placeHolderOf(*step).get());
    isNew = true;
  }
  return isNew;
}

void StepTreeCheck::walkFrom(const Step& root, const Step& start) {
  ORLFProcess process(root);
  std::vector<Step> open = {start};
  reach(start);
  while (!open.empty()) {
    const Step step = std::move(open.back());
    open.pop_back();
    for (const std::string& name :
         step->possibleTransitions().value_or(std::vector<std::string>())) {
      std::int32_t result = 1;
      const Step next = process.advanceFromStep(step, name, nullptr, result);
      if (next && reach(next)) open.push_back(next);
    }
  }
}

void StepTreeCheck::checkReach(const Step& root) {
  const Step start = root->initialStep();
  if (!start) return;
  walkFrom(root, start);
  std::vector<Step> open = {root};
  while (!open.empty()) {
    const Step step = std::move(open.back());
    open.pop_back();
    if (reached_.count(step.get()) > 0) {
      addChildren(*step, open);
      continue;
    }
    const StepData& record = placeHolderOf(*step);
    // Nobody can enter a group whose first step is missing: that is told of.
    if (reachedRecords_.count(record.get()) == 0 && step->initialStep() &&
        isNew(ORLFProcessDefinitionFindingUnreachableStep, record, ""))
      addOfStep(ORLFProcessDefinitionFindingUnreachableStep, record,
                "No transition leads to the step " + quotedFullName(*step));
  }
}

}  // namespace ORLFoundation::internal::definition
