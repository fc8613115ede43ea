/// A date's text taken apart at its first two separators.
#pragma once

#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <array>
#include <optional>
#include <string_view>

namespace ORLFoundation::internal::inference {

struct DateParts {
  std::array<std::string_view, 3> texts;
  char32_t secondSeparator = 0;

  /// Whether each part holds a digit of any script.
  [[nodiscard]] bool allHoldDigits() const noexcept;
};

/// Separators around the second and the third part are left out, white space around the whole and
/// behind the first separator too. nil for a text with less than two separators. The parts are
/// views of the text.
[[nodiscard]] std::optional<DateParts> splitDate(std::string_view text,
                                                 const NSCharacterSet& separators) noexcept;

}  // namespace ORLFoundation::internal::inference
