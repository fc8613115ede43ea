/// Other programs that the tool starts, without a shell between.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct ChildRun {
  bool isFound = false;
  /// What the program ended with; 128 and the signal's number where one ended it.
  int exitCode = 0;
  /// What it wrote to its standard error.
  std::string errors;
};

/// Runs a program of PATH with its arguments, each word as it is, and the bytes as its standard
/// input, and waits for its end. What it prints is dropped. Throws JobFailure where the system
/// refuses.
[[nodiscard]] ChildRun runProgram(const std::vector<std::string>& words, std::string_view input);

}  // namespace orlftool
