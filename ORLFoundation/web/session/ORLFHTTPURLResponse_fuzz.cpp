// Dates of answers, of any bytes: what is read is written and read again the same.
#include <ORLFoundation/web/session/ORLFHTTPURLResponse.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace ORLFoundation;

std::optional<NSDate> dateOf(const std::string& text) {
  return orlfLastModifiedDate(
      NSHTTPURLResponse(std::nullopt, 200, std::nullopt, {{"Last-Modified", text}}));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto date = dateOf(text);
  if (!date) return 0;
  // A date is a moment of whole seconds, and the same however often it is read.
  const double seconds = date->timeIntervalSinceReferenceDate();
  if (!(seconds == static_cast<double>(static_cast<std::int64_t>(seconds)))) std::abort();
  if (dateOf(text) != date) std::abort();
  return 0;
}
