/// Parts of UTF-8 texts told in units of UTF-16.
#pragma once

#include <ORLFoundation/platform/value/NSRange.h>

#include <string_view>

namespace ORLFoundation::internal::text {

/// The units of UTF-16 that a text of UTF-8 has, counted up to one more than `most`.
[[nodiscard]] NSUInteger unitsOf(std::string_view text, NSUInteger most) noexcept;
/// The part of a text under a range of UTF-16 units, cut to the text and to at most `most` units. A
/// range that cuts a character of two units begins, or ends, before that character.
[[nodiscard]] std::string_view partOfText(std::string_view text, NSRange range,
                                          NSUInteger most) noexcept;

}  // namespace ORLFoundation::internal::text
