/// The entries of an encrypted store's content, under the whole names of their services.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct StoreEntry {
  std::string service, user;
  ORLFoundation::NSData context;
  std::shared_ptr<ORLFoundation::NSDictionary> parts;

  /// Whether it has a password of its own, and whether the keychain has it.
  [[nodiscard]] bool isInFile() const;
  [[nodiscard]] bool isInKeychain() const;
};

/// All of them, service by service; what is no entry is left out.
[[nodiscard]] std::vector<StoreEntry> entriesOfContent(const ORLFoundation::id& content);

/// A context as a text: "" for that of entries without one; "0x" and hexadecimal digits for what is
/// no line of text, or begins like that itself.
[[nodiscard]] std::string textOfContext(const ORLFoundation::NSData& context);
/// The inverse.
[[nodiscard]] ORLFoundation::NSData contextOfText(const std::string& text);

}  // namespace orlftool
