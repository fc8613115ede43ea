
#include <ORLFoundation/support/diagnostics/ORLFDebugging.h>

#include <ORLFoundation/support/diagnostics/ORLFProcessDoor.h>

#include <charconv>
#include <cstdint>
#include <string_view>

namespace ORLFoundation {
namespace {

/// The text behind the field's name, up to the end of its line; "" for an absent field.
std::string_view fieldOf(std::string_view status, std::string_view name) {
  while (!status.empty()) {
    const std::string_view line = status.substr(0, status.find('\n'));
    if (line.starts_with(name)) return line.substr(name.size());
    status.remove_prefix(line.size() < status.size() ? line.size() + 1 : line.size());
  }
  return {};
}

}  // namespace

bool IsDebugging() {
  const auto status = ORLFCurrentProcessDoor()->status();
  std::string_view tracer = fieldOf(status ? *status : std::string_view(), "TracerPid:");
  while (tracer.starts_with('\t') || tracer.starts_with(' ')) tracer.remove_prefix(1);
  std::uint64_t process = 0;
  const char* end = tracer.data() + tracer.size();
  const auto read = std::from_chars(tracer.data(), end, process);
  return read.ec == std::errc() && read.ptr == end && process != 0;
}

void ORLFDebugger() noexcept {}

}  // namespace ORLFoundation
