/// A double with a fixed count of digits after the point: "%.6f", whatever the locale. It stands on
/// the stack and allocates nothing.
///
///     const FixedText<6> text(0.1);
///     text.view();  // "0.100000"
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <string_view>

namespace ORLFoundation::internal::base {

template <int Places>
class FixedText {
 public:
  explicit FixedText(double value) noexcept
      : size_(static_cast<std::size_t>(std::to_chars(text_.data(), text_.data() + text_.size(),
                                                     value, std::chars_format::fixed, Places)
                                           .ptr -
                                       text_.data())) {}

  [[nodiscard]] std::string_view view() const noexcept { return {text_.data(), size_}; }

 private:
  static_assert(Places > 0);
  // A sign, the digits of the largest double, a point and the places.
  static constexpr std::size_t kLongest =
      1 + (std::numeric_limits<double>::max_exponent10 + 1) + 1 + static_cast<std::size_t>(Places);

  std::array<char, kLongest> text_;
  std::size_t size_;
};

}  // namespace ORLFoundation::internal::base
