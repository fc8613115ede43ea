#include <ORLFoundation/interchange/sgml/ORLFSGMLConversion.h>

#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>
#include <ORLFoundation/interchange/sgml/internal/ORLFEntityText.h>
#include <ORLFoundation/interchange/sgml/internal/ORLFTagScanner.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>

#include <cstddef>
#include <unordered_map>
#include <unordered_set>

namespace ORLFoundation {
namespace {

using namespace internal::sgml;

/// One tag as the scan for orphans sees it.
struct Tag {
  std::string_view name;
  /// What stands behind the name, or the name itself where the tag ends with it.
  std::string_view text;
  bool isEnd = false;
};

/// The next tag, with white space passed over before each of its parts. Its name is empty where
/// none stands.
Tag nextTag(ORLFTagScanner& scanner) {
  scanner.scanUpTo('<');
  scanner.scan('<');
  scanner.skipBlanks();
  Tag tag;
  tag.isEnd = scanner.scan('/');
  scanner.skipBlanks();
  tag.name = scanner.scanUpToEndOfName();
  if (tag.name.empty()) return tag;
  scanner.skipBlanks();
  tag.text = scanner.scan('>') ? tag.name : scanner.scanUpTo('>');
  return tag;
}

/// The conversion's output and the orphan that waits for its end tag.
class Converter {
 public:
  Converter(std::string_view text, const ORLFTagNames& orphans)
      : scanner_(text), orphans_(orphans.begin(), orphans.end()) {
    result_.reserve(2 * text.size());
  }

  std::string converted() {
    for (bool isFirst = true; !scanner_.isAtEnd(); isFirst = false) {
      appendText(isFirst);
      if (!open_.empty()) endOrphan();
      appendTag();
    }
    return std::move(result_);
  }

 private:
  void appendText(bool isFirst) {
    const std::string_view text = scanner_.scanUpTo('<');
    if (isFirst)
      result_ += text;
    else if (text.find('&') == text.npos)
      appendEscaped(result_, text);
    else
      appendEscaped(result_, orlfStringByUnescapingStandardXMLEntities(text));
  }

  void endOrphan() {
    scanner_.scanEndTag(open_);
    const std::size_t place = endWithoutLineBreaks(result_);
    lineBreaks_.assign(result_, place);
    result_.resize(place);
    result_.append("</").append(open_).append(">").append(lineBreaks_);
    open_ = {};
  }

  void appendTag() {
    open_ = {};
    if (!scanner_.scan('<')) return;
    result_ += '<';
    if (scanner_.scan('/')) {
      result_ += '/';
    } else {
      const std::string_view name = scanner_.scanUpToEndOfName();
      result_ += name;
      if (orphans_.contains(name)) open_ = name;
    }
    result_ += scanner_.scanUpTo('>');
    result_ += '>';
    scanner_.scan('>');
  }

  ORLFTagScanner scanner_;
  const std::unordered_set<std::string_view> orphans_;
  std::string result_;
  std::string lineBreaks_;  // those that an end tag goes before
  std::string_view open_;
};

std::optional<NSData> xmlDataOf(std::string_view text) {
  const std::size_t first = text.find('<');
  if (first == text.npos) return std::nullopt;
  const std::string xml = orlfXMLStringConvertedFromSGMLString(text.substr(first));
  return NSData(std::string_view(wellFormedString(xml)));
}

}  // namespace

const std::shared_ptr<NSCharacterSet>& orlfXMLStringConvertEndTagNameCharacterSet() {
  static const auto& set = *new std::shared_ptr<NSCharacterSet>(
      NSCharacterSet::whitespaceAndNewlineCharacterSet()->setByAddingCharactersInString(">"));
  return set;
}

ORLFTagNames orlfXMLStringConvertBuildOrphanedTagSet(std::string_view string) {
  // Whether the last tag of a name leaves it open.
  std::unordered_map<std::string_view, bool> isOpen;
  ORLFTagScanner scanner(string);
  for (scanner.skipBlanks(); !scanner.isAtEnd(); scanner.skipBlanks()) {
    const Tag tag = nextTag(scanner);
    if (tag.name.empty()) continue;
    if (tag.isEnd || tag.text.ends_with('/')) {
      const auto found = isOpen.find(tag.name);
      if (found != isOpen.end()) found->second = false;
    } else if (beginsName(tag.name)) {
      isOpen.insert_or_assign(tag.name, true);
    }
  }
  ORLFTagNames orphans;
  for (const auto& [name, isOrphan] : isOpen)
    if (isOrphan) orphans.emplace(name);
  return orphans;
}

std::string orlfXMLStringFromSGMLStringByFixingOrphanTags(std::string_view string,
                                                          const ORLFTagNames& tags) {
  return Converter(string, tags).converted();
}

std::string orlfXMLStringConvertedFromSGMLString(std::string_view string, NSErrorSlot) {
  return orlfXMLStringFromSGMLStringByFixingOrphanTags(
      string, orlfXMLStringConvertBuildOrphanedTagSet(string));
}

std::optional<NSData> orlfXMLDataWithSGMLString(std::optional<std::string_view> string,
                                                NSErrorSlot) {
  return string ? xmlDataOf(*string) : std::nullopt;
}

std::optional<NSData> orlfXMLDataConvertedFromSGMLEncoding(const NSData& data, NSUInteger encoding,
                                                           NSErrorSlot) {
  const std::optional<std::string> text = stringWithData(data, encoding);
  return text ? xmlDataOf(*text) : std::nullopt;
}

}  // namespace ORLFoundation
