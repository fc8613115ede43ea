/// Looks through the steps that a definition comes to: whether groups have their first steps and
/// transitions their targets, and where a walk can come to.
#pragma once

#include <ORLFoundation/process/definition/ORLFProcessDefinitionCheck.h>
#include <ORLFoundation/process/definition/internal/ORLFStepOrigins.h>

#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <unordered_set>
#include <vector>

namespace ORLFoundation::internal::definition {

class StepTreeCheck {
 public:
  using Step = std::shared_ptr<ORLFProcessStep>;
  using StepData = std::shared_ptr<ORLFProcessStepBuilderStepData>;

  /// Adds to the findings, each record's and transition's once however often it was made a step.
  StepTreeCheck(const StepOrigins& origins, std::vector<ORLFProcessDefinitionFinding>& findings)
      : origins_(origins), findings_(findings) {}

  /// First steps and transitions of a whole process.
  void checkSteps(const Step& root);
  /// The same for a step at the top of a file that no process holds: where its own transitions lead
  /// nobody knows.
  void checkStepsBelow(const Step& root);
  /// Which steps a walk from the initial step comes to; nothing where there is no initial step.
  void checkReach(const Step& root);

 private:
  /// Whether this was not told of before.
  bool isNew(ORLFProcessDefinitionFindingKind kind, const StepData& record,
             const std::string& transition);
  void addOfStep(ORLFProcessDefinitionFindingKind kind, const StepData& record,
                 std::string message);
  void addOfTransition(ORLFProcessDefinitionFindingKind kind, const ORLFProcessStep& step,
                       const std::string& transition, const std::string& fault);
  void checkTree(const Step& root, bool isProcess);
  void checkFirstStep(ORLFProcessStep& step);
  void checkTransitions(ORLFProcessStep& step);
  void checkTransition(ORLFProcessStep& step, const std::string& transition);
  void walkFrom(const Step& root, const Step& start);
  bool reach(Step step);
  /// The record that gave a step the entry that it has.
  [[nodiscard]] StepData originOf(const ORLFProcessStep& step, const std::string& transition) const;
  [[nodiscard]] const StepData& placeHolderOf(const ORLFProcessStep& step) const;

  const StepOrigins& origins_;
  std::vector<ORLFProcessDefinitionFinding>& findings_;
  std::set<std::tuple<ORLFProcessDefinitionFindingKind, const void*, std::string>> told_;
  std::unordered_set<const ORLFProcessStep*> reached_;
  std::unordered_set<const void*> reachedRecords_;
};

}  // namespace ORLFoundation::internal::definition
