

#include <ORLFoundation/platform/log/ORLFFatalError.h>

#include <cstdio>
#include <cstdlib>

namespace ORLFoundation {

void ORLFFatalError(std::string_view message, std::string_view source, int line) noexcept {
  std::fprintf(stderr, "Fatal error: %.*s: file %.*s, line %d\n", static_cast<int>(message.size()),
               message.data(), static_cast<int>(source.size()), source.data(), line);
  std::abort();
}

}  // namespace ORLFoundation
