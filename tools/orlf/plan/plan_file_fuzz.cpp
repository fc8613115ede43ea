#include "plan/plan_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "cli/failure.h"

/// Whatever the bytes, they are a plan or a failure of one line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const orlftool::PlanFile file = orlftool::parsePlanFile(text, "plan.json", {});
    if (file.segments.empty()) std::abort();
  } catch (const orlftool::JobFailure& failure) {
    if (std::string_view(failure.what()).find('\n') != std::string_view::npos) std::abort();
  }
  return 0;
}
