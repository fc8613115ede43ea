// Steps of records: the delegate's calls, and what may be asked for by hand.
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder_testing.h>
#include <ORLFoundation/process/engine/ORLFProcess.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

namespace ORLFoundation {
namespace {

using orlftest::Reading;
using Lines = std::vector<std::string>;

TEST(ORLFProcessStepBuilderSteps, EveryStepIsAskedForItsObjectOnce) {
  Reading reading;
  const auto root = reading.read(
      "<process rootstep='r'><step id='r' firststep='a'><representedobject type='book'/>"
      "<step id='a'><representedobject type='page'><property key='n' string='1'/>"
      "</representedobject><transition value='go' end='x'/></step><step id='b'/></step></process>");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(reading.maker->names(), (Lines{"r:book", "a:page", "b:nil"}));
  EXPECT_EQ(root->representedObject(), id(1));
  EXPECT_EQ(root->childStepWithIdentifier("a")->representedObject(), id(2));
  EXPECT_EQ(root->childStepWithIdentifier("b")->representedObject(), id(3));
  const auto& page = reading.maker->calls[1];
  EXPECT_EQ(page.data->objectForKey("n"), id("1"));
  EXPECT_EQ(page.transitions, 1U) << "transitions are there before the call";
  EXPECT_FALSE(page.hasParent) << "parents are not";
}

TEST(ORLFProcessStepBuilderSteps, WithoutADelegateStepsRepresentNothing) {
  Reading reading;
  reading.builder.setDelegate(nullptr);
  const auto root = reading.read("<process rootstep='r'><step id='r'/></process>");
  ASSERT_NE(root, nullptr);
  EXPECT_TRUE(root->representedObject().isNil());
}

TEST(ORLFProcessStepBuilderSteps, AGroupWithoutItsFirstStepHasNoInitialStep) {
  Reading reading;
  const auto root = reading.read(
      "<process rootstep='r'><step id='r' firststep='x'><step id='a'/></step></process>");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->intialStepIdentifier(), "x");
  EXPECT_EQ(root->initialStep(), nullptr);
}

TEST(ORLFProcessStepBuilderSteps, AnEmptyFirstStepMakesAGroupToo) {
  Reading reading;
  const auto root = reading.read(
      "<process rootstep='r'><step id='r' firststep=''><step id='a'/></step></process>");
  EXPECT_EQ(root->intialStepIdentifier(), "");
  EXPECT_TRUE(reading.log.lines().empty());
}

TEST(ORLFProcessStepBuilderSteps, TheLastNamesakeCounts) {
  Reading reading;
  const auto root = reading.read(
      "<process rootstep='r'><step id='r' firststep='a'><step id='a'><transition value='x' "
      "end='1'/></step><step id='a'/></step><step id='s'/><step id='s'><transition value='y' "
      "end='2'/></step></process>");
  EXPECT_EQ(root->childStepWithIdentifier("a")->possibleTransitions(), std::nullopt);
  EXPECT_EQ(reading.builder.rootStepInstanceWithIdentifier("s")->possibleTransitions(),
            (Lines{"y"}));
}

TEST(ORLFProcessStepBuilderSteps, RootStepsAreMadeOnceAndShared) {
  Reading reading;
  const auto root = reading.read("<process rootstep='r'><step id='r'/></process>");
  const auto calls = reading.maker->calls.size();
  EXPECT_EQ(reading.builder.rootStepInstanceWithIdentifier("r"), root);
  EXPECT_EQ(reading.maker->calls.size(), calls);
}

TEST(ORLFProcessStepBuilderSteps, AnUnknownRootStepIsMadeOfNothing) {
  Reading reading;
  const auto step = reading.builder.rootStepInstanceWithIdentifier("ghost");
  ASSERT_NE(step, nullptr);
  EXPECT_EQ(step->identifier(), "ghost");
  EXPECT_EQ(reading.builder.rootStepInstanceWithIdentifier("ghost"), step);
  ASSERT_EQ(reading.maker->calls.size(), 1U);
  EXPECT_EQ(reading.maker->calls[0].type, std::nullopt);
  EXPECT_EQ(reading.maker->calls[0].data, nullptr);
}

TEST(ORLFProcessStepBuilderSteps, RecordsMadeByHandAreBuiltToo) {
  Reading reading;
  const auto group = std::make_shared<ORLFProcessStepBuilderStepData>();
  group->setIdentifier("g");
  group->setGroup(true);
  group->setFirstStep("a");
  const auto child = std::make_shared<ORLFProcessStepBuilderStepData>();
  child->setIdentifier("a");
  child->setParentStep(group);
  child->transitionMap()["out"] = NSNull();
  child->responseMap()["out"] = "done";
  group->childSteps().push_back(child);
  EXPECT_EQ(child->parentStep(), group);
  const auto step = std::make_shared<ORLFProcessStep>("g");
  reading.builder.fillStepWithData(step, group);
  EXPECT_EQ(step->initialStep()->fullIdentifier(), "g.a");
  EXPECT_TRUE(step->initialStep()->siblingIdentiferForTransition("out").isNull());
  EXPECT_EQ(step->initialStep()->responseForTransition("out"), "done");
}

TEST(ORLFProcessStepBuilderSteps, AnEmptyTypeOfAReferenceIsNone) {
  Reading reading;
  static_cast<void>(reading.read(
      "<process rootstep='r'><step id='r' firststep='s'><stepref id='s'><representedobject "
      "type=''/></stepref></step><step id='s'><representedobject type='page'/></step></process>"));
  EXPECT_EQ(reading.maker->names(), (Lines{"r:nil", "s:page", "s:page"}));
}

TEST(ORLFProcessStepBuilderSteps, APlainStepWithAnEmptyTypeIsAskedFor) {
  Reading reading;
  static_cast<void>(reading.read(
      "<process rootstep='r'><step id='r'><representedobject type=''/></step></process>"));
  EXPECT_EQ(reading.maker->names(), Lines{"r:"});
}

TEST(ORLFProcessStepBuilderSteps, WhatWasReadCanBeWalked) {
  Reading reading;
  ORLFProcess process(reading.read(
      "<process rootstep='loan'><step id='loan' firststep='income'>"
      "<step id='income'><transition value='next' stepid='check'/></step>"
      "<stepref id='check'><transition value='fail' end='rejected'/></stepref></step>"
      "<step id='check' firststep='a'><step id='a'><transition value='no' end='fail'/></step>"
      "</step></process>"));
  EXPECT_EQ(process.run()->fullIdentifier(), "loan.income");
  EXPECT_EQ(process.advanceWithTransition("next", nullptr)->fullIdentifier(), "loan.check.a");
  EXPECT_EQ(process.advanceWithTransition("no", nullptr), nullptr);
}

}  // namespace
}  // namespace ORLFoundation
