/// An answer on how a table is to be read, or why it has to be asked for.
#pragma once

#include <cstdint>
#include <string>

namespace orlftool {

struct Finding {
  std::string question;  // "separator", "header", "date order", "decimal mark", "sign", "encoding"
  std::string answer;    // empty where it has to be asked
  std::string reason;    // what was seen, or what was not
  std::uint64_t line = 0;  // of the row that decided, 0 for none
};

}  // namespace orlftool
