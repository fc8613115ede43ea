#include <ORLFoundation/bridges/libsecret/internal/StoredItem.h>

#include <ORLFoundation/bridges/libsecret/internal/SecretServiceStatus.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/keychain/SecItem.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>

namespace ORLFoundation::internal::libsecret {

using namespace keychain;

namespace {

/// In the order of `kMatchedKeys`.
constexpr std::array<const char*, kMatchedTexts> kTextNames = {"class",  "account",  "service",
                                                               "server", "protocol", "group"};
constexpr const char* kSynchronizableName = "synchronizable";
constexpr const char* kAccessibleName = "accessible";
constexpr const char* kAddedName = "added";
constexpr const char* kYes = "true";
constexpr const char* kAbsent = "absent";

void put(Attributes& attributes, const char* name, const std::string& text) {
  if (!base::isUTF8(text) || text.find('\0') != std::string::npos) throw StatusFailure(errSecParam);
  attributes.insert_or_assign(name, text);
}

/// What tells our items from those of others, and what all of them say.
Attributes commonAttributes(const MatchedTexts& texts) {
  Attributes attributes{{"xdg:schema", "org.orlfoundation.KeychainItem"}};
  for (std::size_t i = 0; i < kMatchedTexts; ++i)
    if (texts.at(i)) put(attributes, kTextNames.at(i), *texts.at(i));
  return attributes;
}

std::optional<std::string> textIn(const Attributes& attributes, const char* name) {
  const auto found = attributes.find(name);
  if (found == attributes.end()) return std::nullopt;
  return found->second;
}

}  // namespace

Attributes attributesOf(const ItemQuery& query) {
  Attributes attributes = commonAttributes(query.texts);
  if (query.isSynchronizable)
    put(attributes, kSynchronizableName, *query.isSynchronizable ? kYes : kAbsent);
  return attributes;
}

Attributes attributesOf(const ItemRecord& item, const std::string& added) {
  Attributes attributes = commonAttributes(item.texts);
  put(attributes, kSynchronizableName, item.isSynchronizable ? kYes : kAbsent);
  if (item.accessible) put(attributes, kAccessibleName, *item.accessible);
  put(attributes, kAddedName, added);
  return attributes;
}

std::string nextPlace() {
  static std::atomic<std::int64_t> last{0};
  const std::int64_t now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                               std::chrono::system_clock::now().time_since_epoch())
                               .count();
  std::int64_t before = last.load();
  std::int64_t place = 0;
  do {
    place = std::max(now, before + 1);
  } while (!last.compare_exchange_weak(before, place));
  std::string digits = std::to_string(place);
  return std::string(20 - std::min<std::size_t>(20, digits.size()), '0') + digits;
}

StoredItem::StoredItem(std::string itemPath, const Attributes& attributes, bool isItemLocked)
    : path(std::move(itemPath)), isLocked(isItemLocked) {
  for (std::size_t i = 0; i < kMatchedTexts; ++i)
    record.texts.at(i) = textIn(attributes, kTextNames.at(i));
  record.isSynchronizable = textIn(attributes, kSynchronizableName) == kYes;
  record.accessible = textIn(attributes, kAccessibleName);
  added = textIn(attributes, kAddedName).value_or("");
}

std::string labelOf(const ItemRecord& item) {
  for (std::size_t i = 0; i < kMatchedTexts; ++i) {
    const bool isTold =
        kMatchedKeys.at(i) == kSecAttrService || kMatchedKeys.at(i) == kSecAttrServer;
    if (isTold && item.texts.at(i) && !item.texts.at(i)->empty()) return *item.texts.at(i);
  }
  return "password";
}

}  // namespace ORLFoundation::internal::libsecret
