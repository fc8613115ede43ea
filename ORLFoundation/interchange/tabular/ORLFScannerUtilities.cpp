#include <ORLFoundation/interchange/tabular/ORLFScannerUtilities.h>

#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>

#include <string_view>

namespace ORLFoundation {
namespace {

using internal::base::hexDigitValue;

std::string_view textAhead(const NSScanner& scanner) {
  return scanner.string().substr(scanner.placeInBytes());
}

}  // namespace

ORLFTabularRows csvRows(NSScanner& scanner) {
  std::string_view line;
  scanner.scanUpToCharactersFromSet(*NSCharacterSet::newlineCharacterSet(), &line);
  ORLFTabularRows rows(scanner.string(), orlfTabularSeparator(line));
  scanner.setCharactersToBeSkipped(nullptr);
  scanner.setPlaceInBytes(scanner.string().size());
  return rows;
}

bool orlfScanHexDigits(NSScanner& scanner, std::int32_t count, std::uint32_t* intoInt) {
  const std::string_view ahead = textAhead(scanner);
  std::uint32_t value = 0;
  std::size_t taken = 0;
  for (; static_cast<std::int64_t>(taken) < count; ++taken) {
    const int digit = taken < ahead.size() ? hexDigitValue(ahead[taken]) : -1;
    if (digit < 0) return false;
    value = value << 4 | static_cast<std::uint32_t>(digit);
  }
  scanner.setPlaceInBytes(scanner.placeInBytes() + taken);
  if (intoInt != nullptr) *intoInt = value;
  return true;
}

}  // namespace ORLFoundation
