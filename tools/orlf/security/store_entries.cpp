#include "security/store_entries.h"

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>

#include <utility>

namespace orlftool {

using namespace ORLFoundation;

namespace {

constexpr std::string_view kHexMark = "0x";

bool isLineOfText(std::string_view text) {
  while (!text.empty()) {
    const auto character = internal::base::firstUTF8Character(text);
    if (character.isBroken || character.codePoint < U' ' ||
        (character.codePoint >= U'\x7F' && character.codePoint < U'\xA0'))
      return false;
    text.remove_prefix(character.length);
  }
  return true;
}

std::optional<StoreEntry> entryOf(const std::string& service, const id& member) {
  auto parts = member.as<NSDictionary>();
  if (!parts) return std::nullopt;
  auto user = parts->objectForKey("user").as<std::string>();
  auto context = parts->objectForKey("context").as<NSData>();
  if (!user || !context) return std::nullopt;
  return StoreEntry{service, *std::move(user), *std::move(context), std::move(parts)};
}

}  // namespace

bool StoreEntry::isInFile() const {
  return parts->objectForKey("password").as<std::string>().has_value();
}

bool StoreEntry::isInKeychain() const {
  return !isInFile() && !parts->objectForKey("keychain").isNil();
}

std::vector<StoreEntry> entriesOfContent(const id& content) {
  std::vector<StoreEntry> found;
  const auto list = content.as<NSDictionary>();
  const auto services = list ? list->objectForKey("passwords").as<NSDictionary>() : nullptr;
  if (!services) return found;
  for (const auto& [service, members] : services->entries()) {
    const auto entries = members.as<NSArray>();
    if (!entries) continue;
    for (const id& member : *entries)
      if (auto entry = entryOf(service.as<std::string>().value_or(""), member))
        found.push_back(*std::move(entry));
  }
  return found;
}

std::string textOfContext(const NSData& context) {
  if (context == ORLFEncryptedStore::noContext()) return "";
  const std::string_view text = context.text();
  if (!text.empty() && isLineOfText(text) && !text.starts_with(kHexMark)) return std::string(text);
  return std::string(kHexMark) + internal::base::hexText(text);
}

NSData contextOfText(const std::string& text) {
  if (text.empty()) return ORLFEncryptedStore::noContext();
  if (text.starts_with(kHexMark))
    if (const auto bytes = internal::base::bytesOfHexText(text.substr(kHexMark.size())))
      return NSData(std::string_view(*bytes));
  return NSData(std::string_view(text));
}

}  // namespace orlftool
