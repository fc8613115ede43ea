/// Spellings of secrets, for tests: written by the rules of their formats, not by the mask's own.
#pragma once

#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/UTF16.h>
#include <ORLFoundation/platform/base/UTF8.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace orlftest {

using Random = std::mt19937;

/// Percent escapes for all that asks for one and for some of the rest, digits of either case.
inline std::string percentEncoded(std::string_view text, Random& random,
                                  bool plusForBlank = false) {
  namespace base = ORLFoundation::internal::base;
  std::string encoded;
  for (const char c : text) {
    if (c == ' ' && plusForBlank && random() % 2 == 0) {
      encoded += '+';
    } else if (!base::isLetterOrDigit(c) || random() % 4 == 0) {
      encoded += '%';
      base::appendHexByte(encoded, static_cast<std::uint8_t>(c),
                          random() % 2 == 0 ? base::kLowerHexDigits : base::kUpperHexDigits);
    } else {
      encoded += c;
    }
  }
  return encoded;
}

inline void appendUnit(std::string& text, char32_t unit, Random& random) {
  namespace base = ORLFoundation::internal::base;
  text += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4)
    text += (random() % 2 == 0 ? base::kLowerHexDigits : base::kUpperHexDigits)[unit >> shift & 15];
}

/// Escapes of JSON for all that asks for one and for some of the rest. The text is UTF-8.
inline std::string jsonEscaped(std::string_view text, Random& random) {
  namespace base = ORLFoundation::internal::base;
  constexpr std::string_view kSigns = "\"\\/\b\f\n\r\t", kLetters = "\"\\/bfnrt";
  std::string escaped;
  for (; !text.empty();) {
    const base::UTF8Character first = base::firstUTF8Character(text);
    const char32_t c = first.codePoint;
    const std::size_t sign = c < 0x80 ? kSigns.find(static_cast<char>(c)) : kSigns.npos;
    if (sign != kSigns.npos && random() % 2 == 0) {
      (escaped += '\\') += kLetters[sign];
    } else if (c < 0x20 || sign != kSigns.npos || random() % 4 == 0) {
      base::forEachUnit(c, [&](char16_t unit) { appendUnit(escaped, unit, random); });
    } else {
      escaped += text.substr(0, first.length);
    }
    text.remove_prefix(first.length);
  }
  return escaped;
}

/// Hexadecimal digits, each of either case.
inline std::string hexEncoded(std::string_view text, Random& random) {
  namespace base = ORLFoundation::internal::base;
  std::string digits;
  for (const char c : text)
    for (const int shift : {4, 0})
      digits +=
          (random() % 2 == 0 ? base::kLowerHexDigits
                             : base::kUpperHexDigits)[static_cast<std::uint8_t>(c) >> shift & 15];
  return digits;
}

/// Base64 of the text between so many other bytes.
inline std::string base64Encoded(std::string_view text, std::size_t before, std::size_t behind,
                                 bool forAddresses) {
  std::string digits = ORLFoundation::internal::base::base64Text(
      std::string(before, 'k') + std::string(text) + std::string(behind, 'w'));
  if (!forAddresses) return digits;
  for (char& c : digits) c = c == '+' ? '-' : c == '/' ? '_' : c;
  return digits;
}

/// A text of UTF-8 of at least so many bytes, of all kinds of characters.
inline std::string randomSecret(Random& random, std::size_t bytes) {
  std::string secret;
  while (secret.size() < bytes) {
    const std::uint32_t kind = random() % 8;
    const char32_t c = kind == 0   ? 0x20 + random() % 16
                       : kind == 1 ? 0xA0 + random() % 0x500
                       : kind == 2 ? (random() % 8 == 0 ? 0x1F600 + random() % 64 : '/')
                                   : 0x30 + random() % 75;
    ORLFoundation::internal::base::appendUTF8(secret, c);
  }
  return secret;
}

}  // namespace orlftest
