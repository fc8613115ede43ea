/// Reading the texts of vector files: what cannot be read throws, which fails the row.
#pragma once

#include <charconv>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace orlftest::vectors {

[[noreturn]] inline void unreadable(const char* what, const std::string& text) {
  throw std::runtime_error(std::string("unreadable ") + what + ": " + text);
}

/// All of the digits as one number; `whole` is the text that a failure names.
template <typename Number>
Number parsed(const char* what, std::string_view digits, const std::string& whole) {
  Number value{};
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (digits.empty() || error != std::errc() || stop != digits.data() + digits.size())
    unreadable(what, whole);
  return value;
}

}  // namespace orlftest::vectors
