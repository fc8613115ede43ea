#include "interchange/date_reading.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "io/text_lines.h"
#include "session.h"

using namespace orlftool;

/// Lines of dates and other texts: their order is told or asked for, and what is then read is what
/// one of the orders reads.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto calendar = makeCalendar("UTC", "en_US");
  const bool allOrders = size != 0 && data[0] % 2 != 0;
  const std::vector<std::string> lines =
      linesOfText(std::string_view(reinterpret_cast<const char*>(data), size));
  DateReading dates("auto", allOrders, calendar, "en_US");
  std::uint64_t line = 0;
  for (const std::string& text : lines) dates.add(text, ++line);
  if (!dates.settle().fault.empty()) return 0;

  constexpr std::array kOrders{"dmy", "mdy", "ymd", "ydm", "myd", "dym"};
  for (const std::string& text : lines) {
    const auto date = dates.read(text);
    const auto reads = [&](const char* order) {
      return DateReading(order, false, calendar, "en_US").read(text) == date;
    };
    if (date && std::none_of(kOrders.begin(), kOrders.end(), reads)) std::abort();
    for (const char* pattern : {"yyyyMMdd", "d MMM y"})
      static_cast<void>(DateReading(pattern, false, calendar, "en_US").read(text));
  }
  return 0;
}
