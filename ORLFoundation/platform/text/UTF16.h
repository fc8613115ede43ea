/// Texts between the UTF-8 of every interface and the UTF-16 that ICU works on.
#pragma once

#include <unicode/unistr.h>

#include <string>
#include <string_view>

namespace ORLFoundation::internal::text {

/// Each broken sequence of bytes becomes U+FFFD. Raises `NSInvalidArgumentException` for a text of
/// half a gigabyte or more, which ICU's 32-bit lengths may not hold once its case is mapped.
[[nodiscard]] icu::UnicodeString utf16Of(std::string_view text);
/// A half of a surrogate pair becomes U+FFFD.
[[nodiscard]] std::string utf8Of(const icu::UnicodeString& text);

}  // namespace ORLFoundation::internal::text
