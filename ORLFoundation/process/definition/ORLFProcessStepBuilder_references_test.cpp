// Steps that stand for others, and the bounds of what they may ask for.
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/process/definition/ORLFProcessStepBuilder_testing.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>
#include <tests/support/ProcessorTime.h>

namespace ORLFoundation {
namespace {

using orlftest::Reading;
using Lines = std::vector<std::string>;

std::string process(const std::string& steps) {
  return "<process rootstep='r'>" + steps + "</process>";
}

TEST(ORLFProcessStepBuilderReferences, EachHasATreeOfItsOwn) {
  Reading reading;
  const auto root = reading.read(
      process("<step id='r' firststep='g'><step id='g' firststep='s'><stepref id='s'/></step>"
              "<stepref id='s'/></step><step id='s' firststep='t'><step id='t'/></step>"));
  ASSERT_NE(root, nullptr);
  const auto upper = root->childStepWithIdentifierPath("s.t");
  const auto lower = root->childStepWithIdentifierPath("g.s.t");
  ASSERT_NE(upper, nullptr);
  ASSERT_NE(lower, nullptr);
  EXPECT_NE(upper, lower);
  EXPECT_EQ(lower->fullIdentifier(), "r.g.s.t");
  EXPECT_NE(reading.builder.rootStepInstanceWithIdentifier("s"), upper->parentStep());
  EXPECT_EQ(reading.maker->names(),
            (Lines{"r:nil", "g:nil", "s:nil", "t:nil", "s:nil", "t:nil", "s:nil", "t:nil"}));
}

TEST(ORLFProcessStepBuilderReferences, LayTheirTransitionsOverTheTargets) {
  Reading reading;
  const auto root = reading.read(process(
      "<step id='r' firststep='s'><stepref id='s'><transition value='both' stepid='mine'/>"
      "<transition value='own' end='o'/></stepref></step>"
      "<step id='s'><transition value='both' end='theirs'/><transition value='kept' stepid='k'/>"
      "</step>"));
  const auto step = root->childStepWithIdentifier("s");
  EXPECT_EQ(step->siblingIdentiferForTransition("both"), id("mine"));
  EXPECT_EQ(step->responseForTransition("both"), "theirs") << "responses are laid over alone";
  EXPECT_EQ(step->siblingIdentiferForTransition("kept"), id("k"));
  EXPECT_EQ(step->responseForTransition("own"), "o");
  const auto target = reading.builder.rootStepInstanceWithIdentifier("s");
  EXPECT_TRUE(target->siblingIdentiferForTransition("both").isNull());
  EXPECT_TRUE(target->siblingIdentiferForTransition("own").isNil());
}

TEST(ORLFProcessStepBuilderReferences, KeepTheTargetsObjectUnlessTheyNameAType) {
  Reading reading;
  const auto root = reading.read(process(
      "<step id='r' firststep='s'><stepref id='s'><property key='k' string='v'/></stepref>"
      "<stepref id='t'><representedobject type='other'><property key='k' string='v'/>"
      "</representedobject></stepref></step><step id='s'><representedobject type='page'/></step>"
      "<step id='t'><representedobject type='page'/></step>"));
  EXPECT_EQ(reading.maker->names(),
            (Lines{"r:nil", "s:page", "t:page", "t:other", "s:page", "t:page"}));
  EXPECT_EQ(root->childStepWithIdentifier("s")->representedObject(), id(2));
  EXPECT_EQ(root->childStepWithIdentifier("t")->representedObject(), id(4));
  EXPECT_EQ(reading.maker->calls[3].data->objectForKey("k"), id("v"));
}

TEST(ORLFProcessStepBuilderReferences, AreNoGroupsAndKeepTheTargetsInitialStep) {
  Reading reading;
  const auto root = reading.read(process(
      "<step id='r' firststep='s'><stepref id='s' firststep='x'><step id='x'/></stepref></step>"
      "<step id='s' firststep='t'><step id='t'/></step>"));
  const auto step = root->childStepWithIdentifier("s");
  EXPECT_EQ(step->intialStepIdentifier(), "t");
  EXPECT_NE(step->childStepWithIdentifier("x"), nullptr) << "what stands inside is added";
  EXPECT_EQ(root->initialStep()->fullIdentifier(), "r.s.t");
}

TEST(ORLFProcessStepBuilderReferences, ReferToStepsOfTheTopAlone) {
  Reading reading;
  EXPECT_EQ(reading.reasonOfReading(
                process("<step id='r' firststep='a'><step id='a'/><step id='g' firststep='a'>"
                        "<stepref id='a'/></step></step>")),
            "In \"g\", a <stepref id=\"a\"> refers to no step");
}

struct CycleCase {
  const char* steps;
  const char* reason;
};

TEST(ORLFProcessStepBuilderReferences, ThatReachThemselvesRaiseWithTheirChain) {
  const CycleCase cases[] = {
      {"<step id='r' firststep='r'><stepref id='r'/></step>",
       "Steps refer to themselves over 1 reference: r > r"},
      {"<step id='r' firststep='g'><step id='g' firststep='r'><stepref id='r'/></step></step>",
       "Steps refer to themselves over 1 reference: r > r"},
      {"<step id='r' firststep='a'><stepref id='a'/></step><step id='a' firststep='b'>"
       "<stepref id='b'/></step><step id='b' firststep='a'><stepref id='a'/></step>",
       "Steps refer to themselves over 2 references: a > b > a"},
      {"<step id='r' firststep='s'><stepref id='s'><step id='x' firststep='r'><stepref id='r'/>"
       "</step></stepref></step><step id='s'/>",
       "Steps refer to themselves over 1 reference: r > r"},
  };
  for (const CycleCase& row : cases) {
    Reading reading;
    EXPECT_EQ(reading.reasonOfReading(process(row.steps)), row.reason);
    EXPECT_EQ(reading.name, NSGenericException);
    EXPECT_TRUE(reading.maker->calls.empty()) << "nothing is made before";
    EXPECT_TRUE(reading.builder.rootStepInstances().empty());
  }
}

TEST(ORLFProcessStepBuilderReferences, ALongCycleIsNamedInPart) {
  std::string steps;
  constexpr int kLength = 3000;
  for (int i = 0; i < kLength; ++i)
    steps += "<step id='s" + std::to_string(i) + "' firststep='x'><stepref id='s" +
             std::to_string((i + 1) % kLength) + "'/></step>";
  Reading reading;
  const std::string reason = reading.reasonOfReading(process(steps));
  EXPECT_EQ(reason.find("Steps refer to themselves over 3000 references: s0 > s1 > s2 > "), 0U);
  EXPECT_NE(reason.find("s38 > s39 > ... > s0"), std::string::npos);
  EXPECT_LT(reason.size(), 1000U);
}

/// Each step refers twice to the next: so many levels make 2^levels steps and more.
std::string doubling(int levels) {
  std::string steps = "<step id='r' firststep='s0'><stepref id='s0'/></step>";
  for (int i = 0; i < levels; ++i) {
    const std::string next = "<stepref id='s" + std::to_string(i + 1) + "'/>";
    steps += "<step id='s" + std::to_string(i) + "' firststep='x'>" + next + next + "</step>";
  }
  return process(steps + "<step id='s" + std::to_string(levels) + "'/>");
}

TEST(ORLFProcessStepBuilderReferences, ThatMultiplyRaiseBeforeAnythingIsMade) {
  for (const int levels : {19, 40, 70, 2000}) {
    Reading reading;
    std::string reason;
    const double seconds =
        orlftest::processorSecondsOf([&] { reason = reading.reasonOfReading(doubling(levels)); });
    EXPECT_LT(seconds, 5) << levels;
    EXPECT_EQ(
        reason.find(
            "The definition comes to more than 1000000 steps, most of all by r > s0 > s1 > s2"),
        0U)
        << reason;
    EXPECT_EQ(reading.name, NSGenericException);
    EXPECT_TRUE(reading.maker->calls.empty());
  }
}

TEST(ORLFProcessStepBuilderReferences, TheLimitIsExactAndCanBeSet) {
  // r and its reference, 1 + 3 steps; s0 of 3 steps; two of s1: 1.
  const std::string definition = doubling(1);
  Reading enough;
  enough.builder.setStepLimit(8);
  EXPECT_EQ(enough.reasonOfReading(definition), "");
  EXPECT_EQ(enough.maker->calls.size(), 8U);
  Reading tooFew;
  tooFew.builder.setStepLimit(7);
  EXPECT_NE(tooFew.reasonOfReading(definition), "");
  EXPECT_EQ(Reading().builder.stepLimit(), 1'000'000U);
}

TEST(ORLFProcessStepBuilderReferences, TheLimitHoldsForAllThatABuilderMakes) {
  Reading reading;
  reading.builder.setStepLimit(8);
  static_cast<void>(reading.read(doubling(1)));
  const std::string another = "<process rootstep='more'><step id='more'/></process>";
  EXPECT_NE(reading.reasonOfReading(another), "");
  reading.builder.setStepLimit(0);
  EXPECT_NE(reading.reasonOfReading(another), "");
  reading.builder.setStepLimit(9);
  EXPECT_EQ(reading.reasonOfReading(another), "");
}

TEST(ORLFProcessStepBuilderReferences, AllStepsOfAFileAreCountedBeforeTheFirstIsMade) {
  const std::string definition = process(
      "<step id='r' firststep='a'><step id='a'/></step><step id='s' firststep='a'>"
      "<step id='a'/></step>");
  Reading tooFew;
  tooFew.builder.setStepLimit(3);
  EXPECT_NE(tooFew.reasonOfReading(definition), "");
  EXPECT_TRUE(tooFew.maker->calls.empty());
  EXPECT_TRUE(tooFew.builder.rootStepInstances().empty());
  Reading enough;
  enough.builder.setStepLimit(4);
  EXPECT_EQ(enough.reasonOfReading(definition), "");
}

TEST(ORLFProcessStepBuilderReferences, ADefinitionOfAnyDepthIsBuilt) {
  constexpr int kDepth = 100'000;
  auto limits = NSXMLParserCurrentLimits();
  limits.elementDepth = 2 * kDepth;
  const Replaced raised(NSSetXMLParserLimits, limits);
  std::string text;
  for (int i = 0; i < kDepth; ++i) text += "<step id='s' firststep='s'>";
  for (int i = 0; i < kDepth; ++i) text += "</step>";
  Reading reading;
  const auto root = reading.read("<process rootstep='s'>" + text + "</process>");
  ASSERT_NE(root, nullptr);
  std::size_t depth = 0;
  for (auto step = root; step; step = step->childStepWithIdentifier("s")) ++depth;
  EXPECT_EQ(depth, std::size_t{kDepth});
}

TEST(ORLFProcessStepBuilderReferences, ANestingBeyondTheParsersLimitIsAnError) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "<step id='s' firststep='s'>";
  Reading reading;
  EXPECT_EQ(reading.read("<process rootstep='s'>" + text), nullptr);
  ASSERT_NE(reading.error, nullptr);
  EXPECT_EQ(reading.error->domain(), NSXMLParserErrorDomain);
}

}  // namespace
}  // namespace ORLFoundation
