/// Runs the tool in the test's own process.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "tool.h"

namespace orlftest {

struct ToolRun {
  int exitCode = 0;
  std::string out, err;
};

inline ToolRun runTool(const std::vector<std::string>& arguments) {
  std::ostringstream out, err;
  ToolRun run;
  run.exitCode = orlftool::runTool(arguments, out, err);
  run.out = out.str();
  run.err = err.str();
  return run;
}

}  // namespace orlftest
