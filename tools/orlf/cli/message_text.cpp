

#include "cli/message_text.h"

#include <algorithm>

#include "cli/failure.h"

namespace orlftool {
namespace {

constexpr std::size_t kMostCharactersShown = 40;

/// Bytes of the UTF-8 character at the front; 0 when they are none.
std::size_t characterLength(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const std::size_t length = byte(0) < 0x80    ? 1
                             : byte(0) >= 0xF0 ? 4
                             : byte(0) >= 0xE0 ? 3
                             : byte(0) >= 0xC2 ? 2
                                               : 0;
  if (length > text.size() || byte(0) > 0xF4) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  return length;
}

}  // namespace

std::string quotedForMessage(std::string_view text) {
  std::string shown = "'";
  std::size_t at = 0;
  for (std::size_t count = 0; at < text.size() && count < kMostCharactersShown; ++count) {
    const std::size_t length = characterLength(text.substr(at));
    const bool printable = length > 1 || (length == 1 && text[at] >= ' ' && text[at] != '\x7F');
    shown += printable ? text.substr(at, length) : "?";
    at += std::max<std::size_t>(length, 1);
  }
  return shown + (at < text.size() ? "...'" : "'");
}

void failAtField(const std::string& name, std::size_t line, const std::string& field,
                 std::string_view expected, std::string_view got) {
  std::string message = name + ":" + std::to_string(line) + ": ";
  if (!field.empty()) message += field + ": ";
  throw JobFailure(message.append("expected ").append(expected).append(", got ").append(got));
}

}  // namespace orlftool
