/// JSON on the output of a command.
#pragma once

#include <iosfwd>
#include <nlohmann/json.hpp>

namespace orlftool {

/// Members stay in the order in which they are put in.
using Json = nlohmann::ordered_json;

/// Prints a value over several lines; bytes that are no UTF-8 come out as U+FFFD.
void printJson(std::ostream& out, const Json& value);

/// Prints an array as `printJson` does, but member by member: it may have any number of them.
class JsonArrayPrinter {
 public:
  explicit JsonArrayPrinter(std::ostream& out) : out_(out) {}
  void add(const Json& member);
  /// Once, behind the last member.
  void finish();

 private:
  std::ostream& out_;
  bool isEmpty_ = true;
};

}  // namespace orlftool
