#include <ORLFoundation/platform/keychain/SecItemRecord.h>

#include <ORLFoundation/platform/keychain/SecItem.h>
#include <ORLFoundation/platform/object/NSArray.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::keychain {

const std::array<std::string_view, kMatchedTexts> kMatchedKeys = {
    kSecClass,      kSecAttrAccount,  kSecAttrService,
    kSecAttrServer, kSecAttrProtocol, kSecAttrAccessGroup};

namespace {

/// All that a dictionary can say to a store.
struct Words {
  MatchedTexts texts;
  std::optional<bool> isSynchronizable = false;
  bool returnsData = false;
  bool returnsAttributes = false;
  bool isForDataProtection = false;
  std::optional<bool> wantsAll;
  std::optional<NSData> data;
  std::optional<std::string> accessible;
};

bool readFlag(const id& value, bool& flag) {
  const auto* number = value.get<NSNumber>();
  if (number == nullptr) return false;
  flag = number->boolValue();
  return true;
}

/// A text, of those that are allowed where only some are.
bool readText(const id& value, std::optional<std::string>& text,
              std::initializer_list<std::string_view> allowed = {}) {
  const auto* word = value.get<std::string>();
  if (word == nullptr) return false;
  if (allowed.size() > 0 && std::ranges::find(allowed, *word) == allowed.end()) return false;
  text = *word;
  return true;
}

bool readSynchronizable(const id& value, std::optional<bool>& isSynchronizable) {
  if (value == id(kSecAttrSynchronizableAny)) {
    isSynchronizable.reset();
    return true;
  }
  return readFlag(value, isSynchronizable.emplace());
}

bool readLimit(const id& value, std::optional<bool>& wantsAll) {
  if (value != id(kSecMatchLimitOne) && value != id(kSecMatchLimitAll)) return false;
  wantsAll = value == id(kSecMatchLimitAll);
  return true;
}

bool readData(const id& value, std::optional<NSData>& data) {
  const auto* bytes = value.get<NSData>();
  if (bytes == nullptr) return false;
  const std::span<const std::uint8_t> all = bytes->bytes();
  data = NSData::dataWipedAtRelease(std::vector<std::uint8_t>(all.begin(), all.end()));
  return true;
}

bool readMatched(std::size_t index, const id& value, Words& words) {
  std::optional<std::string>& text = words.texts.at(index);
  if (kMatchedKeys.at(index) == kSecClass)
    return readText(value, text, {kSecClassGenericPassword, kSecClassInternetPassword});
  if (kMatchedKeys.at(index) == kSecAttrProtocol)
    return readText(value, text, {kSecAttrProtocolHTTP, kSecAttrProtocolHTTPS});
  return readText(value, text);
}

bool readWord(std::string_view key, const id& value, Words& words) {
  const auto* const matched = std::ranges::find(kMatchedKeys, key);
  if (matched != kMatchedKeys.end())
    return readMatched(static_cast<std::size_t>(matched - kMatchedKeys.begin()), value, words);
  if (key == kSecAttrSynchronizable) return readSynchronizable(value, words.isSynchronizable);
  if (key == kSecValueData) return readData(value, words.data);
  if (key == kSecAttrAccessible) return readText(value, words.accessible);
  if (key == kSecReturnData) return readFlag(value, words.returnsData);
  if (key == kSecReturnAttributes) return readFlag(value, words.returnsAttributes);
  if (key == kSecMatchLimit) return readLimit(value, words.wantsAll);
  if (key == kSecUseDataProtectionKeychain) return readFlag(value, words.isForDataProtection);
  return false;
}

std::optional<Words> wordsIn(const NSDictionary& dictionary) {
  Words words;
  for (const auto& [key, value] : dictionary.entries()) {
    const auto* name = key.get<std::string>();
    if (name == nullptr || !readWord(*name, value, words)) return std::nullopt;
  }
  return words;
}

}  // namespace

std::shared_ptr<NSMutableDictionary> ItemRecord::attributes() const {
  auto all = std::make_shared<NSMutableDictionary>();
  for (std::size_t i = 0; i < kMatchedTexts; ++i)
    if (texts.at(i)) all->setObject(*texts.at(i), kMatchedKeys.at(i));
  if (isSynchronizable) all->setObject(true, kSecAttrSynchronizable);
  if (accessible) all->setObject(*accessible, kSecAttrAccessible);
  return all;
}

bool ItemQuery::matches(const ItemRecord& item) const {
  for (std::size_t i = 0; i < kMatchedTexts; ++i)
    if (texts.at(i) && texts.at(i) != item.texts.at(i)) return false;
  return !isSynchronizable || *isSynchronizable == item.isSynchronizable;
}

id ItemQuery::resultFor(std::span<const ItemRecord> matches) const {
  if (!returnsData && !returnsAttributes) return nullptr;
  const auto resultOf = [this](const ItemRecord& item) -> id {
    if (!returnsAttributes) return item.data;
    const auto all = item.attributes();
    if (returnsData) all->setObject(item.data, kSecValueData);
    return all;
  };
  if (!wantsAll) return resultOf(matches.front());
  std::vector<id> results;
  for (const ItemRecord& item : matches) results.push_back(resultOf(item));
  return std::make_shared<NSArray>(std::move(results));
}

void ItemChange::applyTo(ItemRecord& item) const {
  if (data) item.data = *data;
  if (accessible) item.accessible = accessible;
}

std::optional<ItemQuery> itemQueryIn(const NSDictionary& query) {
  std::optional<Words> words = wordsIn(query);
  if (!words) return std::nullopt;
  return ItemQuery{std::move(words->texts), words->isSynchronizable, words->returnsData,
                   words->returnsAttributes, words->wantsAll.value_or(false)};
}

std::optional<ItemRecord> itemRecordIn(const NSDictionary& attributes) {
  std::optional<Words> words = wordsIn(attributes);
  if (!words || !words->isSynchronizable || words->returnsData || words->returnsAttributes ||
      words->wantsAll)
    return std::nullopt;
  return ItemRecord{std::move(words->texts), *words->isSynchronizable,
                    words->data.value_or(NSData()), std::move(words->accessible)};
}

std::optional<ItemChange> itemChangeIn(const NSDictionary& attributes) {
  for (const id& key : attributes.allKeys())
    if (key != id(kSecValueData) && key != id(kSecAttrAccessible)) return std::nullopt;
  std::optional<Words> words = wordsIn(attributes);
  if (!words || (!words->data && !words->accessible)) return std::nullopt;
  return ItemChange{std::move(words->data), std::move(words->accessible)};
}

}  // namespace ORLFoundation::internal::keychain
