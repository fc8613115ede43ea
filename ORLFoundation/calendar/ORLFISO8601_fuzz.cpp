// Reads any text as a date; what is read and can be written reads back as the same date.

#include <ORLFoundation/calendar/ORLFISO8601.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ORLFoundation;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::optional<NSDate> date = orlfDateFromISO8601String(text);
  if (!date) return 0;
  // At the last readable year an offset may lead into the next.
  constexpr double kReadableSeconds = 4.4e12;
  if (std::abs(date->timeIntervalSince1970()) > kReadableSeconds) return 0;
  if (orlfDateFromISO8601String(orlfISO8601String(*date)) != date) std::abort();
  return 0;
}
