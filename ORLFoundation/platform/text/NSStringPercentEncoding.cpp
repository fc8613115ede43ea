
#include <ORLFoundation/platform/text/NSStringPercentEncoding.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/UTF8.h>

namespace ORLFoundation {

namespace base = internal::base;

const std::shared_ptr<NSCharacterSet>& URLQueryAllowedCharacterSet() {
  static const auto& set = *new auto(NSCharacterSet::characterSetWithCharactersInString(
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=:@/?"));
  return set;
}

std::string stringByAddingPercentEncodingWithAllowedCharacters(
    std::string_view text, const NSCharacterSet& withAllowedCharacters) {
  std::string encoded;
  encoded.reserve(text.size());
  while (!text.empty()) {
    const base::UTF8Character first = base::firstUTF8Character(text);
    const std::string_view bytes =
        first.isBroken ? std::string_view("\xEF\xBF\xBD") : text.substr(0, first.length);
    text.remove_prefix(first.length);
    if (first.codePoint < 0x80 && withAllowedCharacters.longCharacterIsMember(first.codePoint)) {
      encoded += bytes;
      continue;
    }
    for (const char byte : bytes) {
      encoded += '%';
      base::appendHexByte(encoded, static_cast<std::uint8_t>(byte), base::kUpperHexDigits);
    }
  }
  return encoded;
}

std::optional<std::string> stringByRemovingPercentEncoding(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      plain += text[at];
      continue;
    }
    const auto byte = base::hexByteAt(text, at + 1);
    if (!byte) return std::nullopt;
    plain += static_cast<char>(*byte);
    at += 2;
  }
  return base::isUTF8(plain) ? std::optional(std::move(plain)) : std::nullopt;
}

}  // namespace ORLFoundation
