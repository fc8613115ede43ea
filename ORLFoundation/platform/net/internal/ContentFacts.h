/// What the header of an answer says of its body.
#pragma once

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::net {

/// Without the blanks around it.
[[nodiscard]] std::string_view trimmed(std::string_view text) noexcept;

/// A field's value, for as long as the fields stand; "" where there is none.
[[nodiscard]] std::string_view textOf(const NSHTTPHeaderFields& fields,
                                      std::string_view name) noexcept;
/// A field's value; nil where there is none.
[[nodiscard]] std::optional<std::string> fieldOf(const NSHTTPHeaderFields& fields,
                                                 std::string_view name);

/// "text/csv" of "Text/CSV; charset=utf-8", in lower case; nil for a text without a type.
[[nodiscard]] std::optional<std::string> mediaTypeIn(std::string_view contentType);
/// "utf-8" of the same, quotes taken off; nil where no charset is named.
[[nodiscard]] std::optional<std::string> charsetIn(std::string_view contentType);

[[nodiscard]] std::optional<std::string> mediaTypeOf(const NSHTTPHeaderFields& fields);
[[nodiscard]] std::optional<std::string> charsetOf(const NSHTTPHeaderFields& fields);
/// The body's length in bytes. -1 where it is not told, is no number, is told in several ways, or
/// the body is encoded.
[[nodiscard]] std::int64_t lengthOf(const NSHTTPHeaderFields& fields);

/// Whether no two readers could take the body to end in different places: its length is told in
/// digits alone, the same each time, or not at all. It does not count beside a Transfer-Encoding.
[[nodiscard]] bool isLengthClear(const NSHTTPHeaderFields& fields) noexcept;

}  // namespace ORLFoundation::internal::net
