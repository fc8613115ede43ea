/// Escaping under the standard table, appended to a text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::sgml {

/// Appends a text as `orlfStringByEscapingStandardXMLEntities` gives it.
void appendEscaped(std::string& result, std::string_view text);
/// How many bytes at the front of a text escaping leaves as they are, seen byte by byte: ASCII
/// without controls and without keys of the table.
[[nodiscard]] std::size_t lengthOfPlainText(std::string_view text) noexcept;
/// A text without the ASCII controls, line ends among them, that it ends with: escaping removes
/// them.
[[nodiscard]] std::string_view withoutControlsAtEnd(std::string_view text) noexcept;
/// Replaces the entities of the standard table as `orlfStringByUnescapingStandardXMLEntities` does.
void unescape(std::string& text);
/// Appends a text without the characters that escaping removes.
void appendWithoutControls(std::string& result, std::string_view text);

}  // namespace ORLFoundation::internal::sgml
