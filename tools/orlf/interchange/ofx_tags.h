/// The tags of XML: what is wrong with them, and each on a line of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// A tag, or the text between two. A CDATA section is text.
struct XmlPiece {
  enum class Kind : std::uint8_t { Start, End, Empty, Other, Text };  // Other: <?..>, <!..>
  Kind kind = Kind::Text;
  std::string_view text;  // as it stands
  std::string_view name;  // of an element
};

/// Takes a text apart. A < without a > is a tag to the end of the text.
class XmlPieces {
 public:
  explicit XmlPieces(std::string_view text) : rest_(text) {}

  /// Whether there was another piece; `piece` holds it then.
  bool next(XmlPiece& piece);

 private:
  std::string_view rest_;
};

/// What keeps the tags from being XML, a line for each kind of fault and name: elements that are
/// never closed, end tags that close nothing, names that none may have, more than one root. Then
/// the names of a vendor's own tags, which hold a point.
[[nodiscard]] std::vector<std::string> remarksOnTags(std::string_view xml);

/// Each element on a line of its own, two blanks deeper than the one that holds it, one with text
/// alone on the line of its tags. Below 64 levels the lines go no deeper.
[[nodiscard]] std::string indentedXml(std::string_view xml);

}  // namespace orlftool
