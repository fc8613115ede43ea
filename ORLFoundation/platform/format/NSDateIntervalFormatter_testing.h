/// Helpers of tests of spans.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace orlftest {

/// The text with plain blanks for the thin and narrow ones that ICU puts around dashes and before
/// AM and PM, so that tables of tests can be read.
[[nodiscard]] inline std::string withPlainBlanks(std::string text) {
  constexpr std::array<std::string_view, 2> kBlanks{"\u2009", "\u202F"};
  for (const std::string_view blank : kBlanks)
    for (std::size_t at = text.find(blank); at != text.npos; at = text.find(blank, at))
      text.replace(at, blank.size(), " ");
  return text;
}

}  // namespace orlftest
