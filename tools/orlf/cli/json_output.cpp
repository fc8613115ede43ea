#include "cli/json_output.h"

#include <ostream>

namespace orlftool {

void printJson(std::ostream& out, const Json& value) {
  out << value.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace orlftool
