#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <cstddef>

namespace ORLFoundation {

using namespace internal::base;

bool NSHTTPFieldNameOrder::operator()(std::string_view left,
                                      std::string_view right) const noexcept {
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t index = 0; index < common; ++index) {
    if (left[index] == right[index]) continue;
    const char one = lowerASCII(left[index]), other = lowerASCII(right[index]);
    if (one != other) return one < other;
  }
  return left.size() < right.size();
}

bool NSIsHTTPToken(std::string_view text) noexcept {
  constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";
  return !text.empty() && std::all_of(text.begin(), text.end(), [&](char c) {
    return isLetterOrDigit(c) || kMarks.find(c) != std::string_view::npos;
  });
}

bool NSIsHTTPFieldValue(std::string_view text) noexcept {
  return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

}  // namespace ORLFoundation
