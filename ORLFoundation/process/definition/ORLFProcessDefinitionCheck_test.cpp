#include <ORLFoundation/process/definition/ORLFProcessDefinitionCheck.h>

#include <ORLFoundation/process/definition/ORLFProcessStepBuilderStepData.h>

#include <ORLFoundation/process/definition/ORLFProcessStepBuilder_testing.h>
#include <tests/support/ProcessorTime.h>

#include <cstddef>

namespace ORLFoundation {
namespace {

using Lines = std::vector<std::string>;
using Kind = ORLFProcessDefinitionFindingKind;

std::string lineOf(const ORLFProcessDefinitionFinding& finding) {
  return std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column) + " " +
         std::to_string(finding.kind) + " " + finding.message;
}

Lines linesOf(const std::vector<ORLFProcessDefinitionFinding>& findings) {
  Lines lines;
  for (const auto& finding : findings) lines.push_back(lineOf(finding));
  return lines;
}

Lines findingsIn(const std::string& definition, NSUInteger limit = 1'000'000) {
  const LogCapture log;
  const auto findings =
      ORLFProcessDefinitionCheck::findingsOfData(NSData(std::string_view(definition)), limit);
  EXPECT_TRUE(log.lines().empty()) << "what is found is not logged";
  return linesOf(findings);
}

struct CheckCase {
  const char* name;
  const char* definition;
  Lines findings;
};

// Each fault alone, in a definition that is in order otherwise.
const CheckCase kFaults[] = {
    {"NothingIsWrong",
     "<process rootstep='r'><step id='r' firststep='a'><step id='a'><transition value='n' "
     "stepid='s'/></step><stepref id='s'/></step><step id='s' firststep='t'><step id='t'>"
     "<transition value='out' end='over'/></step><transition value='over' end='all'/></step>"
     "</process>",
     {}},
    {"NoXML",
     "<process rootstep='r'>\n<step id='r'></process>",
     {"2:24 0 Opening and ending tag mismatch: step line 2 and process"}},
    {"ARule",
     "<process rootstep='r'>\n <step id='r'/>\n  <stepref\n id='r'/></process>",
     {"3:3 1 The <stepref> element should never be at the root"}},
    {"NoRootStepAttribute",
     "<process>\n<step id='r'/></process>",
     {"1:1 1 The <process> element needs to have a rootstep attribute"}},
    {"AStepWithoutId",
     "<process rootstep='r'><step id='r' firststep='a'><step id='a'/>\n<step/></step></process>",
     {"2:1 1 All <steps> should have an id attribute"}},
    {"ATransitionWithoutValue",
     "<process rootstep='r'><step id='r'>\n <transition stepid='a'/></step></process>",
     {"2:2 2 A <transition> is without the attribute value"}},
    {"ATransitionToNothing",
     "<process rootstep='r'><step id='r' firststep='g'><step id='g' firststep='a'><step id='a'>\n"
     " <transition value='x'/></step></step></step></process>",
     {"2:2 2 A <transition> is without the attribute end"}},
    {"APropertyWithoutKey",
     "<process rootstep='r'><step id='r'>\n <property string='a'/></step></process>",
     {"2:2 2 A <property> is without the attribute key"}},
    {"AReferenceWithoutId",
     "<process rootstep='r'><step id='r' firststep='a'><step id='a'/>\n<stepref/></step></process>",
     {"2:1 2 A <stepref> is without the attribute id"}},
    {"ANamesakeAtTheTop",
     "<process rootstep='r'>\n<step id='r'><transition value='x' stepid='y'/></step>\n"
     "<step id='r'/></process>",
     {"2:1 3 The step \"r\" is replaced by a later one of its name"}},
    {"ANamesakeBeside",
     "<process rootstep='r'><step id='r' firststep='a'>\n<step id='a' firststep='gone'/>\n"
     "<stepref id='a'/></step><step id='a'/></process>",
     {"2:1 3 The step \"a\" is replaced by a later one of its name"}},
    {"ATransitionTwice",
     "<process rootstep='r'><step id='r'>\n<transition value='x' stepid='y'/>\n"
     "<transition value='x' end='y'/></step></process>",
     {"2:1 3 The transition \"x\" is replaced by a later one of its name"}},
    {"AnUnknownRootStep",
     "\n<process rootstep='x'><step id='r' firststep='a'><step id='a'/></step></process>",
     {"2:1 4 The process begins with \"x\", and there is no such step at the top of the file"}},
    {"ADanglingReference",
     "<process rootstep='r'><step id='r' firststep='a'><step id='a'><transition value='n' "
     "stepid='s'/></step>\n<stepref id='s'/></step></process>",
     {"2:1 5 The reference to \"s\" leads to no step at the top of the file"}},
    {"AReferenceToItself",
     "<process rootstep='r'><step id='r' firststep='r'>\n<stepref id='r'/></step></process>",
     {"2:1 6 \"r\" refers to itself over 1 reference: r > r"}},
    {"AMissingFirstStep",
     "<process rootstep='r'><step id='r' firststep='a'><step id='a'><transition value='n' "
     "stepid='g'/></step>\n<step id='g' firststep='x'><step id='b'/></step></step></process>",
     {"2:1 8 The group \"r.g\" begins with \"x\", a step that it does not have"}},
    {"AMissingFirstStepOfTheProcess",
     "<process rootstep='r'>\n<step id='r' firststep='x'><step id='a'/></step></process>",
     {"2:1 8 The group \"r\" begins with \"x\", a step that it does not have"}},
    {"NoProcess",
     "\n<steps>\n<step id='r'/></steps>",
     {"2:1 4 There is no <process>, and so no step to begin with"}},
    {"AMissingTarget",
     "<process rootstep='r'><step id='r' firststep='a'><step id='a'>\n<transition value='n' "
     "stepid='x'/></step></step></process>",
     {"2:1 9 The transition \"n\" of \"r.a\" leads to \"x\", which does not stand beside it"}},
    {"ATargetBesideTheProcess",
     "<process rootstep='r'><step id='r'>\n<transition value='n' stepid='r'/></step></process>",
     {"2:1 9 The transition \"n\" of \"r\" leads to \"r\", which does not stand beside it"}},
    {"AResponseThatNobodyTakes",
     "<process rootstep='r'><step id='r' firststep='g'><step id='g' firststep='a'>"
     "<transition value='y' end='x'/><step id='a'>\n<transition value='n' end='x'/></step></step>"
     "<transition value='x' end='x'/></step></process>",
     {"2:1 10 The transition \"n\" of \"r.g.a\" answers \"x\", which the group \"r.g\" does not "
      "take"}},
    {"AStepThatNothingLeadsTo",
     "<process rootstep='r'><step id='r' firststep='a'><step id='a'/>\n<step id='b' firststep='c'>"
     "<step id='c'/><step id='d'/></step></step></process>",
     {"2:1 11 No transition leads to the step \"r.b\""}},
    {"AStepThatNoReferenceLeadsTo",
     "<process rootstep='r'><step id='r'/>\n<step id='s'/></process>",
     {"2:1 11 No reference leads to the step \"s\""}},
    {"ANameWithAPoint",
     "<process rootstep='r'><step id='r' firststep='a.b'>\n<step id='a.b'/></step></process>",
     {"2:1 12 The identifier \"a.b\" is one to which no path leads"}},
    {"AnEmptyName",
     "<process rootstep='r'><step id='r' firststep=''>\n<step id=''/></step></process>",
     {"2:1 12 The identifier \"\" is one to which no path leads"}},
};

TEST(ORLFProcessDefinitionCheck, TellsOfEachFaultWithItsPlace) {
  for (const CheckCase& row : kFaults)
    EXPECT_EQ(findingsIn(row.definition), row.findings) << row.name;
}

TEST(ORLFProcessDefinitionCheck, GoesOnToTheEnd) {
  EXPECT_EQ(
      findingsIn(
          "<process rootstep='r'>\n<step id='r' firststep='x'>\n<step id='a'>\n"
          "<transition/>\n<transition value='n' stepid='x'/>\n</step>\n<stepref id='s'/>\n"
          "<step>\n<property/>\n</step>\n</step>\n<transition value='q' end='q'/></process>"),
      (Lines{
          "2:1 8 The group \"r\" begins with \"x\", a step that it does not have",
          "4:1 2 A <transition> is without the attribute value",
          "5:1 9 The transition \"n\" of \"r.a\" leads to \"x\", which does not stand beside it",
          "7:1 5 The reference to \"s\" leads to no step at the top of the file",
          "8:1 1 All <steps> should have an id attribute",
          "9:1 2 A <property> is without the attribute key",
          "12:1 1 We should only get a <transition> element inside a <step> or <stepref> tag."}));
}

TEST(ORLFProcessDefinitionCheck, TellsOfRulesBrokenBeforeTheFileIsNoXML) {
  EXPECT_EQ(findingsIn("<process>\n<step id='a' firststep='g'/></proc"),
            (Lines{"1:1 1 The <process> element needs to have a rootstep attribute",
                   "2:35 0 expected '>'"}));
  const Lines empty = findingsIn("");
  ASSERT_EQ(empty.size(), 1U);
  EXPECT_EQ(empty[0].find("1:1 0 "), 0U) << empty[0];
}

TEST(ORLFProcessDefinitionCheck, RulesOfEndTagsStandBehindThem) {
  EXPECT_EQ(findingsIn("<process rootstep='r'><step id='r'/>\n<step firststep='s'><step id='s'/>"
                       "</step></process>"),
            (Lines{"2:1 1 All <steps> should have an id attribute",
                   "2:42 1 We should only get an end <step> element with a current stepdata"}));
}

TEST(ORLFProcessDefinitionCheck, ReferencesAreCheckedWhereTheyStand) {
  // "s" leads to "b" wherever it stands: that is wrong in g alone, and there the reference mends
  // the first of its transitions.
  const std::string definition =
      "<process rootstep='r'><step id='r' firststep='s'><stepref id='s'/><step id='b'>"
      "<transition value='n' stepid='g'/></step>\n"
      "<step id='g' firststep='s'><stepref id='s'>\n<transition value='n' end='up'/></stepref>"
      "<transition value='up' end='done'/></step></step>\n"
      "<step id='s'>\n<transition value='n' stepid='b'/>\n<transition value='m' stepid='b'/></step>"
      "</process>";
  EXPECT_EQ(findingsIn(definition),
            Lines{"6:1 9 The transition \"m\" of \"r.g.s\" leads to \"b\", which does not stand "
                  "beside it"});
}

TEST(ORLFProcessDefinitionCheck, AnOverlaysTransitionStandsInTheOverlay) {
  EXPECT_EQ(
      findingsIn("<process rootstep='r'><step id='r' firststep='s'><stepref id='s'>\n"
                 "<transition value='n' stepid='x'/></stepref></step><step id='s'>\n"
                 "<transition value='n' end='all'/></step></process>"),
      Lines{"2:1 9 The transition \"n\" of \"r.s\" leads to \"x\", which does not stand beside "
            "it"});
}

TEST(ORLFProcessDefinitionCheck, AStepOfSeveralPlacesIsToldOfOnce) {
  EXPECT_EQ(
      findingsIn("<process rootstep='r'><step id='r' firststep='g'><stepref id='g'>"
                 "<transition value='out' stepid='h'/></stepref><step id='h' firststep='g'>"
                 "<stepref id='g'><transition value='out' end='x'/></stepref>"
                 "<transition value='x' end='done'/></step></step>\n"
                 "<step id='g' firststep='a'><step id='a'><transition value='n' end='out'/>\n"
                 "<transition value='m' stepid='x'/></step>\n<step id='b'/></step></process>"),
      (Lines{"3:1 9 The transition \"m\" of \"r.g.a\" leads to \"x\", which does not stand "
             "beside it",
             "4:1 11 No transition leads to the step \"r.g.b\""}));
}

TEST(ORLFProcessDefinitionCheck, AStepReachedInOnePlaceIsReached) {
  // In h, nothing leads to the second step of the group.
  EXPECT_EQ(findingsIn("<process rootstep='r'><step id='r' firststep='g'><stepref id='g'>"
                       "<transition value='out' stepid='h'/></stepref><stepref id='h'/></step>"
                       "<step id='g' firststep='a'><step id='a'><transition value='n' stepid='b'/>"
                       "</step><step id='b'><transition value='n' end='out'/></step></step>"
                       "<step id='h' firststep='b'><step id='b'/></step></process>"),
            Lines{});
}

TEST(ORLFProcessDefinitionCheck, GroupsThatNobodyRefersToAreCheckedInside) {
  EXPECT_EQ(
      findingsIn("<process rootstep='r'><step id='r'/>\n<step id='g' firststep='x'>\n"
                 "<transition value='n' stepid='y'/><step id='a'>\n<transition value='n' "
                 "stepid='y'/><transition value='o' end='z'/></step></step></process>"),
      (Lines{
          "2:1 11 No reference leads to the step \"g\"",
          "2:1 8 The group \"g\" begins with \"x\", a step that it does not have",
          "4:1 9 The transition \"n\" of \"g.a\" leads to \"y\", which does not stand beside it"}));
}

TEST(ORLFProcessDefinitionCheck, EveryCycleIsToldOf) {
  EXPECT_EQ(findingsIn("<process rootstep='r'><step id='r' firststep='a'><stepref id='a'/></step>\n"
                       "<step id='a' firststep='b'><stepref id='b'/></step>\n"
                       "<step id='b' firststep='a'><stepref id='a'/>\n"
                       "<stepref id='b'/></step></process>"),
            (Lines{"3:28 6 \"a\" refers to itself over 2 references: a > b > a",
                   "4:1 6 \"b\" refers to itself over 1 reference: b > b",
                   "4:1 11 No transition leads to the step \"r.a.b.b\""}));
}

TEST(ORLFProcessDefinitionCheck, ReferencesThatMultiplyAreToldOfBeforeMemoryGrows) {
  std::string steps = "<step id='r' firststep='s0'><stepref id='s0'/></step>";
  for (int i = 0; i < 60; ++i) {
    const std::string next = "s" + std::to_string(i + 1);
    steps += "<step id='s" + std::to_string(i) + "' firststep='" + next + "'><stepref id='" + next +
             "'/><step id='x' firststep='" + next + "'><stepref id='" + next + "'/></step></step>";
  }
  const Lines lines = findingsIn("<process rootstep='r'>" + steps + "<step id='s60'/></process>");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].find("1:1 7 The definition comes to more than 1000000 steps, most of all by "),
            0U)
      << lines[0];
  const std::string small =
      "<process rootstep='r'><step id='r' firststep='a'><step id='a'/></step>"
      "</process>";
  EXPECT_EQ(findingsIn(small, 2), Lines{});
  EXPECT_EQ(findingsIn(small, 1).size(), 1U);
}

TEST(ORLFProcessDefinitionCheck, AGroupIsReachedThroughResponsesOfSeveralLevels) {
  EXPECT_EQ(findingsIn("<process rootstep='r'><step id='r' firststep='g'>"
                       "<step id='g' firststep='h'><transition value='up' stepid='k'/>"
                       "<step id='h' firststep='a'><transition value='up' end='up'/>"
                       "<step id='a'><transition value='n' end='up'/></step></step></step>"
                       "<step id='k' firststep='l'><step id='l' firststep='m'><step id='m'/></step>"
                       "</step></step></process>"),
            Lines{});
}

TEST(ORLFProcessDefinitionCheck, LongNamesAreToldInPart) {
  const std::string name(300, 'n');
  const std::string umlauts = "x" + std::string(2, 'y') + [] {
    std::string text;
    for (int i = 0; i < 150; ++i) text += "\u00fc";
    return text;
  }();
  const Lines lines = findingsIn(
      "<process rootstep='r'><step id='r' firststep='g'><step id='g' "
      "firststep='" +
      name + "'/><step id='" + umlauts + "' firststep='" + umlauts + "'/></step></process>");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NE(lines[0].find("\"r.g\" begins with \"" + name.substr(0, 200) + "...\", a"),
            std::string::npos)
      << lines[0];
  EXPECT_NE(lines[1].find("\"..." + umlauts.substr(umlauts.size() - 200) + "\" begins with \"" +
                          umlauts.substr(0, 199) + "...\", a"),
            std::string::npos)
      << lines[1];
}

TEST(ORLFProcessDefinitionCheck, DeepStepsCostNoMoreThanOthers) {
  // Each of so many steps has a full identifier of half a megabyte.
  constexpr int kDepth = 1900;
  const std::string name(250, 'n');
  std::string text = "<process rootstep='r'><step id='r' firststep='" + name + "'>";
  for (int i = 0; i < kDepth; ++i)
    text += "<step id='" + name + "' firststep='" + name + "'><transition value='a' stepid='" +
            name + "'/><transition value='b' stepid='x'/>";
  text += "<step id='" + name + "'/>";
  for (int i = 0; i < kDepth; ++i) text += "</step>";
  const double seconds = orlftest::processorSecondsOf(
      [&] { EXPECT_EQ(findingsIn(text + "</step></process>").size(), std::size_t{kDepth}); });
  EXPECT_LT(seconds, 10);
}

TEST(ORLFProcessDefinitionCheck, ReadsFiles) {
  const orlftest::TemporaryFolder folder;
  const auto url = NSURL::fileURLWithPath(
      folder.write("d.xml", "<process rootstep='r'><step id='s'/></process>"));
  const auto findings = ORLFProcessDefinitionCheck::findingsOfURL(url);
  ASSERT_TRUE(findings);
  EXPECT_EQ(findings->size(), 1U);
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(
      ORLFProcessDefinitionCheck::findingsOfURL(NSURL::fileURLWithPath("/nowhere/d.xml"), &error));
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->code(), 260);
  EXPECT_EQ(ORLFProcessDefinitionCheck().className(), "ORLFProcessDefinitionCheck");
}

TEST(ORLFProcessDefinitionCheck, RecordsKnowTheirPlaces) {
  orlftest::Reading reading;
  static_cast<void>(
      reading.read("<process rootstep='r'>\n  <step id='r'\n firststep='s'>\n<stepref id='s'>"
                   "<transition value='n' end='x'/></stepref></step><step id='s'/></process>"));
  const auto& record = reading.builder.rootStepDatas().at("r");
  EXPECT_EQ(record->place(), (ORLFProcessDefinitionPlace{2, 3}));
  const auto& reference = record->childSteps().at(0);
  EXPECT_EQ(reference->place(), (ORLFProcessDefinitionPlace{4, 1}));
  EXPECT_EQ(reference->transitionPlaces().at("n"), (ORLFProcessDefinitionPlace{4, 17}));
  EXPECT_EQ(ORLFProcessStepBuilderStepData().place(), ORLFProcessDefinitionPlace());
}

}  // namespace
}  // namespace ORLFoundation
