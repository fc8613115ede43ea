
#include <ORLFoundation/platform/plist/internal/XMLPropertyListWriter.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/plist/internal/UnicodeText.h>
#include <ORLFoundation/platform/plist/internal/XMLPropertyListScalars.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::plist {
namespace {

using Index = PropertyListTable::Index;

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kTail = "</plist>\n";
// A list may be referred to more often than it is written in the table, but not without end.
constexpr std::uint64_t kMostValues = std::uint64_t{1} << 24;
// Base64 fills a line of 76 columns, of which each level of nesting up to eight takes eight.
constexpr std::size_t kLineLength = 76;
constexpr std::size_t kDeepestIndent = 8;

// In UTF-16, surrogates come before the last characters of the basic plane, in UTF-8 after them.
bool comesBeforeInUTF16(std::string_view left, std::string_view right) {
  if (base::isASCII(left) && base::isASCII(right)) return left < right;
  std::string leftUnits;
  std::string rightUnits;
  appendAsUTF16BigEndian(leftUnits, left);
  appendAsUTF16BigEndian(rightUnits, right);
  return leftUnits < rightUnits;
}

class XMLWriter {
 public:
  explicit XMLWriter(const PropertyListTable& table) : table_(table) {}

  base::WipedText write() {
    if (table_.expandedCount() > std::max<std::uint64_t>(kMostValues, table_.nodeCount()))
      throw PropertyListFault("The list refers to its own parts too often.");
    text_ += kHead;
    writeNode(table_.top(), 0);
    text_ += kTail;
    return std::move(text_);
  }

 private:
  void writeNode(Index node, std::size_t level) {
    switch (table_.kind(node)) {
      case PropertyListKind::Boolean:
        return line(level, table_.boolean(node) ? "<true/>" : "<false/>");
      case PropertyListKind::Integer:
        return element(level, "integer", std::to_string(table_.integer(node)));
      case PropertyListKind::UnsignedInteger:
        return element(level, "integer", std::to_string(table_.unsignedInteger(node)));
      case PropertyListKind::Real:
        return element(level, "real", realToXML(table_.real(node)));
      case PropertyListKind::Date:
        return element(level, "date", dateToXML(table_.real(node)));
      case PropertyListKind::UID:
        return writeUID(node, level);
      case PropertyListKind::String:
        return writeText(level, "string", table_.text(node));
      case PropertyListKind::Data:
        return writeData(node, level);
      case PropertyListKind::Array:
        return writeArray(node, level);
      case PropertyListKind::Dictionary:
        return writeDictionary(node, level);
    }
  }

  void writeUID(Index node, std::size_t level) {
    line(level, "<dict>");
    element(level + 1, "key", "CF$UID");
    element(level + 1, "integer", std::to_string(table_.uid(node)));
    line(level, "</dict>");
  }

  void writeText(std::size_t level, std::string_view name, std::string_view text) {
    if (!fitsXML(text)) throw PropertyListFault("XML cannot hold one of the characters.");
    base::WipedText escaped;
    for (const char character : text) {
      switch (character) {
        case '&':
          escaped += "&amp;";
          break;
        case '<':
          escaped += "&lt;";
          break;
        case '>':
          escaped += "&gt;";
          break;
        case '\r':
          escaped += "&#13;";
          break;  // else it is read as a line feed
        default:
          escaped += character;
      }
    }
    element(level, name, escaped);
  }

  void writeData(Index node, std::size_t level) {
    const std::size_t depth = std::min(level, kDeepestIndent);
    line(level, "<data>");
    text_ += dataToXML(table_.text(node), std::string(depth, '\t'), kLineLength - 8 * depth);
    line(level, "</data>");
  }

  void writeArray(Index node, std::size_t level) {
    if (table_.members(node).empty()) return line(level, "<array/>");
    line(level, "<array>");
    for (const Index member : table_.members(node)) writeNode(member, level + 1);
    line(level, "</array>");
  }

  void writeDictionary(Index node, std::size_t level) {
    if (table_.keys(node).empty()) return line(level, "<dict/>");
    std::vector<std::pair<std::string_view, Index>> entries;
    for (std::size_t entry = 0; entry < table_.keys(node).size(); ++entry)
      entries.emplace_back(table_.text(table_.keys(node)[entry]), table_.values(node)[entry]);
    std::sort(entries.begin(), entries.end(), [](const auto& left, const auto& right) {
      return comesBeforeInUTF16(left.first, right.first);
    });
    line(level, "<dict>");
    for (const auto& [key, value] : entries) {
      writeText(level + 1, "key", key);
      writeNode(value, level + 1);
    }
    line(level, "</dict>");
  }

  void element(std::size_t level, std::string_view name, std::string_view content) {
    text_.append(level, '\t');
    text_.append("<").append(name).append(">").append(content);
    text_.append("</").append(name).append(">\n");
  }
  void line(std::size_t level, std::string_view content) {
    text_.append(level, '\t').append(content).append("\n");
  }

  const PropertyListTable& table_;
  base::WipedText text_;
};

}  // namespace

base::WipedText writeXMLPropertyList(const PropertyListTable& table) {
  return XMLWriter(table).write();
}

}  // namespace ORLFoundation::internal::plist
