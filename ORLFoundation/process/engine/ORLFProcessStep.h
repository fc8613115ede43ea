/// One step of a process, and the tree that it stands in. A step with an initial child is a group:
/// whoever enters it enters that child. A transition leads to a sibling, or out of the parent.
///
///     const auto form = std::make_shared<ORLFProcessStep>("form");
///     form->addChildStep(std::make_shared<ORLFProcessStep>("name"));
///     form->addChildStep(std::make_shared<ORLFProcessStep>("address"));
///     form->setIntialStepIdentifier("name");
///     const auto name = form->childStepWithIdentifier("name");
///     name->setSiblingIdentifier("address", "next");   // on "next" to the address
///     name->setSiblingIdentifier(NSNull(), "quit");    // on "quit" out of the form, which goes on
///     name->setResponse("cancel", "quit");             // by its own transition "cancel"
///
/// A step holds its children, and its parent weakly: steps are held by `std::shared_ptr`. Trees may
/// be of any depth. One thread at a time.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class ORLFProcessStep : public NSObject {
 public:
  using ChildStepMap = std::map<std::string, std::shared_ptr<ORLFProcessStep>, std::less<>>;
  /// Identifiers of siblings, or `NSNull` for a way out of the parent, under names of transitions.
  using TransitionMap = std::map<std::string, id, std::less<>>;
  /// The parent's transitions under names of the step's own.
  using ResponseMap = std::map<std::string, std::string, std::less<>>;

  /// `initWithIdentifier:`  The name among the step's siblings. It must hold no ".", or no path
  /// leads to the step; nor does one to a step without a name.
  explicit ORLFProcessStep(std::string identifier);
  ~ORLFProcessStep() override;

  [[nodiscard]] const std::string& identifier() const noexcept { return identifier_; }
  /// `fullIdentifier`  The identifiers from the topmost step down, with points between them.
  [[nodiscard]] std::string fullIdentifier() const;
  /// Null for a root. Stays when the parent removes the step.
  [[nodiscard]] std::shared_ptr<ORLFProcessStep> parentStep() const { return parentStep_.lock(); }
  /// The client's own, which nothing here looks at.
  [[nodiscard]] const id& representedObject() const noexcept { return representedObject_; }
  void setRepresentedObject(id value);
  /// The child that starts this group; nil for a step that is none.
  [[nodiscard]] const std::optional<std::string>& intialStepIdentifier() const noexcept {
    return intialStepIdentifier_;
  }
  void setIntialStepIdentifier(std::optional<std::string> value);

  /// `initialStep`  Where whoever enters the step comes to stand: the step itself, or for a group
  /// the `initialStep` of the child that starts it. Null when a child on the way is missing.
  [[nodiscard]] std::shared_ptr<ORLFProcessStep> initialStep();

  /// `transitionMapCreate:`  The map as it stands, null when there is none and none is to be made.
  /// A value other than text and `NSNull` counts as the name of a sibling that does not exist, nil
  /// as no entry.
  TransitionMap* transitionMapCreate(bool create);
  /// `responseMapCreate:`  The same for responses.
  ResponseMap* responseMapCreate(bool create);
  /// `childStepMap:`  The same for children, which only the operations below put in and take out:
  /// they keep the parents right.
  const ChildStepMap* childStepMap(bool create);

  /// `setSiblingIdentifier:forTransition:`  Takes a text or `NSNull`; anything else, nil too,
  /// raises `NSInvalidArgumentException`.
  void setSiblingIdentifier(const id& siblingIdentifier, std::string forTransition);
  /// `removeSiblingTransition:`
  void removeSiblingTransition(std::string_view transition);
  /// `siblingIdentiferForTransition:`  A text, `NSNull`, or nil for a transition without an entry;
  /// nil has none.
  [[nodiscard]] id siblingIdentiferForTransition(std::optional<std::string_view> transition) const;
  /// `possibleTransitions`  In ascending order; nil while no transition was ever set.
  [[nodiscard]] std::optional<std::vector<std::string>> possibleTransitions() const;

  /// `setResponse:forTransition:`
  void setResponse(std::string response, std::string forTransition);
  /// `removeResponseTransition:`
  void removeResponseTransition(std::string_view transition);
  /// `responseForTransition:`
  [[nodiscard]] std::optional<std::string> responseForTransition(
      std::optional<std::string_view> transition) const;
  /// `responseWithTransition:`  The argument. Derived classes may answer something else; the engine
  /// does not ask.
  [[nodiscard]] virtual std::optional<std::string> responseWithTransition(
      std::optional<std::string_view> transition);

  /// `addChildStep:`  Takes the child from another parent first, by its identifier, whoever bears
  /// it there now, and replaces a namesake here. Raises `NSInvalidArgumentException` for null, and
  /// for a child that is the step itself or stands above it.
  void addChildStep(std::shared_ptr<ORLFProcessStep> child);
  /// `removeChildStepWithIdentifier:`  The removed step keeps its `parentStep`: this is required.
  void removeChildStepWithIdentifier(std::string_view identifier);
  /// `childStepWithIdentifier:`  Null when there is none.
  [[nodiscard]] std::shared_ptr<ORLFProcessStep> childStepWithIdentifier(
      std::string_view identifier) const;
  /// `childStepWithIdentifierPath:`  A path of identifiers from a child down, with points between
  /// them; it does not name the step itself. One point at its end does no harm. Null where a step
  /// is missing, and for an empty name in the path.
  [[nodiscard]] std::shared_ptr<ORLFProcessStep> childStepWithIdentifierPath(
      std::string_view identifierPath) const;

  [[nodiscard]] std::string className() const override { return "ORLFProcessStep"; }
  /// `copyWithZone:`  The whole tree below the step in new steps of their own classes, without a
  /// parent and without any `representedObject`: both are required. The steps below are made
  /// through `newObjectOfReceiversClass`, not through their own `copy`: what a derived class has to
  /// carry over besides, it carries over there.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  [[nodiscard]] bool isOrStandsBelow(const ORLFProcessStep& other) const;
  [[nodiscard]] std::shared_ptr<ORLFProcessStep> copyWithoutChildren() const;

  std::weak_ptr<ORLFProcessStep> parentStep_;
  id representedObject_;
  std::string identifier_;
  std::optional<std::string> intialStepIdentifier_;
  std::unique_ptr<ChildStepMap> childStepMap_;
  std::unique_ptr<TransitionMap> transitionMap_;
  std::unique_ptr<ResponseMap> responseMap_;
};

}  // namespace ORLFoundation
