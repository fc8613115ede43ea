
#include <ORLFoundation/support/diagnostics/ORLFDebugging.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/support/diagnostics/ORLFProcessDoor.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

struct StatusCase {
  std::string_view name;
  std::optional<std::string> status;
  bool isTraced;
};
const StatusCase kStatuses[] = {
    {"NotTraced", "Name:\tprogram\nTracerPid:\t0\nUid:\t0\n", false},
    {"Traced", "Name:\tprogram\nTracerPid:\t4711\nUid:\t0\n", true},
    {"FirstLine", "TracerPid:\t1\n", true},
    {"LastLineWithoutEnd", "Name:\tprogram\nTracerPid:\t1", true},
    {"Spaces", "TracerPid:  12\n", true},
    {"NoStatus", std::nullopt, false},
    {"EmptyStatus", "", false},
    {"NoField", "Name:\tprogram\nUid:\t5\n", false},
    {"EmptyField", "TracerPid:\nUid:\t5\n", false},
    {"NoNumber", "TracerPid:\tnone\n", false},
    {"MoreThanANumber", "TracerPid:\t5 6\n", false},
    {"Negative", "TracerPid:\t-1\n", false},
    {"TooLarge", "TracerPid:\t99999999999999999999\n", false},
    {"NameThatLooksLikeIt", "Name:\tTracerPid:\t5\nTracerPid:\t0\n", false},
};

TEST(IsDebugging, ReadsTheTracerFieldOfTheStatus) {
  for (const StatusCase& row : kStatuses) {
    const Replaced door(ORLFSetProcessDoor, std::make_shared<ORLFRecordingProcessDoor>(row.status));
    EXPECT_EQ(IsDebugging(), row.isTraced) << row.name;
  }
}

TEST(IsDebugging, IsFalseWhereTheStatusCannotBeRead) {
  for (const char* path : {"/nowhere/status", "/proc", "/dev/null"}) {
    const Replaced door(ORLFSetProcessDoor, std::make_shared<ORLFSystemProcessDoor>(path));
    EXPECT_FALSE(IsDebugging()) << path;
  }
}

/// Exits with whether it finds itself in the wrong about being traced. Where the system forbids to
/// be traced, or a debugger is there already, nothing may change.
[[noreturn]] void checkTracedProcess() {
  const bool before = IsDebugging();
  const bool isTraced = ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 || before;
  ::_exit(IsDebugging() == isTraced ? 0 : 1);
}

TEST(IsDebugging, SeesATracerComeInTheRunningProcess) {
  const pid_t child = ::fork();
  if (child == 0) checkTracedProcess();
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(ORLFDebugger, DoesNothing) {
  const auto door = std::make_shared<ORLFRecordingProcessDoor>("TracerPid:\t7\n");
  const Replaced installed(ORLFSetProcessDoor, door);
  const LogCapture log;
  ORLFDebugger();
  EXPECT_TRUE(door->calls().empty());
  EXPECT_TRUE(log.lines().empty());
}

TEST(ORLFSetProcessDoor, NullStandsForTheRunningProcess) {
  const auto recording = std::make_shared<ORLFRecordingProcessDoor>("");
  const Replaced installed(ORLFSetProcessDoor, recording);
  ASSERT_NE(installed.before(), nullptr);
  EXPECT_EQ(ORLFCurrentProcessDoor(), recording);
  EXPECT_EQ(ORLFSetProcessDoor(nullptr), recording);
  const auto status = ORLFCurrentProcessDoor()->status();
  ASSERT_TRUE(status);
  EXPECT_NE(status->find("\nTracerPid:"), std::string::npos);
}

}  // namespace
}  // namespace ORLFoundation
