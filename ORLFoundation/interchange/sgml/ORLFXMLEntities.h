/// Characters that mean something in XML, and the entities that stand for them.
///
///     // "AT&amp;T &lt;&quot;x&quot;&gt;"
///     orlfStringByEscapingStandardXMLEntities("AT&T <\"x\">");
///
/// The standard table holds & (&amp;), < (&lt;), > (&gt;) and " (&quot;), in this order; the
/// apostrophe is not in it. Further entries, texts under texts, are added behind it in their own
/// order, and one under a key of the table takes that one's place. Texts are looked for byte by
/// byte; broken bytes become U+FFFD. Numeric references are not decoded.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSDictionary;

/// `orlfStringByEscapingEntities:`  First every control character goes, tabs and line breaks among
/// them, and every code point that no character is assigned to. Then & becomes its entity, then
/// each other key of the table in turn. Raises `NSInvalidArgumentException` for an entry that is no
/// text.
[[nodiscard]] std::string orlfStringByEscapingEntities(
    std::string_view string, const std::shared_ptr<NSDictionary>& entities);
/// `orlfStringByEscapingStandardXMLEntities`
[[nodiscard]] std::string orlfStringByEscapingStandardXMLEntities(std::string_view string);

/// `orlfStringByUnescapingEntities:`  Each entity of the table in turn becomes its key, and at the
/// end "&amp;" becomes & once more. What "&amp;lt;" becomes depends on the order of the table:
/// nothing may rely on it.
[[nodiscard]] std::string orlfStringByUnescapingEntities(
    std::string_view string, const std::shared_ptr<NSDictionary>& entities);
/// `orlfStringByUnescapingStandardXMLEntities`
[[nodiscard]] std::string orlfStringByUnescapingStandardXMLEntities(std::string_view string);

}  // namespace ORLFoundation
