// The elements of a definition, its rules, and files that are none.
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/process/definition/ORLFProcessStepBuilderDelegate.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder_testing.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

namespace ORLFoundation {
namespace {

using orlftest::Reading;
using Lines = std::vector<std::string>;

struct RuleCase {
  const char* name;
  const char* definition;
  Lines log;
};

const std::string kOneProcess =
    "Condition Failed: rootStepId == nil We should only ever have on <process> element and it "
    "should have the rootstep attribute";
const std::string kRootStep =
    "Condition Failed: rootStepId != nil The <process> element needs to have a rootstep attribute";
const std::string kStepId =
    "Condition Failed: identifier != nil All <steps> should have an id attribute";
const std::string kStepPlace =
    "Condition Failed: self.currentStepData == nil || self.currentStepData.group The <step> "
    "element should only occure in a step group or at the root";
const std::string kReferenceAtRoot =
    "Condition Failed: self.currentStepData != nil The <stepref> element should never be at the "
    "root";
const std::string kReferencePlace =
    "Condition Failed: self.currentStepData.group The <stepref> element should only occure in a "
    "step group";
const std::string kTransitionPlace =
    "Condition Failed: self.currentStepData != nil We should only get a <transition> element "
    "inside a <step> or <stepref> tag.";
const std::string kEndOfStep =
    "Condition Failed: self.currentStepData != nil We should only get an end <step> element with a "
    "current stepdata";
const std::string kEndOfReference =
    "Condition Failed: self.currentStepData != nil We should only get an end <stepref> element "
    "with a current stepdata";

const RuleCase kRules[] = {
    {"NothingIsBroken", "<process rootstep='r'><step id='r'/></process>", {}},
    {"AProcessInAProcess",
     "<process rootstep='r'><process rootstep='r'/><step id='r'/></process>",
     {kOneProcess}},
    {"AProcessWithoutRootStep", "<process><step id='r'/></process>", {kRootStep}},
    {"ASecondProcessWithoutRootStep",
     "<process rootstep='r'><process/></process>",
     {kOneProcess, kRootStep}},
    {"AStepWithoutId", "<process rootstep='r'><step/><step id='r'/></process>", {kStepId}},
    {"AStepInAStepThatIsNoGroup",
     "<process rootstep='r'><step id='r'><step id='s'/></step></process>",
     {kStepPlace}},
    {"AReferenceAtTheRoot",
     "<process rootstep='r'><stepref id='r'/><step id='r'/></process>",
     {kReferenceAtRoot}},
    {"AReferenceInAStepThatIsNoGroup",
     "<process rootstep='r'><step id='r'><stepref id='s'/></step><step id='s'/></process>",
     {kReferencePlace}},
    {"AReferenceInAReference",
     "<process rootstep='r'><step id='r' firststep='s'><stepref id='s'><stepref id='t'/></stepref>"
     "</step><step id='s'/><step id='t'/></process>",
     {kReferencePlace}},
    {"ATransitionOutside",
     "<process rootstep='r'><transition value='a' end='b'/><step id='r'/></process>",
     {kTransitionPlace}},
    {"ATransitionOutsideLacksNothing",
     "<process rootstep='r'><transition/><step id='r'/></process>",
     {kTransitionPlace}},
    // The reference at the root is held by nobody once the step inside of it is open.
    {"AStepInAReferenceAtTheRoot",
     "<process rootstep='r'><stepref id='r'><step id='s'/></stepref><step id='r'/></process>",
     {kReferenceAtRoot, kStepPlace, kEndOfReference}},
    {"AStepInAStepWithoutIdAtTheRoot",
     "<process rootstep='r'><step firststep='s'><step id='s'/></step><step id='r'/></process>",
     {kStepId, kEndOfStep}},
};

TEST(ORLFProcessStepBuilder, LogsEachBrokenRuleAndReadsOn) {
  for (const RuleCase& row : kRules) {
    Reading reading;
    const auto root = reading.read(row.definition);
    EXPECT_EQ(reading.log.lines(), row.log) << row.name;
    EXPECT_EQ(reading.error, nullptr) << row.name;
    const bool isNamed = reading.builder.rootStepId() == "r";
    EXPECT_EQ(root != nullptr, isNamed && reading.builder.rootStepDatas().count("r") > 0)
        << row.name;
  }
}

TEST(ORLFProcessStepBuilder, LogsEndsWithoutARecord) {
  Reading reading;
  NSXMLParser parser{NSData(std::string_view("<a/>"))};
  reading.builder.parserDidEndElement(parser, "step", std::nullopt, std::nullopt);
  reading.builder.parserDidEndElement(parser, "stepref", std::nullopt, std::nullopt);
  reading.builder.parserDidEndElement(parser, "process", std::nullopt, std::nullopt);
  EXPECT_EQ(reading.log.lines(), (Lines{kEndOfStep, kEndOfReference}));
}

TEST(ORLFProcessStepBuilder, ADefinitionWithoutRootStepGivesNoStepAndNoError) {
  Reading reading;
  EXPECT_EQ(reading.read("<process><step id='r'/></process>"), nullptr);
  EXPECT_EQ(reading.error, nullptr);
  EXPECT_EQ(reading.log.lines(), Lines{kRootStep});
  EXPECT_NE(reading.builder.rootStepInstances().find("r"),
            reading.builder.rootStepInstances().end());
}

TEST(ORLFProcessStepBuilder, AnUnknownRootStepGivesNoStepAndNoError) {
  Reading reading;
  EXPECT_EQ(reading.read("<process rootstep='x'><step id='r'/></process>"), nullptr);
  EXPECT_EQ(reading.error, nullptr);
  EXPECT_TRUE(reading.log.lines().empty());
}

TEST(ORLFProcessStepBuilder, NamesAreComparedExactly) {
  Reading reading;
  const auto root = reading.read(
      "<process rootstep='r'><Step id='x'/><p:step id='y' xmlns:p='p'/>"
      "<step id='r' Firststep='s' ID='t'><STEP id='s'/><Transition value='a' end='b'/></step>"
      "</process>");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->intialStepIdentifier(), std::nullopt);
  EXPECT_EQ(root->childStepMap(false), nullptr);
  EXPECT_EQ(root->possibleTransitions(), std::nullopt);
  EXPECT_EQ(reading.builder.rootStepDatas().size(), 1U);
  EXPECT_TRUE(reading.log.lines().empty());
}

TEST(ORLFProcessStepBuilder, ATransitionLeadsToASiblingOrOut) {
  Reading reading;
  const auto root = reading.read(
      "<process rootstep='r'><step id='r'><transition value='a' stepid='b' end='c'/>"
      "<transition value='d' end='e'/><transition value='' end=''/>"
      "<transition value='twice' stepid='x'/><transition value='twice' end='y'/></step></process>");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->siblingIdentiferForTransition("a"), id("b"));
  EXPECT_EQ(root->responseForTransition("a"), std::nullopt);
  EXPECT_TRUE(root->siblingIdentiferForTransition("d").isNull());
  EXPECT_EQ(root->responseForTransition("d"), "e");
  EXPECT_TRUE(root->siblingIdentiferForTransition("").isNull());
  EXPECT_EQ(root->responseForTransition(""), "");
  EXPECT_TRUE(root->siblingIdentiferForTransition("twice").isNull());
  EXPECT_EQ(root->responseForTransition("twice"), "y");
}

TEST(ORLFProcessStepBuilder, WhatNoMapTakesRaises) {
  const char* const definitions[] = {
      "<process rootstep='r'><step id='r'><transition stepid='b'/></step></process>",
      "<process rootstep='r'><step id='r'><transition end='b'/></step></process>",
      "<process rootstep='r'><step id='r'><transition value='a'/></step></process>",
      "<process rootstep='r'><step id='r'><property string='a'/></step></process>",
      "<process rootstep='r'><step id='r'><property/></step></process>",
      "<process rootstep='r'><step id='r' firststep='s'><step/></step></process>",
      "<process rootstep='r'><step id='r' firststep='s'><stepref/></step></process>",
      "<process rootstep='r'><step id='r' firststep='s'><stepref id='s'/></step></process>",
  };
  for (const char* definition : definitions) {
    Reading reading;
    EXPECT_NE(reading.reasonOfReading(definition), "") << definition;
    EXPECT_EQ(reading.name, NSInvalidArgumentException) << definition;
  }
  Reading reading;
  EXPECT_EQ(reading.reasonOfReading(definitions[7]),
            "In \"r\", a <stepref id=\"s\"> refers to no step");
}

TEST(ORLFProcessStepBuilder, ElementsOutsideOfStepsAreNothing) {
  Reading reading;
  EXPECT_NE(reading.read("<x><representedobject type='t'/><property key='k' string='v'/>"
                         "<property/><process rootstep='r'><step id='r'/></process></x>"),
            nullptr);
  EXPECT_TRUE(reading.log.lines().empty());
}

TEST(ORLFProcessStepBuilder, AFileThatCannotBeReadIsAnError) {
  Reading reading;
  EXPECT_EQ(
      reading.builder.readStepFromURL(NSURL::fileURLWithPath("/nowhere/a.xml"), &reading.error),
      nullptr);
  ASSERT_NE(reading.error, nullptr);
  EXPECT_EQ(reading.error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(reading.error->code(), 260);
  EXPECT_EQ(reading.builder.readStepFromURL(NSURL::fileURLWithPath("/nowhere/a.xml")), nullptr);
}

TEST(ORLFProcessStepBuilder, AFileThatIsNoXMLIsAnErrorWithItsPlace) {
  for (const char* text : {"", "no markup", "<process rootstep='r'>\n<step id='r'/>\n",
                           "<process rootstep='r'><step id='r'></process>"}) {
    Reading reading;
    EXPECT_EQ(reading.read(text), nullptr) << text;
    ASSERT_NE(reading.error, nullptr) << text;
    EXPECT_EQ(reading.error->domain(), NSXMLParserErrorDomain) << text;
    EXPECT_TRUE(reading.error->userInfo()->objectForKey(NSXMLParserErrorLineNumberKey)) << text;
    EXPECT_TRUE(reading.builder.rootStepInstances().empty()) << text;
  }
}

TEST(ORLFProcessStepBuilder, ASecondFileIsMergedIntoTheFirst) {
  Reading reading;
  const auto first = reading.read("<process rootstep='r'><step id='r'/><step id='s'/></process>");
  const auto calls = reading.maker->calls.size();
  const auto second = reading.read(
      "<process rootstep='r'><step id='r'><transition value='a' end='b'/></step><step id='t'/>"
      "</process>");
  EXPECT_EQ(second, first) << "what was made is not made anew";
  EXPECT_EQ(second->possibleTransitions(), std::nullopt);
  EXPECT_EQ(reading.log.lines(), Lines{kOneProcess});
  EXPECT_EQ(reading.builder.rootStepDatas().size(), 3U);
  EXPECT_EQ(reading.builder.rootStepInstances().size(), 3U);
  EXPECT_EQ(reading.maker->calls.size(), calls + 1);
}

TEST(ORLFProcessStepBuilder, WhatTheDelegateThrowsComesOut) {
  class Throwing final : public ORLFProcessStepBuilderDelegate {
    id processStepBuilderRepresentedObjectForStep(
        ORLFProcessStepBuilder&, const std::shared_ptr<ORLFProcessStep>&,
        const std::optional<std::string>&, const std::shared_ptr<NSMutableDictionary>&) override {
      throw std::runtime_error("no page");
    }
  };
  Reading reading;
  const auto throwing = std::make_shared<Throwing>();
  reading.builder.setDelegate(throwing);
  EXPECT_THROW(static_cast<void>(reading.read("<process rootstep='r'><step id='r'/></process>")),
               std::runtime_error);
  EXPECT_EQ(reading.error, nullptr);
}

}  // namespace
}  // namespace ORLFoundation
