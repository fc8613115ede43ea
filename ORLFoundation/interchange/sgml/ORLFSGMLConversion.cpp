#include <ORLFoundation/interchange/sgml/ORLFSGMLConversion.h>

#include <ORLFoundation/interchange/sgml/ORLFEntityText.h>
#include <ORLFoundation/interchange/sgml/internal/ORLFTagScanner.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>

#include <cstddef>
#include <utility>

namespace ORLFoundation {
namespace {

using namespace internal::sgml;

/// One tag as the scan for orphans sees it.
struct Tag {
  std::string_view name;
  /// Whether the last tag of its name leaves it open; nil where no tag did.
  bool* isOpen = nullptr;
  /// What stands behind the name, or the name itself where the tag ends with it.
  std::string_view text;
  bool isEnd = false;
};

using OpenTags = ORLFTagTable<bool>;

/// The next tag, with white space passed over before each of its parts. Its name is empty where
/// none stands.
Tag nextTag(ORLFTagScanner& scanner, OpenTags& tags) {
  scanner.scanUpTo('<');
  scanner.scan('<');
  scanner.skipBlanks();
  Tag tag;
  tag.isEnd = scanner.scan('/');
  scanner.skipBlanks();
  tag.isOpen = tags.scanName(scanner, tag.name);
  if (tag.name.empty()) return tag;
  scanner.skipBlanks();
  tag.text = scanner.scan('>') ? tag.name : scanner.scanUpTo('>');
  return tag;
}

/// The conversion's output and the orphan that waits for its end tag.
class Converter {
 public:
  Converter(std::string_view text, const ORLFTagNames& orphans) : scanner_(text) {
    for (const std::string& name : orphans)
      if (!name.empty()) endTags_.add(name, "</" + name + ">");
    result_.reserve(2 * text.size());
  }

  std::string converted() {
    for (bool isFirst = true; !scanner_.isAtEnd(); isFirst = false) {
      appendText(isFirst);
      if (endTag_ != nullptr) endOrphan();
      appendTag();
    }
    return std::move(result_);
  }

 private:
  void appendText(bool isFirst) {
    std::string_view text = scanner_.scanUpTo('<');
    if (!isFirst) text = withoutControlsAtEnd(text);
    // No entity begins in plain text, so that what stands behind it is unescaped by itself.
    const std::size_t plain = isFirst ? text.size() : lengthOfPlainText(text);
    result_ += text.substr(0, plain);
    if (plain == text.size()) return;
    const std::string_view rest = text.substr(plain);
    if (rest.find('&') == rest.npos) return appendEscaped(result_, rest);
    unescaped_ = rest;
    unescape(unescaped_);
    appendEscaped(result_, unescaped_);
  }

  void endOrphan() {
    scanner_.scanEndTag(*endTag_);
    const std::size_t end = endWithoutLineBreaks(result_);
    if (end == result_.size())
      result_ += *endTag_;
    else
      result_.insert(end, *endTag_);
  }

  void appendTag() {
    endTag_ = nullptr;
    const std::size_t start = scanner_.place();
    if (!scanner_.scan('<')) return;
    std::string_view name;
    if (!scanner_.scan('/')) endTag_ = endTags_.scanName(scanner_, name);
    scanner_.scanUpTo('>');
    const bool isClosed = scanner_.scan('>');
    result_ += scanner_.passedSince(start);
    if (!isClosed) result_ += '>';
  }

  ORLFTagScanner scanner_;
  ORLFTagTable<std::string> endTags_;  // of orphans
  std::string result_;
  std::string unescaped_;  // space that is kept
  const std::string* endTag_ = nullptr;
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
  OpenTags tags;
  ORLFTagScanner scanner(string);
  for (scanner.skipBlanks(); !scanner.isAtEnd(); scanner.skipBlanks()) {
    const Tag tag = nextTag(scanner, tags);
    if (tag.name.empty()) continue;
    const bool leavesOpen = !tag.isEnd && !tag.text.ends_with('/');
    if (tag.isOpen != nullptr)
      *tag.isOpen = leavesOpen;
    else if (leavesOpen && beginsName(tag.name))
      tags.add(tag.name, true);
  }
  ORLFTagNames orphans;
  tags.forEach([&orphans](std::string_view name, bool isOrphan) {
    if (isOrphan) orphans.emplace(name);
  });
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
