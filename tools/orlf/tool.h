/// The command line of `orlf`.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace orlftool {

/// Runs the tool with its arguments (without the program's name) and answers its exit code: 0 for
/// success, 1 for a job that failed, 2 for wrong usage. A failure prints one line on `err`. What
/// the library logs goes to `err` too, each line once.
int runTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace orlftool
