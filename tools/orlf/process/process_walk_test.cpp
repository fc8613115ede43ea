#include "process/process_walk.h"

#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <sstream>
#include <string>

#include "process/process_file.h"
#include "session.h"

namespace {

using orlftool::ProcessWalk;
using orlftool::readCommandLine;
using orlftool::Session;

const char* const kWalkDefinition =
    "<process rootstep='r'><step id='r' firststep='a'>"
    "<step id='a'><representedobject type='page'><property key='title' string='First&#10;page'/>"
    "</representedobject><transition value='next' stepid='g'/><transition value='bad' stepid='x'/>"
    "<transition value='stop' end='over'/></step>"
    "<step id='g' firststep='b'><step id='b'><transition value='back' stepid='b'/>"
    "<transition value='go on' stepid='c'/><transition value='up' end='nothing'/></step>"
    "<step id='c'/></step></step></process>";

struct Walked {
  std::string out, err;
  int exitCode = 0;
};

Walked walk(const std::string& commands, bool isTerminal = false,
            const std::string& definition = kWalkDefinition) {
  const orlftest::TemporaryFolder folder;
  std::ostringstream out, err;
  Session session{.out = out, .err = err};
  session.command = "process";
  std::istringstream in(commands);
  ProcessWalk walked(session, orlftool::readProcessFile(folder.write("d.xml", definition)),
                     isTerminal);
  walked.run(in);
  return {out.str(), err.str(), session.exitCode};
}

const std::string kFirstShown =
    "r.a  (page)\n  title = First page\n  1 bad: to a step that does not exist\n"
    "  2 next: to r.g.b\n  3 stop: ends the process with \"over\"\n";
const std::string kSecondShown =
    "r.g.b\n  1 back: to r.g.b\n  2 go on: to r.g.c\n  3 up: ends the process with \"nothing\"\n"
    "  back is possible\n";

TEST(ProcessWalk, ShowsTheFirstStepAndItsWays) {
  const Walked walked = walk("");
  EXPECT_EQ(walked.out, kFirstShown);
  EXPECT_EQ(walked.err, "");
  EXPECT_EQ(walked.exitCode, 0);
}

TEST(ProcessWalk, GoesOnByNameAndNumberBackAndForward) {
  const Walked walked = walk("next\n back \r\n\n2\nback\nforward\nwhere");
  EXPECT_EQ(walked.out, kFirstShown + "\n> next\n" + kSecondShown + "\n> back\n" + kFirstShown +
                            "  forward is possible\n" + "\n> 2\n" + kSecondShown + "\n> back\n" +
                            kFirstShown + "  forward is possible\n" + "\n> forward\n" +
                            kSecondShown + "\n> where\n" + kSecondShown);
  EXPECT_EQ(walked.exitCode, 0);
}

TEST(ProcessWalk, TakesTransitionsWithBlanksAndTheNamesOfCommands) {
  const std::string last = "r.g.c\n  no transitions\n  back is possible\n";
  EXPECT_EQ(walk("next\ngo on\n").out,
            kFirstShown + "\n> next\n" + kSecondShown + "\n> go on\n" + "The process has ended.\n")
      << "go takes the rest for a name";
  EXPECT_EQ(walk("next\ngo go on\n").out,
            kFirstShown + "\n> next\n" + kSecondShown + "\n> go go on\n" + last);
  EXPECT_EQ(walk("next\n2\n").out, kFirstShown + "\n> next\n" + kSecondShown + "\n> 2\n" + last);
  EXPECT_EQ(walk("next\ngo back").out,
            kFirstShown + "\n> next\n" + kSecondShown + "\n> go back\n" + kSecondShown);
}

TEST(ProcessWalk, EndsAndBeginsAnew) {
  const Walked walked = walk("stop\nnext\nwhere\nback\nrun\nhistory\nback\nquit\nnext\n");
  EXPECT_EQ(walked.out, kFirstShown +
                            "\n> stop\nThe process has ended with \"over\".\n\n> next\n\n> "
                            "where\n\n> back\n\n> run\n" +
                            kFirstShown +
                            "  back is possible\n\n> history\n  r.a\n  (no step)\n> r.a\n"
                            "\n> back\n\n> quit\n");
  EXPECT_EQ(walked.err,
            "orlf process: line 2: 'next' is no command, and no step is current; help tells the "
            "commands\n"
            "orlf process: line 3: no step is current; run begins anew\n"
            "orlf process: line 4: the process had ended before: there is no way back\n"
            "orlf process: line 7: the process had ended before: there is no way back\n");
  EXPECT_EQ(walked.exitCode, 1);
}

TEST(ProcessWalk, JumpsAndForgets) {
  const Walked walked = walk("jump g.c\njump g.x\nclear\nback\nforward\n");
  EXPECT_EQ(walked.out, kFirstShown +
                            "\n> jump g.c\nr.g.c\n  no transitions\n  back is possible\n\n> jump "
                            "g.x\n\n> clear\n> r.g.c\n\n> back\n\n> forward\n");
  EXPECT_EQ(walked.err,
            "orlf process: line 2: there is no step 'g.x'\n"
            "orlf process: line 4: there is no step to go back to\n"
            "orlf process: line 5: there is no step to go forward to\n");
}

TEST(ProcessWalk, RefusesWhatItDoesNotKnow) {
  const Walked walked = walk("fly\n0\n4\nback 2\njump\nrun\ngo\n99999999999999999999999\n1x\n");
  EXPECT_EQ(walked.err,
            "orlf process: line 1: 'fly' is no command and no transition of the step; help tells "
            "the commands\n"
            "orlf process: line 2: '0' is no command and no transition of the step; help tells the "
            "commands\n"
            "orlf process: line 3: '4' is no command and no transition of the step; help tells the "
            "commands\n"
            "orlf process: line 4: 'back 2' is no command and no transition of the step; help "
            "tells the commands\n"
            "orlf process: line 5: jump takes a PATH\n"
            "orlf process: line 6: the process is running; where shows its step\n"
            "orlf process: line 7: go takes a NAME\n"
            "orlf process: line 8: '99999999999999999999999' is no command and no transition of "
            "the step; help tells the commands\n"
            "orlf process: line 9: '1x' is no command and no transition of the step; help tells "
            "the commands\n");
  EXPECT_EQ(walked.exitCode, 1);
}

TEST(ProcessWalk, AMoveToNoStepIsRefusedAndLeavesNone) {
  const Walked walked = walk("bad\nrun\n");
  EXPECT_EQ(walked.err,
            "orlf process: line 1: 'bad' leads to a step that does not exist: no step is current "
            "now; run begins anew\n");
  EXPECT_EQ(walked.out, kFirstShown + "\n> bad\n\n> run\n" + kFirstShown + "  back is possible\n");
  EXPECT_EQ(walked.exitCode, 1);
}

TEST(ProcessWalk, AnswersOnATerminalWithAPromptAndNoFault) {
  const Walked walked = walk("fly\nquit\nnext\n", true);
  EXPECT_EQ(walked.out, kFirstShown +
                            "> 'fly' is no command and no transition of the step; help tells "
                            "the commands\n> ");
  EXPECT_EQ(walked.err, "");
  EXPECT_EQ(walked.exitCode, 0);
  EXPECT_EQ(walk("", true).out, kFirstShown + "> \n") << "the end of the input ends the line";
}

TEST(ProcessWalk, WithoutAnInitialStepSaysSo) {
  const Walked walked =
      walk("forward\n", false, "<process rootstep='r'><step id='r' firststep='x'/></process>");
  EXPECT_EQ(walked.err,
            "orlf process: the process has no initial step; orlf process check tells why\n"
            "orlf process: line 1: there is no step to go forward to\n");
  EXPECT_EQ(walked.exitCode, 1);
}

TEST(ProcessWalk, HelpNamesEveryCommand) {
  const std::string help = walk("help").out.substr(kFirstShown.size());
  for (const char* name : {"NAME or number", "go NAME", "back", "forward", "jump PATH", "where",
                           "history", "clear", "run", "help", "quit"})
    EXPECT_NE(help.find("\n  " + std::string(name) + " "), std::string::npos) << name;
}

TEST(ProcessWalk, LongLinesAreCutAndRefused) {
  const std::string most(4096, 'x');
  std::istringstream in(most + "\n" + most + "y\nnext");
  auto line = readCommandLine(in);
  EXPECT_EQ(line->text, most);
  EXPECT_FALSE(line->isTooLong);
  line = readCommandLine(in);
  EXPECT_EQ(line->text, most) << "no more is kept";
  EXPECT_TRUE(line->isTooLong);
  EXPECT_EQ(readCommandLine(in)->text, "next");
  EXPECT_FALSE(readCommandLine(in));
  const Walked walked = walk(most + "yy\nwhere\n");
  EXPECT_EQ(walked.err, "orlf process: line 1: a line of more than 4096 bytes is no command\n");
  EXPECT_EQ(walked.out, kFirstShown + "\n> where\n" + kFirstShown);
}

TEST(ProcessWalk, ControlCharactersNeverReachTheTerminal) {
  const Walked walked = walk(std::string("\x1B[2J\0x\n", 7));
  EXPECT_EQ((walked.out + walked.err).find('\x1B'), std::string::npos);
  EXPECT_EQ((walked.out + walked.err).find('\0'), std::string::npos);
}

}  // namespace
