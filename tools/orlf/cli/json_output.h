/// JSON on the output of a command.
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>

namespace orlftool {

/// Members stay in the order in which they are put in.
using Json = nlohmann::ordered_json;

/// Prints a value over several lines; bytes that are no UTF-8 come out as U+FFFD.
void printJson(std::ostream& out, const Json& value);

}  // namespace orlftool
