#include <ORLFoundation/datetext/entry/internal/ShortFormat.h>

#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSString.h>

#include <algorithm>
#include <cstddef>

namespace ORLFoundation::internal::entry {
namespace {

constexpr std::size_t kShortest = 5;
constexpr std::size_t kLongest = 10;

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// Characters beyond ASCII take several bytes, and a format that holds one beside the numbers is
// not understood: the length in bytes decides as that in characters does.
std::optional<bool> monthFirst(std::string_view format) {
  if (format.size() < kShortest || format.size() > kLongest) return std::nullopt;
  if ((format.front() != 'd' && format.front() != 'M') || format.back() != 'y') return std::nullopt;
  if (contains(format, "d/M") && contains(format, "M/y")) return false;
  if (contains(format, "M/d") && contains(format, "d/y")) return true;
  return std::nullopt;
}

// The width that a run of a letter is to have.
std::size_t wideRun(char letter, std::size_t width, const WideParts& parts) {
  if (letter == 'y' && parts.year && width <= 3) return 4;
  if (letter == 'M' && parts.month && width == 1) return 2;
  if (letter == 'd' && parts.day && width == 1) return 2;
  return width;
}

}  // namespace

std::optional<bool> monthFirstOfShortFormat(std::string_view format) {
  std::string slashed(format);
  for (char& c : slashed)
    if (c == '.' || c == '-') c = '/';
  const std::optional<bool> first = monthFirst(slashed);
  if (!first) NSLog(stringWithFormat("Unrecognized date format string %@", format));
  return first;
}

std::string widenedFormat(std::string_view format, WideParts parts) {
  std::string wide;
  bool quoted = false;
  for (std::size_t at = 0; at < format.size();) {
    const char letter = format[at];
    const std::size_t end = std::min(format.find_first_not_of(letter, at), format.size());
    std::size_t width = end - at;
    if (letter == '\'') quoted = quoted != (width % 2 == 1);
    if (!quoted) width = wideRun(letter, width, parts);
    wide.append(width, letter == '/' && parts.dashes ? '-' : letter);
    at = end;
  }
  return wide;
}

}  // namespace ORLFoundation::internal::entry
