#include "process/process_graph.h"

#include <ORLFoundation/process/engine/ORLFProcessStep.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/TemporaryFolder.h>

#include <cstdlib>
#include <map>
#include <string>

#include "cli/failure.h"
#include "process/process_file.h"

namespace {

using orlftool::dotLabel;
using orlftool::JobFailure;

class ProcessGraph : public orlftest::TemporaryFolderTest {
 protected:
  std::string dotOf(const std::string& definition) {
    return orlftool::dotOfProcess(orlftool::readProcessFile(write("d.xml", definition)));
  }
  /// A program of that name alone in PATH, with the lines of a shell.
  void installDot(const std::string& lines) {
    const std::string program = write("bin/dot", "#!/bin/sh\n" + lines + "\n");
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
  }
};

const char* const kGraphDefinition =
    "<process rootstep='r'><step id='r' firststep='a'>"
    "<step id='a'><representedobject type='page'/><transition value='next' stepid='g'/>"
    "<transition value='lost' stepid='x'/></step>"
    "<step id='g' firststep='b'><transition value='up' end='all'/>"
    "<step id='b'><transition value='done' end='up'/><transition value='again' stepid='b'/></step>"
    "</step></step></process>";

TEST_F(ProcessGraph, HasStepsGroupsAndWays) {
  EXPECT_EQ(dotOf(kGraphDefinition),
            R"(digraph "r" {
  rankdir=LR;
  node [shape=box, style=rounded, fontname="sans-serif"];
  edge [fontname="sans-serif", fontsize=10];
  graph [fontname="sans-serif", style=rounded, color=gray];
  subgraph cluster_s0 {
    label="r";
    s1 [label="a\npage"];
    subgraph cluster_s2 {
      label="g";
      s3 [label="b"];
    }
  }
  start [shape=point];
  start -> s1;
  s1 -> nowhere [label="lost"];
  s1 -> s3 [label="next"];
  s3 -> s3 [label="again"];
  s3 -> end0 [label="done"];
  end0 [label="up", shape=doublecircle];
  nowhere [label="?", color=red];
}
)");
}

TEST_F(ProcessGraph, OfOneStepIsASingleNode) {
  const std::string dot =
      dotOf("<process rootstep='r'><step id='r'><transition value='x' end='y'/></step></process>");
  EXPECT_NE(dot.find("  s0 [label=\"r\"];\n  start [shape=point];\n  start -> s0;\n"
                     "  s0 -> end0 [label=\"x\"];\n  end0 [label=\"y\", shape=doublecircle];\n}"),
            std::string::npos)
      << dot;
}

TEST_F(ProcessGraph, BeginsNowhereWithoutAFirstStep) {
  const std::string dot =
      dotOf("<process rootstep='r'><step id='r' firststep='x'><step id='a'/></step></process>");
  EXPECT_NE(dot.find("start -> nowhere;"), std::string::npos) << dot;
}

TEST_F(ProcessGraph, LabelsHoldWhatTheyAre) {
  EXPECT_EQ(dotLabel("a"), "\"a\"");
  EXPECT_EQ(dotLabel(""), "\"\"");
  EXPECT_EQ(dotLabel("\"; x -> y; \""), R"("\"; x -> y; \"")");
  EXPECT_EQ(dotLabel("\\N \\"), R"("\\N \\")");
  EXPECT_EQ(dotLabel("a\nb\tc\rd\x7F"), R"("a\nb c d ")");
  EXPECT_EQ(dotLabel("&lt;b> <i>"), "\"&amp;lt;b> <i>\"");
  EXPECT_EQ(dotLabel("ü"), "\"ü\"");
  const std::string dot = dotOf("<process rootstep='\"}'><step id='\"}'/></process>");
  EXPECT_EQ(dot.find(R"(digraph "\"}" {)"), 0U) << dot;
}

TEST_F(ProcessGraph, IsDrawnByTheProgramDot) {
  installDot(R"(printf '%s\n' "$@" >&2; PATH=/bin:/usr/bin; cat >"${2#-o}")");
  const orlftest::EnvironmentVariable programs("PATH", path("bin"));
  const std::string file = path("a b;c.svg");
  orlftool::drawSvg("digraph {}", file);
  EXPECT_EQ(read("a b;c.svg"), "digraph {}");
  EXPECT_EQ(names().size(), 2U) << "nothing is left beside it";
}

std::string failureOfDrawing(const std::string& file) {
  try {
    orlftool::drawSvg("digraph {}", file);
  } catch (const JobFailure& failure) {
    return failure.what();
  }
  return {};
}

TEST_F(ProcessGraph, NeedsTheProgramDotForAPicture) {
  const orlftest::EnvironmentVariable programs("PATH", path("empty"));
  const std::string file = path("a.svg");
  EXPECT_EQ(failureOfDrawing(file), file +
                                        ": an SVG needs the program dot of Graphviz, which is not "
                                        "installed; a .dot file needs nothing");
  EXPECT_TRUE(names().empty());
}

TEST_F(ProcessGraph, ThatCannotBeDrawnLeavesNoFile) {
  installDot("echo 'Error: syntax' >&2; echo more >&2; exit 1");
  const orlftest::EnvironmentVariable programs("PATH", path("bin"));
  const std::string file = path("a.svg");
  EXPECT_EQ(failureOfDrawing(file), file + ": dot failed: Error: syntax");
  EXPECT_EQ(names(), std::vector<std::string>{"bin"});
}

TEST_F(ProcessGraph, IsMadeOfAProcessOfAnyDepth) {
  // References nest deeper than any file.
  std::string steps = "<step id='s20' firststep='x'><step id='x'/></step>";
  for (int i = 0; i < 20; ++i) {
    const std::string open = "<step id='d' firststep='d'>";
    std::string text = "<step id='s" + std::to_string(i) + "' firststep='d'>";
    for (int depth = 0; depth < 1000; ++depth) text += open;
    text += "<stepref id='s" + std::to_string(i + 1) + "'/>";
    for (int depth = 0; depth < 1000; ++depth) text += "</step>";
    steps += text + "</step>";
  }
  const std::string dot = dotOf("<process rootstep='s0'>" + steps + "</process>");
  EXPECT_NE(dot.find("cluster_s20000 "), std::string::npos);
}

TEST(ProcessFile, NotesTypesAndProperties) {
  const orlftest::TemporaryFolder folder;
  const auto root = orlftool::readProcessFile(folder.write(
      "d.xml",
      "<process rootstep='r'><step id='r' firststep='s'><step id='s'><representedobject "
      "type='page'>"
      "<property key='t' string='x'/><property key='n' int='5'/><property key='y' bool='YES'/>"
      "<property key='o' bool='no'/></representedobject></step></step></process>"));
  const auto note = orlftool::noteOf(*root->initialStep());
  ASSERT_NE(note, nullptr);
  EXPECT_EQ(note->type, "page");
  EXPECT_EQ(note->properties, (std::map<std::string, std::string>{
                                  {"t", "x"}, {"n", "5"}, {"y", "yes"}, {"o", "no"}}));
  EXPECT_EQ(orlftool::noteOf(ORLFoundation::ORLFProcessStep("x")), nullptr);
}

}  // namespace
