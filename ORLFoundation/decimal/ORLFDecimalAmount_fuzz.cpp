// Any bytes as an amount: a clear answer, no crash, and a number that reads back from its text.

#include <ORLFoundation/decimal/ORLFDecimalAmount.h>

#include <ORLFoundation/platform/log/NSLog.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ORLFoundation;
  static const bool quiet = (NSSetLogSink([](std::string_view) {}), true);
  static_cast<void>(quiet);
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto amount = orlfDecimalNumberWithFormattedString(text);
  if (amount && NSDecimalNumber(amount->stringValue()) != *amount) std::abort();
  return 0;
}
