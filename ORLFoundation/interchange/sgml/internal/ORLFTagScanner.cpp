#include <ORLFoundation/interchange/sgml/internal/ORLFTagScanner.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <array>

namespace ORLFoundation::internal::sgml {
namespace {

using namespace internal::base;

constexpr bool isBlankOfASCII(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Whether > or white space may begin with a byte.
constexpr std::array<bool, 256> kMayEndName = [] {
  std::array<bool, 256> ends{};
  for (std::size_t byte = 0; byte < ends.size(); ++byte)
    ends[byte] = byte >= 0x80 || byte == '>' || isBlankOfASCII(static_cast<char>(byte));
  return ends;
}();

/// The length of the white space or line end at a place, 0 for anything else.
std::size_t lengthOfBlank(std::string_view text, std::size_t at) {
  if (isASCII(text[at])) return isBlankOfASCII(text[at]) ? 1 : 0;
  static const NSCharacterSet& blanks = *NSCharacterSet::whitespaceAndNewlineCharacterSet();
  const UTF8Character character = firstUTF8Character(text.substr(at));
  return blanks.longCharacterIsMember(character.codePoint) ? character.length : 0;
}

}  // namespace

bool beginsName(std::string_view name) {
  if (name.empty()) return false;
  if (isLetter(name.front())) return true;
  static const NSCharacterSet& letters = *NSCharacterSet::letterCharacterSet();
  const char32_t first = firstUTF8Character(name).codePoint;
  return first == U':' || first == U'_' || letters.longCharacterIsMember(first);
}

std::size_t endWithoutLineBreaks(std::string_view text) {
  static const NSCharacterSet& lineBreaks = *NSCharacterSet::newlineCharacterSet();
  while (!text.empty()) {
    if (isASCII(text.back()) && text.back() > '\r') break;
    std::size_t last = text.size() - 1;
    while (last > 0 && continuesUTF8Character(text[last])) --last;
    const UTF8Character character = firstUTF8Character(text.substr(last));
    if (!lineBreaks.longCharacterIsMember(character.codePoint)) break;
    text = text.substr(0, last);
  }
  return text.size();
}

void ORLFTagScanner::passBlanks() {
  while (!isAtEnd()) {
    const std::size_t length = lengthOfBlank(text_, at_);
    if (length == 0) return;
    at_ += length;
  }
}

std::string_view ORLFTagScanner::scanUpToEndOfName() {
  std::size_t end = at_;
  for (; end < text_.size(); ++end) {
    if (!kMayEndName[static_cast<unsigned char>(text_[end])]) continue;
    if (text_[end] == '>' || lengthOfBlank(text_, end) != 0) break;
  }
  return take(end);
}

}  // namespace ORLFoundation::internal::sgml
