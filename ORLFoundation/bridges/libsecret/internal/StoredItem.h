/// How an item lies in the Secret Service: attributes that are texts, all of them said.
#pragma once

#include <ORLFoundation/platform/keychain/SecItemRecord.h>

#include <map>
#include <string>

namespace ORLFoundation::internal::libsecret {

using Attributes = std::map<std::string, std::string>;

/// What a query looks for; an item has more. Throws `StatusFailure` with `errSecParam` for texts
/// that D-Bus does not carry.
[[nodiscard]] Attributes attributesOf(const keychain::ItemQuery& query);
/// All of an item, `added` being its place in the order of addition. Throws likewise.
[[nodiscard]] Attributes attributesOf(const keychain::ItemRecord& item, const std::string& added);
/// A place behind all that this process gave before, and behind those that others gave before by
/// this machine's clock.
[[nodiscard]] std::string nextPlace();

/// An item of the service, without its data.
struct StoredItem {
  StoredItem(std::string itemPath, const Attributes& attributes, bool isItemLocked);

  std::string path;
  keychain::ItemRecord record;
  std::string added;
  bool isLocked;
};

/// What windows of the service call an item: its service or server, never its account.
[[nodiscard]] std::string labelOf(const keychain::ItemRecord& item);

}  // namespace ORLFoundation::internal::libsecret
