#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>

namespace ORLFoundation {

using namespace internal::base;

bool NSHTTPFieldNameOrder::operator()(std::string_view left,
                                      std::string_view right) const noexcept {
  return std::lexicographical_compare(
      left.begin(), left.end(), right.begin(), right.end(),
      [](char one, char other) { return lowerASCII(one) < lowerASCII(other); });
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
