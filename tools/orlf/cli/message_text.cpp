#include "cli/message_text.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/UTF8.h>

#include <algorithm>
#include <cstdint>

#include "cli/failure.h"

namespace orlftool {
namespace {

using namespace ORLFoundation::internal::base;

constexpr std::size_t kMostCharactersShown = 40;

/// What moves a terminal's cursor or does worse.
constexpr bool isControl(char32_t codePoint) {
  return codePoint < U' ' || (codePoint >= U'\x7F' && codePoint < U'\xA0');
}

}  // namespace

std::string quotedForMessage(std::string_view text) {
  std::string shown = "'";
  std::size_t count = 0;
  for (; !text.empty() && count < kMostCharactersShown; ++count) {
    const UTF8Character character = firstUTF8Character(text);
    const bool printable = !character.isBroken && !isControl(character.codePoint);
    shown += printable ? text.substr(0, character.length) : "?";
    text.remove_prefix(character.length);
  }
  return shown + (text.empty() ? "'" : "...'");
}

std::string oneLine(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(),
      [](char c) { return isControl(static_cast<unsigned char>(c)) && isASCII(c); }, ' ');
  return line;
}

std::string withoutControls(std::string_view json) {
  std::string shown;
  while (!json.empty()) {
    const UTF8Character character = firstUTF8Character(json);
    if (character.isBroken || !isControl(character.codePoint))
      shown += json.substr(0, character.length);
    else
      appendHexByte(shown += "\\u00", static_cast<std::uint8_t>(character.codePoint));
    json.remove_prefix(character.length);
  }
  return shown;
}

std::string joinedWithAnd(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " and " : ", ";
    text += words[i];
  }
  return text;
}

void failAtField(const std::string& name, std::size_t line, const std::string& field,
                 std::string_view expected, std::string_view got) {
  std::string message = name + ":" + std::to_string(line) + ": ";
  if (!field.empty()) message += field + ": ";
  throw JobFailure(message.append("expected ").append(expected).append(", got ").append(got));
}

}  // namespace orlftool
