/// The two ways in which a command ends badly. Commands throw, `runTool` prints the one line and
/// turns it into the exit code.
#pragma once

#include <stdexcept>

namespace orlftool {

enum ExitCode : int { kExitSuccess = 0, kExitFailedJob = 1, kExitWrongUsage = 2 };

/// The job was understood and could not be done: a file that does not read, a sum that raises.
struct JobFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The command line asks for something that does not exist: an unknown frequency, interval 0.
struct UsageFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace orlftool
