#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::stepFromDefinition;
using orlftest::Texts;

std::shared_ptr<ORLFProcessStep> stepNamed(const std::string& name) {
  return std::make_shared<ORLFProcessStep>(name);
}

const std::string kTree = R"(
  <step id="root" firststep="g">
    <step id="g" firststep="c"><step id="c"/><step id="d"/></step>
    <step id="h"/>
  </step>)";

TEST(ORLFProcessStep, BeginsWithNothingButItsName) {
  const auto step = stepNamed("a");
  EXPECT_EQ(step->identifier(), "a");
  EXPECT_EQ(step->parentStep(), nullptr);
  EXPECT_TRUE(step->representedObject().isNil());
  EXPECT_EQ(step->intialStepIdentifier(), std::nullopt);
  EXPECT_EQ(step->transitionMapCreate(false), nullptr);
  EXPECT_EQ(step->responseMapCreate(false), nullptr);
  EXPECT_EQ(step->childStepMap(false), nullptr);
  EXPECT_EQ(step->possibleTransitions(), std::nullopt);
  EXPECT_EQ(step->className(), "ORLFProcessStep");
}

TEST(ORLFProcessStep, FullIdentifierNamesTheWayFromTheTop) {
  const auto root = stepFromDefinition(kTree);
  EXPECT_EQ(root->fullIdentifier(), "root");
  EXPECT_EQ(root->childStepWithIdentifierPath("g.c")->fullIdentifier(), "root.g.c");
}

TEST(ORLFProcessStep, FullIdentifierKeepsPointsAroundEmptyNames) {
  const auto root = stepNamed("");
  const auto middle = stepNamed("");
  const auto leaf = stepNamed("a");
  root->addChildStep(middle);
  middle->addChildStep(leaf);
  EXPECT_EQ(root->fullIdentifier(), "");
  EXPECT_EQ(middle->fullIdentifier(), ".");
  EXPECT_EQ(leaf->fullIdentifier(), "..a");
}

TEST(ORLFProcessStep, InitialStepDescendsThroughGroups) {
  const auto root = stepFromDefinition(kTree);
  const auto leaf = root->childStepWithIdentifierPath("g.c");
  EXPECT_EQ(root->initialStep(), leaf);
  EXPECT_EQ(leaf->initialStep(), leaf);
  root->setIntialStepIdentifier(std::nullopt);
  EXPECT_EQ(root->initialStep(), root);
}

TEST(ORLFProcessStep, InitialStepIsNilWhereAChildIsMissing) {
  const auto root = stepFromDefinition(kTree);
  root->childStepWithIdentifier("g")->setIntialStepIdentifier("nobody");
  EXPECT_EQ(root->initialStep(), nullptr);
  const auto leaf = stepNamed("leaf");
  leaf->setIntialStepIdentifier("nobody");
  EXPECT_EQ(leaf->initialStep(), nullptr);
  leaf->setIntialStepIdentifier("");
  EXPECT_EQ(leaf->initialStep(), nullptr);
}

TEST(ORLFProcessStep, MapsAreMadeOnRequestAndStay) {
  const auto step = stepNamed("a");
  auto* const transitions = step->transitionMapCreate(true);
  auto* const responses = step->responseMapCreate(true);
  const auto* const children = step->childStepMap(true);
  ASSERT_NE(transitions, nullptr);
  ASSERT_NE(responses, nullptr);
  ASSERT_NE(children, nullptr);
  EXPECT_EQ(step->transitionMapCreate(true), transitions);
  EXPECT_EQ(step->transitionMapCreate(false), transitions);
  EXPECT_EQ(step->responseMapCreate(false), responses);
  EXPECT_EQ(step->childStepMap(false), children);
  EXPECT_EQ(step->possibleTransitions(), Texts{});
  (*transitions)["x"] = "b";
  (*responses)["x"] = "y";
  EXPECT_EQ(step->siblingIdentiferForTransition("x"), id("b"));
  EXPECT_EQ(step->responseForTransition("x"), "y");
}

TEST(ORLFProcessStep, TransitionsAreSetReplacedAndRemoved) {
  const auto step = stepNamed("a");
  step->removeSiblingTransition("next");
  EXPECT_EQ(step->transitionMapCreate(false), nullptr);
  step->setSiblingIdentifier("b", "next");
  step->setSiblingIdentifier(NSNull(), "done");
  EXPECT_EQ(step->siblingIdentiferForTransition("next"), id("b"));
  EXPECT_TRUE(step->siblingIdentiferForTransition("done").isNull());
  EXPECT_TRUE(step->siblingIdentiferForTransition("other").isNil());
  EXPECT_TRUE(step->siblingIdentiferForTransition(std::nullopt).isNil());
  EXPECT_EQ(step->possibleTransitions(), (Texts{"done", "next"}));
  step->setSiblingIdentifier("c", "next");
  EXPECT_EQ(step->siblingIdentiferForTransition("next"), id("c"));
  step->removeSiblingTransition("next");
  step->removeSiblingTransition("other");
  EXPECT_TRUE(step->siblingIdentiferForTransition("next").isNil());
  EXPECT_EQ(step->possibleTransitions(), Texts{"done"});
}

TEST(ORLFProcessStep, TransitionsLeadToTextsAndTheMarkerAlone) {
  const auto step = stepNamed("a");
  for (const id& wrong : {id(), id(1), id(NSArray::arrayWithObjects({"b"}))}) {
    EXPECT_THROW(step->setSiblingIdentifier(wrong, "next"), NSException);
    EXPECT_EQ(step->possibleTransitions(), std::nullopt);
  }
  try {
    step->setSiblingIdentifier(nullptr, "next");
    FAIL() << "nil was taken";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    EXPECT_NE(exception.reason().find("\"next\""), std::string::npos);
  }
}

TEST(ORLFProcessStep, ResponsesAreSetReplacedAndRemoved) {
  const auto step = stepNamed("a");
  step->removeResponseTransition("done");
  EXPECT_EQ(step->responseMapCreate(false), nullptr);
  EXPECT_EQ(step->responseForTransition("done"), std::nullopt);
  step->setResponse("finish", "done");
  EXPECT_EQ(step->responseForTransition("done"), "finish");
  EXPECT_EQ(step->responseForTransition(std::nullopt), std::nullopt);
  step->setResponse("stop", "done");
  EXPECT_EQ(step->responseForTransition("done"), "stop");
  step->removeResponseTransition("done");
  step->removeResponseTransition("done");
  EXPECT_EQ(step->responseForTransition("done"), std::nullopt);
  EXPECT_EQ(step->possibleTransitions(), std::nullopt);
}

TEST(ORLFProcessStep, ResponseWithTransitionIsTheTransition) {
  const auto step = stepNamed("a");
  step->setResponse("finish", "done");
  EXPECT_EQ(step->responseWithTransition("done"), "done");
  EXPECT_EQ(step->responseWithTransition(std::nullopt), std::nullopt);
}

TEST(ORLFProcessStep, AChildGoesFromOneParentToAnother) {
  const auto root = stepFromDefinition(kTree);
  const auto group = root->childStepWithIdentifier("g");
  const auto leaf = group->childStepWithIdentifier("c");
  root->addChildStep(leaf);
  EXPECT_EQ(leaf->parentStep(), root);
  EXPECT_EQ(leaf->fullIdentifier(), "root.c");
  EXPECT_EQ(group->childStepWithIdentifier("c"), nullptr);
  EXPECT_EQ(root->childStepWithIdentifier("c"), leaf);
}

TEST(ORLFProcessStep, AddingAChildAgainChangesNothing) {
  const auto root = stepFromDefinition(kTree);
  const auto group = root->childStepWithIdentifier("g");
  root->addChildStep(group);
  EXPECT_EQ(root->childStepWithIdentifier("g"), group);
  EXPECT_EQ(root->childStepMap(false)->size(), 2U);
  EXPECT_EQ(group->parentStep(), root);
}

TEST(ORLFProcessStep, ANamesakeIsReplacedAndKeepsItsParent) {
  const auto root = stepFromDefinition(kTree);
  const auto old = root->childStepWithIdentifier("h");
  const auto fresh = stepNamed("h");
  root->addChildStep(fresh);
  EXPECT_EQ(root->childStepWithIdentifier("h"), fresh);
  EXPECT_EQ(old->parentStep(), root);
  EXPECT_EQ(old->fullIdentifier(), "root.h");
}

TEST(ORLFProcessStep, ARemovedChildKeepsItsParent) {
  const auto root = stepFromDefinition(kTree);
  const auto leaf = root->childStepWithIdentifier("h");
  root->removeChildStepWithIdentifier("h");
  root->removeChildStepWithIdentifier("h");
  EXPECT_EQ(root->childStepWithIdentifier("h"), nullptr);
  EXPECT_EQ(leaf->parentStep(), root);
  stepNamed("alone")->removeChildStepWithIdentifier("h");
}

TEST(ORLFProcessStep, AMoveTakesAwayWhoeverBearsTheName) {
  const auto root = stepFromDefinition(kTree);
  const auto old = root->childStepWithIdentifier("h");
  root->addChildStep(stepNamed("h"));
  stepNamed("other")->addChildStep(old);
  EXPECT_EQ(root->childStepWithIdentifier("h"), nullptr);
}

TEST(ORLFProcessStep, NoStepComesBelowItself) {
  const auto root = stepFromDefinition(kTree);
  const auto group = root->childStepWithIdentifier("g");
  const auto leaf = group->childStepWithIdentifier("c");
  EXPECT_THROW(root->addChildStep(nullptr), NSException);
  EXPECT_THROW(root->addChildStep(root), NSException);
  EXPECT_THROW(leaf->addChildStep(root), NSException);
  EXPECT_THROW(leaf->addChildStep(group), NSException);
  EXPECT_EQ(leaf->childStepMap(false), nullptr);
  EXPECT_EQ(group->parentStep(), root);
  // The parent stays the parent, so it cannot come below the child that it has removed.
  group->removeChildStepWithIdentifier("c");
  EXPECT_THROW(leaf->addChildStep(group), NSException);
  root->childStepWithIdentifier("h")->addChildStep(group);
  EXPECT_EQ(group->fullIdentifier(), "root.h.g");
}

TEST(ORLFProcessStep, AStepOutlivesItsParent) {
  auto root = stepFromDefinition(kTree);
  const auto group = root->childStepWithIdentifier("g");
  root.reset();
  EXPECT_EQ(group->parentStep(), nullptr);
  EXPECT_EQ(group->fullIdentifier(), "g");
  EXPECT_EQ(group->initialStep()->fullIdentifier(), "g.c");
}

TEST(ORLFProcessStep, PathsLeadDownFromAChild) {
  const auto root = stepFromDefinition(kTree);
  struct Case {
    const char* path;
    const char* found;
  };
  const Case cases[] = {
      {"g", "root.g"},     {"g.", "root.g"}, {"g.c", "root.g.c"}, {"g.c.", "root.g.c"},
      {"", nullptr},       {".", nullptr},   {"g..", nullptr},    {"g..c", nullptr},
      {".g", nullptr},     {"G", nullptr},   {"g.x", nullptr},    {"g.c.x", nullptr},
      {"root.g", nullptr}, {"g.h", nullptr}, {"root", nullptr},
  };
  for (const Case& row : cases) {
    const auto step = root->childStepWithIdentifierPath(row.path);
    EXPECT_EQ(orlftest::nameOfStep(step), row.found ? row.found : "nil") << row.path;
  }
  EXPECT_EQ(stepNamed("alone")->childStepWithIdentifierPath("a"), nullptr);
  EXPECT_EQ(stepNamed("alone")->childStepWithIdentifier("a"), nullptr);
}

TEST(ORLFProcessStep, NoPathLeadsToANameWithAPoint) {
  const auto root = stepNamed("root");
  const auto child = stepNamed("a.b");
  root->addChildStep(child);
  EXPECT_EQ(root->childStepWithIdentifier("a.b"), child);
  EXPECT_EQ(root->childStepWithIdentifierPath("a.b"), nullptr);
}

TEST(ORLFProcessStep, IsReadAndObservedByKeys) {
  const auto root = stepFromDefinition(kTree);
  const auto group = root->childStepWithIdentifier("g");
  EXPECT_EQ(group->valueForKey("fullIdentifier"), id("root.g"));
  EXPECT_EQ(group->valueForKeyPath("parentStep.identifier"), id("root"));
  EXPECT_EQ(group->valueForKey("intialStepIdentifier"), id("c"));
  int changes = 0;
  const auto token = group->addObserver("representedObject", NSKeyValueObservingOptionNew,
                                        [&](const NSKeyValueChange&) { ++changes; });
  const auto other = group->addObserver("intialStepIdentifier", NSKeyValueObservingOptionNew,
                                        [&](const NSKeyValueChange&) { ++changes; });
  group->setRepresentedObject("page");
  group->setValueForKey("d", "intialStepIdentifier");
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(group->representedObject(), id("page"));
  EXPECT_EQ(group->intialStepIdentifier(), "d");
  EXPECT_THROW(group->setValueForKey("x", "identifier"), NSException);
}

}  // namespace
}  // namespace ORLFoundation
