#include "plan/cash_flow_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "cli/failure.h"
#include "session.h"

/// Whatever the bytes, they are cash flows or a failure of one line that names the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto calendar = orlftool::makeCalendar("America/New_York", "en_US");
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const auto flows = orlftool::parseCashFlows(text, "flows.csv", *calendar);
    // Each flow takes a date of ten characters, a comma and a digit.
    if (flows.size() * 12 > size) std::abort();
  } catch (const orlftool::JobFailure& failure) {
    const std::string_view message = failure.what();
    if (!message.starts_with("flows.csv:") || message.find('\n') != std::string_view::npos)
      std::abort();
  }
  return 0;
}
