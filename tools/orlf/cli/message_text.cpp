

#include "cli/message_text.h"

#include <ORLFoundation/platform/base/UTF8.h>

#include "cli/failure.h"

namespace orlftool {
namespace {

using ORLFoundation::internal::base::firstUTF8Character;
using ORLFoundation::internal::base::UTF8Character;

constexpr std::size_t kMostCharactersShown = 40;

}  // namespace

std::string quotedForMessage(std::string_view text) {
  std::string shown = "'";
  std::size_t at = 0;
  for (std::size_t count = 0; at < text.size() && count < kMostCharactersShown; ++count) {
    const UTF8Character character = firstUTF8Character(text.substr(at));
    const std::size_t length = character.isBroken ? 1 : character.length;
    const bool printable = !character.isBroken && character.codePoint >= U' ' && text[at] != '\x7F';
    shown += printable ? text.substr(at, length) : "?";
    at += length;
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
