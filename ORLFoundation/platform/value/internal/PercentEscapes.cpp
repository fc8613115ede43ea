

#include <ORLFoundation/platform/value/internal/PercentEscapes.h>

#include <cstdint>

namespace ORLFoundation::internal {
namespace {

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// First bytes of characters of several bytes, and what their second byte may be.
struct LeadBytes {
  std::uint8_t first, last;
  std::size_t length;
  std::uint8_t leastSecond, mostSecond;
};
constexpr LeadBytes kLeadBytes[] = {
    {0x00, 0x7F, 1, 0, 0},       {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

/// Bytes of the character at the front; 0 when they are none.
std::size_t characterLength(std::string_view bytes) {
  const auto byte = [bytes](std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
  for (const LeadBytes& lead : kLeadBytes) {
    if (byte(0) < lead.first || byte(0) > lead.last) continue;
    if (lead.length > bytes.size()) return 0;
    if (lead.length > 1 && (byte(1) < lead.leastSecond || byte(1) > lead.mostSecond)) return 0;
    for (std::size_t i = 2; i < lead.length; ++i)
      if ((byte(i) & 0xC0) != 0x80) return 0;
    return lead.length;
  }
  return 0;
}

}  // namespace

bool isPercentEscapeAt(std::string_view text, std::size_t index) noexcept {
  return text[index] == '%' && index + 2 < text.size() && hexValue(text[index + 1]) >= 0 &&
         hexValue(text[index + 2]) >= 0;
}

std::string withoutPercentEscapes(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isPercentEscapeAt(text, i)) {
      out += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

bool isUTF8(std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    const std::size_t length = characterLength(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

}  // namespace ORLFoundation::internal
