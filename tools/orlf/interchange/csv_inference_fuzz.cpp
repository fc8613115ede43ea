#include "interchange/csv_inference.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "session.h"

/// Whatever the bytes, six questions are answered or asked, each with a reason.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto calendar = orlftool::makeCalendar("UTC", "en_US");
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto findings = orlftool::inferTable(bytes, calendar);
  if (findings.size() != 6) std::abort();
  for (const orlftool::Finding& finding : findings)
    if (finding.reason.empty() || finding.line > size + 1) std::abort();
  return 0;
}
