// Bodies of messages of the kernel, of any bytes.
#include <ORLFoundation/platform/reachability/RouteFlags.h>

#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ORLFoundation::internal::reachability;
  const std::string_view body(reinterpret_cast<const char*>(data), size);
  const auto link = linkFlagsInMessage(body);
  for (const Route& route : routesInMessage(body))
    static_cast<void>(flagsOfRoute(route, link.value_or(0)));
  return 0;
}
