// Reads lines as a column of dates: what is read never depends on how often, and no inference
// changes what the column says.

#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace ORLFoundation;

void require(bool condition) {
  if (!condition) std::abort();
}

void readLine(ORLFDateFormatInferenceEngine& engine, std::string_view line) {
  const NSInteger before = engine.bits();
  const auto inferred = engine.dateInferredFromString(line);
  require(engine.bits() == before);
  const bool isDate = engine.processDateString(line);
  require(isDate == engine.parseDate(line, nullptr, nullptr, nullptr));
  require((engine.bits() & ~before) == 0);
  require(isDate ? engine.bits() >= 0 && engine.bits() <= 511 : engine.bits() == before);
  const auto formats = engine.possibleDateFormats();
  if (isDate && !formats.empty()) require(engine.dateFromString(line, formats.front()) == inferred);
  if (!isDate) require(!inferred);
}

}  // namespace

// The first byte holds bits to begin with.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  ORLFDateFormatInferenceEngine engine;
  engine.setCurrentYear(2026);
  engine.setBits(511 - (data[0] & 7));
  text.remove_prefix(1);
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    readLine(engine, line);
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return 0;
}
