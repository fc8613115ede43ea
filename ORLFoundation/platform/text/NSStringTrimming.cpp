#include <ORLFoundation/platform/text/NSStringTrimming.h>

#include <ORLFoundation/platform/base/UTF8.h>

#include <algorithm>
#include <cstddef>

namespace ORLFoundation {
namespace {

using internal::base::continuesUTF8Character;
using internal::base::firstUTF8Character;
using internal::base::UTF8Character;

/// The last character of a text that is not empty, as reading from its front would end with it.
UTF8Character lastUTF8Character(std::string_view text) noexcept {
  constexpr std::size_t kLongest = 4;
  for (std::size_t length = 1; length <= std::min(kLongest, text.size()); ++length) {
    const std::string_view tail = text.substr(text.size() - length);
    if (continuesUTF8Character(tail.front())) continue;
    const UTF8Character character = firstUTF8Character(tail);
    if (character.length == length) return character;
    break;
  }
  return {};
}

}  // namespace

std::string_view stringByTrimmingCharactersInSet(std::string_view text,
                                                 const NSCharacterSet& set) noexcept {
  while (!text.empty()) {
    const UTF8Character first = firstUTF8Character(text);
    if (!set.longCharacterIsMember(first.codePoint)) break;
    text.remove_prefix(first.length);
  }
  while (!text.empty()) {
    const UTF8Character last = lastUTF8Character(text);
    if (!set.longCharacterIsMember(last.codePoint)) break;
    text.remove_suffix(last.length);
  }
  return text;
}

}  // namespace ORLFoundation
