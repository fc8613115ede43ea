#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>

#include <ORLFoundation/interchange/tabular/ORLFScannerUtilities.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace ORLFoundation;

// A text and the same text in small pieces give the same rows; hexadecimal digits never run on.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t pieces = data[0] % 16 + 1U;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  NSScanner scanner{std::string(text)};
  const ORLFTabularRows rows = csvRows(scanner);

  std::size_t again = 0;
  std::string_view rest = text;
  const auto source = [&rest, pieces](std::span<char> buffer) {
    const std::size_t count = std::min({pieces, buffer.size(), rest.size()});
    std::copy_n(rest.begin(), count, buffer.begin());
    rest.remove_prefix(count);
    return count;
  };
  const auto compare = [&again, &rows](const ORLFTabularRow& row, bool&) {
    if (row.fields.empty() || row.lineNumber == 0) std::abort();
    if (again == rows.size() || !std::ranges::equal(row.fields, rows[again++])) std::abort();
  };
  if (!orlfEnumerateTabularRowsOfSource(source, std::nullopt, compare) || again != rows.size())
    std::abort();

  NSScanner digits{std::string(text)};
  std::uint32_t value = 0;
  const bool ok = orlfScanHexDigits(digits, data[0], &value);
  if (digits.placeInBytes() != (ok ? data[0] : 0U)) std::abort();
  return 0;
}
