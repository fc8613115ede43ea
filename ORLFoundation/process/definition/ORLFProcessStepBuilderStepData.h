/// What a process definition says of one step, as it is read: a record for each `<step>` and
/// `<stepref>`. A builder makes steps of them once the whole file is there.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/process/definition/ORLFProcessDefinitionPlace.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {

class ORLFProcessStepBuilderStepData : public NSObject {
 public:
  ORLFProcessStepBuilderStepData() = default;
  ~ORLFProcessStepBuilderStepData() override;

  /// The record around this one, held weakly.
  [[nodiscard]] std::shared_ptr<ORLFProcessStepBuilderStepData> parentStep() const {
    return parentStep_.lock();
  }
  void setParentStep(const std::shared_ptr<ORLFProcessStepBuilderStepData>& value) {
    parentStep_ = value;
  }
  /// The "id"; nil where it is missing.
  [[nodiscard]] const std::optional<std::string>& identifier() const noexcept {
    return identifier_;
  }
  void setIdentifier(std::optional<std::string> value) { identifier_ = std::move(value); }
  /// Whether the step names its initial child.
  [[nodiscard]] bool group() const noexcept { return group_; }
  void setGroup(bool value) noexcept { group_ = value; }
  /// Whether this is a `<stepref>`.
  [[nodiscard]] bool reference() const noexcept { return reference_; }
  void setReference(bool value) noexcept { reference_ = value; }
  /// The "firststep" of a group.
  [[nodiscard]] const std::optional<std::string>& firstStep() const noexcept { return firstStep_; }
  void setFirstStep(std::optional<std::string> value) { firstStep_ = std::move(value); }
  /// The "type" of the `<representedobject>`.
  [[nodiscard]] const std::optional<std::string>& representedObjectType() const noexcept {
    return representedObjectType_;
  }
  void setRepresentedObjectType(std::optional<std::string> value) {
    representedObjectType_ = std::move(value);
  }
  /// The properties by their keys; made at first use, never null.
  [[nodiscard]] const std::shared_ptr<NSMutableDictionary>& representedObjectData();
  /// The records inside this one, in the file's order.
  [[nodiscard]] std::vector<std::shared_ptr<ORLFProcessStepBuilderStepData>>&
  childSteps() noexcept {
    return childSteps_;
  }
  /// Identifiers of siblings, or `NSNull` for a way out of the parent, under names of transitions.
  [[nodiscard]] ORLFProcessStep::TransitionMap& transitionMap() noexcept { return transitionMap_; }
  /// What the parent gets as its transition, under names of the step's own.
  [[nodiscard]] ORLFProcessStep::ResponseMap& responseMap() noexcept { return responseMap_; }

  /// Where the record's tag begins. An addition to the format's own fields, as is the next one.
  [[nodiscard]] ORLFProcessDefinitionPlace place() const noexcept { return place_; }
  void setPlace(ORLFProcessDefinitionPlace value) noexcept { place_ = value; }
  /// Where the tags of the transitions begin, under their names.
  using TransitionPlaces = std::map<std::string, ORLFProcessDefinitionPlace, std::less<>>;
  [[nodiscard]] TransitionPlaces& transitionPlaces() noexcept { return transitionPlaces_; }

  [[nodiscard]] std::string className() const override { return "ORLFProcessStepBuilderStepData"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  std::weak_ptr<ORLFProcessStepBuilderStepData> parentStep_;
  std::optional<std::string> identifier_;
  bool group_ = false;
  bool reference_ = false;
  std::optional<std::string> firstStep_;
  std::optional<std::string> representedObjectType_;
  std::shared_ptr<NSMutableDictionary> representedObjectData_;
  std::vector<std::shared_ptr<ORLFProcessStepBuilderStepData>> childSteps_;
  ORLFProcessStep::TransitionMap transitionMap_;
  ORLFProcessStep::ResponseMap responseMap_;
  ORLFProcessDefinitionPlace place_;
  TransitionPlaces transitionPlaces_;
};

}  // namespace ORLFoundation
