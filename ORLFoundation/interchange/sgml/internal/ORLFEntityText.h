/// Escaping under the standard table, appended to a text.
#pragma once

#include <string>
#include <string_view>

namespace ORLFoundation::internal::sgml {

/// Appends a text as `orlfStringByEscapingStandardXMLEntities` gives it.
void appendEscaped(std::string& result, std::string_view text);
/// Appends a text without the characters that escaping removes.
void appendWithoutControls(std::string& result, std::string_view text);

}  // namespace ORLFoundation::internal::sgml
