/// The fields of an HTTP header: names to texts. Names are equal whatever their case, and stand as
/// they were first given; they are met in the order of the alphabet.
///
///     NSHTTPHeaderFields fields{{"Accept", "text/csv"}};
///     fields.find("ACCEPT")->second;   // "text/csv"
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// ASCII letters alone are folded; other bytes count as they are.
struct NSHTTPFieldNameOrder {
  using is_transparent = void;
  [[nodiscard]] bool operator()(std::string_view left, std::string_view right) const noexcept;
};

using NSHTTPHeaderFields = std::map<std::string, std::string, NSHTTPFieldNameOrder>;

/// Whether the text may be a field's name or a method: letters, digits and the marks that HTTP
/// allows in them, at least one.
[[nodiscard]] bool NSIsHTTPToken(std::string_view text) noexcept;
/// Whether the text may be a field's value: no CR, LF or NUL, which would begin another line.
[[nodiscard]] bool NSIsHTTPFieldValue(std::string_view text) noexcept;

}  // namespace ORLFoundation
