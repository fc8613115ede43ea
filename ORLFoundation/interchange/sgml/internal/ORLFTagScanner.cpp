#include <ORLFoundation/interchange/sgml/internal/ORLFTagScanner.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <array>

namespace ORLFoundation::internal::sgml {
namespace {

using namespace internal::base;

constexpr std::array<bool, 128> blanksOfASCII() {
  std::array<bool, 128> blanks{};
  for (const char c : std::string_view(" \t\n\v\f\r")) blanks[static_cast<unsigned char>(c)] = true;
  return blanks;
}
constexpr std::array<bool, 128> kBlanks = blanksOfASCII();

/// Whether > or white space may begin with a byte.
bool mayEndName(char c) noexcept {
  return c == '>' || !isASCII(c) || kBlanks[static_cast<unsigned char>(c)];
}

/// The length of the white space or line end at a place, 0 for anything else.
std::size_t lengthOfBlank(std::string_view text, std::size_t at) {
  if (isASCII(text[at])) return kBlanks[static_cast<unsigned char>(text[at])] ? 1 : 0;
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

void ORLFTagScanner::skipBlanks() {
  while (!isAtEnd()) {
    const std::size_t length = lengthOfBlank(text_, at_);
    if (length == 0) return;
    at_ += length;
  }
}

std::string_view ORLFTagScanner::scanUpToEndOfName() {
  std::size_t end = at_;
  for (; end < text_.size(); ++end) {
    if (!mayEndName(text_[end])) continue;
    if (text_[end] == '>' || lengthOfBlank(text_, end) != 0) break;
  }
  return take(end);
}

}  // namespace ORLFoundation::internal::sgml
