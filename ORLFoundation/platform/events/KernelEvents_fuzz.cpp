// Reads whatever text as a table of mounts.
#include <ORLFoundation/platform/events/KernelEvents.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto mounts = ORLFoundation::internal::events::mountsOfTable(text);
  if (!mounts) return 0;
  // Each number stands at the beginning of a line.
  if (mounts->empty()) std::abort();
  const std::string lines = "\n" + text;
  for (const std::uint64_t number : *mounts) {
    std::size_t at = 0;
    const std::string end = std::to_string(number) + " ";
    while ((at = lines.find(end, at)) != std::string::npos &&
           lines.find_last_not_of('0', at - 1) != lines.rfind('\n', at - 1))
      ++at;
    if (at == std::string::npos) std::abort();
  }
  return 0;
}
