/// What is wrong in a process definition.
#pragma once

#include <string>

namespace orlftool {

struct Session;

/// Prints file:line:column and what is wrong there, a line for each fault, or that nothing is
/// wrong. Ends with 1 for faults. Throws JobFailure for a file that cannot be read.
void checkProcessFile(Session& session, const std::string& path);

}  // namespace orlftool
