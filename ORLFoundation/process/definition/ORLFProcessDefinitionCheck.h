/// Finds what is wrong in a process definition, all of it in one go and with the places: broken
/// rules, references that lead nowhere or back to themselves, and steps that no walk comes to.
///
///     std::shared_ptr<const NSError> error;
///     const auto findings = ORLFProcessDefinitionCheck::findingsOfURL(url, &error);
///     if (!findings) throw std::runtime_error(error->localizedDescription());
///     for (const ORLFProcessDefinitionFinding& finding : *findings)
///       show(finding.place.line, finding.place.column, finding.message);
///
/// An addition to the reader of definitions: `ORLFProcessStepBuilder` logs broken rules alone, and
/// raises at the first of some other faults.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>
#include <ORLFoundation/process/definition/ORLFProcessDefinitionPlace.h>

#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation {

enum ORLFProcessDefinitionFindingKind : NSInteger {
  /// The file is no XML, or goes beyond a limit of the parser. Nothing behind it was read.
  ORLFProcessDefinitionFindingNotWellFormed = 0,
  /// A rule of the format; the message is the one that `ORLFProcessStepBuilder` logs.
  ORLFProcessDefinitionFindingBrokenRule = 1,
  /// An attribute without which an element cannot be taken down.
  ORLFProcessDefinitionFindingMissingAttribute = 2,
  /// A step or a transition in whose place a later one of its name comes.
  ORLFProcessDefinitionFindingReplaced = 3,
  /// The "rootstep" is no step at the top of the file, or there is no `<process>` to name one.
  ORLFProcessDefinitionFindingMissingRootStep = 4,
  /// A `<stepref>` to no step at the top of the file.
  ORLFProcessDefinitionFindingDanglingReference = 5,
  /// A `<stepref>` that leads back to a step around it.
  ORLFProcessDefinitionFindingCyclicReference = 6,
  /// References multiply beyond the limit of `ORLFProcessStepBuilder`; no tree was looked at.
  ORLFProcessDefinitionFindingTooManySteps = 7,
  /// A group has no child of the name of its "firststep".
  ORLFProcessDefinitionFindingMissingFirstStep = 8,
  /// A transition leads to a step that does not stand beside its own.
  ORLFProcessDefinitionFindingMissingTarget = 9,
  /// A transition answers its group with a response that the group has no transition for, so that
  /// the whole process ends there. A response that reaches the process's own step is its end.
  ORLFProcessDefinitionFindingUntakenResponse = 10,
  /// No transition leads to a step, or no reference to one at the top of the file. Of a group that
  /// nothing leads to, the steps inside are not told of again.
  ORLFProcessDefinitionFindingUnreachableStep = 11,
  /// An identifier that is empty or holds a point: no path leads to it, and nobody comes back to
  /// it.
  ORLFProcessDefinitionFindingUnusableIdentifier = 12,
};

struct ORLFProcessDefinitionFinding {
  ORLFProcessDefinitionFindingKind kind = ORLFProcessDefinitionFindingBrokenRule;
  /// The beginning of the tag at fault; behind it for an end tag, and where the parser stood for a
  /// file that is not well-formed.
  ORLFProcessDefinitionPlace place;
  /// With the step's full identifier where a step of the process is meant, long names in part. A
  /// step of the top that stands in several places is told of once, by the first of them.
  std::string message;
};

class ORLFProcessDefinitionCheck : public NSObject {
 public:
  /// What is wrong, in the order of the file; nothing for a definition that is in order. nil, and
  /// an error, for a file that cannot be read.
  [[nodiscard]] static std::optional<std::vector<ORLFProcessDefinitionFinding>> findingsOfURL(
      const NSURL& url, NSErrorSlot error = nullptr);
  /// The same for a definition that is in memory, and for another limit of steps.
  [[nodiscard]] static std::vector<ORLFProcessDefinitionFinding> findingsOfData(
      const NSData& data, NSUInteger stepLimit = 1'000'000);

  [[nodiscard]] std::string className() const override { return "ORLFProcessDefinitionCheck"; }
};

}  // namespace ORLFoundation
