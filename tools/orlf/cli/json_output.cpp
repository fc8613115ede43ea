#include "cli/json_output.h"

#include <cstddef>
#include <ostream>
#include <string>

namespace orlftool {
namespace {

constexpr int kIndent = 2;

std::string linesOf(const Json& value) {
  return value.dump(kIndent, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

void printJson(std::ostream& out, const Json& value) { out << linesOf(value) << '\n'; }

void JsonArrayPrinter::add(const Json& member) {
  out_ << (isEmpty_ ? "[" : ",");
  isEmpty_ = false;
  // Texts hold no line ends of their own: those are escaped.
  std::string line = "\n" + linesOf(member);
  for (std::size_t at = line.find('\n'); at != line.npos; at = line.find('\n', at + 1))
    line.insert(at + 1, kIndent, ' ');
  out_ << line;
}

void JsonArrayPrinter::finish() { out_ << (isEmpty_ ? "[]\n" : "\n]\n"); }

}  // namespace orlftool
