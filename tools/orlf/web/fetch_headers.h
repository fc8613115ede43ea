/// Header fields as they are given to a command: as a text, in a file, or typed at the terminal.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orlftool {

struct HeaderField {
  std::string name, value;
};

/// Reads "Name: value"; of "@FILE" each line that is not empty; for "-" a line from the terminal,
/// which does not show it. Throws UsageFailure for what is no field, and JobFailure for a file that
/// does not read; neither shows a value. `option` is named in both.
[[nodiscard]] std::vector<HeaderField> readHeaders(const std::string& option,
                                                   const std::vector<std::string>& texts);

/// What of fields must not stand in a log: their values, the words of each ("Bearer X"), the values
/// of its parts ("a=X; b=Y"), and the name and password that are in "Basic" credentials.
[[nodiscard]] std::vector<std::string> secretsOf(const std::vector<HeaderField>& fields);

}  // namespace orlftool
