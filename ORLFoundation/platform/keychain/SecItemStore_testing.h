/// The contract of item stores, as tests that every store has to pass, and short ways to ask.
#pragma once

#include <ORLFoundation/platform/keychain/SecItem.h>
#include <ORLFoundation/platform/keychain/SecItemStore.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ORLFoundation {

inline std::shared_ptr<NSMutableDictionary> secQuery(
    std::initializer_list<std::pair<std::string_view, id>> attributes) {
  auto query = std::make_shared<NSMutableDictionary>();
  for (const auto& [key, value] : attributes) query->setObject(value, key);
  return query;
}

/// A generic password of that service, with attributes more.
inline std::shared_ptr<NSMutableDictionary> secPassword(
    std::string_view service, std::initializer_list<std::pair<std::string_view, id>> more = {}) {
  auto query = secQuery({{kSecClass, kSecClassGenericPassword}, {kSecAttrService, service}});
  for (const auto& [key, value] : more) query->setObject(value, key);
  return query;
}

/// The data of the first match as text; nil where there is none.
inline std::optional<std::string> dataOfItem(SecItemStore& store, const NSDictionary& query) {
  NSMutableDictionary asked;
  asked.addEntriesFromDictionary(query);
  asked.setObject(true, kSecReturnData);
  id data;
  if (store.copyMatching(asked, data) != errSecSuccess) return std::nullopt;
  return std::string(data.as<NSData>().value().text());
}

/// All items, each with its data, in the order of their addition; throws where the store fails.
inline std::vector<std::shared_ptr<NSDictionary>> itemsOfStore(SecItemStore& store) {
  id all;
  const OSStatus status =
      store.copyMatching(*secQuery({{kSecAttrSynchronizable, kSecAttrSynchronizableAny},
                                    {kSecMatchLimit, kSecMatchLimitAll},
                                    {kSecReturnAttributes, true},
                                    {kSecReturnData, true}}),
                         all);
  std::vector<std::shared_ptr<NSDictionary>> items;
  if (status == errSecItemNotFound) return items;
  if (status != errSecSuccess)
    throw std::runtime_error("listing the items answers " + std::to_string(status));
  for (const id& item : *all.as<NSArray>()) items.push_back(item.as<NSDictionary>());
  return items;
}

/// Derive, and give a store without items.
class SecItemStoreContract : public testing::Test {
 protected:
  explicit SecItemStoreContract(SecItemStore& store) : store_(store) {}

  void addsAndFindsByWhatAQueryNames();
  void tellsItemsApartByEachAttribute();
  void treatsSynchronizableAsStated();
  void answersInTheOrderOfAddition();
  void updatesAndRemovesEveryMatch();
  void keepsAnyBytes();
  void refusesWhatItDoesNotKnow();

 private:
  OSStatus copyStatus(const NSDictionary& query) {
    id result = "before";
    const OSStatus status = store_.copyMatching(query, result);
    EXPECT_TRUE(result.isNil());
    return status;
  }

  SecItemStore& store_;
};

inline void SecItemStoreContract::addsAndFindsByWhatAQueryNames() {
  EXPECT_EQ(copyStatus(*secPassword("bank")), errSecItemNotFound);
  EXPECT_EQ(store_.add(*secPassword("bank", {{kSecAttrAccount, "anna"},
                                             {kSecAttrAccessGroup, "group"},
                                             {kSecValueData, NSData("one")}})),
            errSecSuccess);
  EXPECT_EQ(copyStatus(*secPassword("bank")), errSecSuccess);
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank")), "one");
  EXPECT_EQ(dataOfItem(store_, *secQuery({})), "one");
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank", {{kSecAttrAccount, "anna"}})), "one");
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank", {{kSecAttrAccount, "berta"}})), std::nullopt);
  EXPECT_EQ(dataOfItem(store_, *secPassword("shop")), std::nullopt);
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank", {{kSecAttrServer, "bank"}})), std::nullopt);
  EXPECT_EQ(dataOfItem(store_, *secQuery({{kSecClass, kSecClassInternetPassword}})), std::nullopt);
  // What is said of the answer, and of data, finds nothing and hides nothing.
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank", {{kSecValueData, NSData("x")},
                                                     {kSecAttrAccessible, "x"},
                                                     {kSecMatchLimit, kSecMatchLimitOne},
                                                     {kSecUseDataProtectionKeychain, true}})),
            "one");
}

inline void SecItemStoreContract::tellsItemsApartByEachAttribute() {
  const auto first = secPassword("bank", {{kSecAttrAccount, "anna"}, {kSecValueData, NSData("1")}});
  EXPECT_EQ(store_.add(*first), errSecSuccess);
  EXPECT_EQ(store_.add(*first), errSecDuplicateItem);
  first->setObject(NSData("2"), kSecValueData);
  first->setObject("other", kSecAttrAccessible);
  EXPECT_EQ(store_.add(*first), errSecDuplicateItem);
  const std::pair<std::string_view, id> others[] = {{kSecClass, kSecClassInternetPassword},
                                                    {kSecAttrAccount, "berta"},
                                                    {kSecAttrAccount, ""},
                                                    {kSecAttrService, "shop"},
                                                    {kSecAttrServer, ""},
                                                    {kSecAttrProtocol, kSecAttrProtocolHTTP},
                                                    {kSecAttrAccessGroup, "group"},
                                                    {kSecAttrSynchronizable, true}};
  for (const auto& [key, value] : others) {
    NSMutableDictionary item;
    item.addEntriesFromDictionary(*first);
    item.setObject(value, key);
    EXPECT_EQ(store_.add(item), errSecSuccess) << key;
    EXPECT_EQ(store_.add(item), errSecDuplicateItem) << key;
  }
  // An attribute fewer is another item too.
  first->removeObjectForKey(kSecAttrAccount);
  EXPECT_EQ(store_.add(*first), errSecSuccess);
  EXPECT_EQ(itemsOfStore(store_).size(), 10U);
}

inline void SecItemStoreContract::treatsSynchronizableAsStated() {
  EXPECT_EQ(store_.add(*secPassword("bank", {{kSecValueData, NSData("here")}})), errSecSuccess);
  EXPECT_EQ(store_.add(*secPassword(
                "bank", {{kSecValueData, NSData("x")}, {kSecAttrSynchronizable, false}})),
            errSecDuplicateItem);
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank", {{kSecAttrSynchronizable, true}})),
            std::nullopt);
  EXPECT_EQ(store_.add(*secPassword(
                "bank", {{kSecValueData, NSData("all")}, {kSecAttrSynchronizable, true}})),
            errSecSuccess);
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank", {{kSecAttrSynchronizable, true}})), "all");
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank")), "here");
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank", {{kSecAttrSynchronizable, false}})), "here");
  const auto any = secPassword("bank", {{kSecAttrSynchronizable, kSecAttrSynchronizableAny}});
  EXPECT_EQ(dataOfItem(store_, *any), "here");
  EXPECT_EQ(store_.remove(*secPassword("bank")), errSecSuccess);
  EXPECT_EQ(dataOfItem(store_, *any), "all");
  EXPECT_EQ(store_.remove(*any), errSecSuccess);
  EXPECT_TRUE(itemsOfStore(store_).empty());
}

inline void SecItemStoreContract::answersInTheOrderOfAddition() {
  for (const char* account : {"zoe", "anna", "max", "berta"})
    EXPECT_EQ(
        store_.add(*secPassword("bank", {{kSecAttrAccount, account},
                                         {kSecValueData, NSData(std::string_view(account))}})),
        errSecSuccess);
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank")), "zoe");
  const auto list = [this](std::initializer_list<std::pair<std::string_view, id>> more) {
    const auto query = secPassword("bank", more);
    query->setObject(kSecMatchLimitAll, kSecMatchLimit);
    id all;
    EXPECT_EQ(store_.copyMatching(*query, all), errSecSuccess);
    return all;
  };
  EXPECT_EQ(list({{kSecReturnData, true}}),
            id(NSArray::arrayWithObjects(
                {NSData("zoe"), NSData("anna"), NSData("max"), NSData("berta")})));
  const auto maps = list({{kSecReturnAttributes, true}}).as<NSArray>();
  ASSERT_EQ(maps->count(), 4U);
  EXPECT_EQ(maps->objectAtIndex(2),
            id(NSDictionary::dictionaryWithEntries({{kSecClass, kSecClassGenericPassword},
                                                    {kSecAttrService, "bank"},
                                                    {kSecAttrAccount, "max"}})));
  EXPECT_TRUE(list({}).isNil());
  // A change leaves an item in its place.
  EXPECT_EQ(store_.update(*secPassword("bank", {{kSecAttrAccount, "zoe"}}),
                          *secQuery({{kSecValueData, NSData("new")}})),
            errSecSuccess);
  EXPECT_EQ(dataOfItem(store_, *secPassword("bank")), "new");
}

inline void SecItemStoreContract::updatesAndRemovesEveryMatch() {
  const auto data = secQuery({{kSecValueData, NSData("new")}});
  EXPECT_EQ(store_.update(*secPassword("bank"), *data), errSecItemNotFound);
  EXPECT_EQ(store_.remove(*secPassword("bank")), errSecItemNotFound);
  for (const char* account : {"anna", "berta"})
    EXPECT_EQ(store_.add(*secPassword("bank", {{kSecAttrAccount, account},
                                               {kSecAttrAccessible, "ak"},
                                               {kSecValueData, NSData("old")}})),
              errSecSuccess);
  EXPECT_EQ(store_.add(*secPassword("shop", {{kSecValueData, NSData("old")}})), errSecSuccess);
  EXPECT_EQ(store_.update(*secPassword("bank"), *data), errSecSuccess);
  EXPECT_EQ(store_.update(*secPassword("bank", {{kSecAttrAccount, "berta"}}),
                          *secQuery({{kSecAttrAccessible, kSecAttrAccessibleAfterFirstUnlock}})),
            errSecSuccess);
  const auto items = itemsOfStore(store_);
  ASSERT_EQ(items.size(), 3U);
  EXPECT_EQ(items[0]->objectForKey(kSecValueData), id(NSData("new")));
  EXPECT_EQ(items[0]->objectForKey(kSecAttrAccessible), id("ak"));
  EXPECT_EQ(items[1]->objectForKey(kSecValueData), id(NSData("new")));
  EXPECT_EQ(items[1]->objectForKey(kSecAttrAccessible), id(kSecAttrAccessibleAfterFirstUnlock));
  EXPECT_EQ(items[2]->objectForKey(kSecValueData), id(NSData("old")));
  EXPECT_EQ(items[2]->objectForKey(kSecAttrAccessible), id());
  EXPECT_EQ(store_.remove(*secPassword("bank")), errSecSuccess);
  EXPECT_EQ(itemsOfStore(store_).size(), 1U);
  EXPECT_EQ(dataOfItem(store_, *secPassword("shop")), "old");
}

inline void SecItemStoreContract::keepsAnyBytes() {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const std::pair<const char*, std::string> datas[] = {{"all", all},
                                                       {"empty", ""},
                                                       {"zero", std::string(1, '\0')},
                                                       {"broken", "\xff\xfe\x80"},
                                                       {"text", "gr\xc3\xbc\xc3\x9f"},
                                                       {"long", std::string(100'000, '\x80')}};
  for (const auto& [name, bytes] : datas) {
    EXPECT_EQ(store_.add(*secPassword(name, {{kSecValueData, NSData(std::string_view(bytes))}})),
              errSecSuccess);
    EXPECT_EQ(dataOfItem(store_, *secPassword(name)), bytes) << name;
    EXPECT_EQ(store_.update(*secPassword(name),
                            *secQuery({{kSecValueData, NSData(std::string_view("x" + bytes))}})),
              errSecSuccess);
    EXPECT_EQ(dataOfItem(store_, *secPassword(name)), "x" + bytes) << name;
  }
  EXPECT_EQ(store_.add(*secPassword("none")), errSecSuccess);
  EXPECT_EQ(dataOfItem(store_, *secPassword("none")), "");
}

inline void SecItemStoreContract::refusesWhatItDoesNotKnow() {
  const auto data = secQuery({{kSecValueData, NSData("x")}});
  EXPECT_EQ(store_.add(*secPassword("bank", {{kSecValueData, NSData("kept")}})), errSecSuccess);
  const std::pair<std::string_view, id> wrongs[] = {{"unknown", true},
                                                    {kSecClass, "keys"},
                                                    {kSecAttrAccount, 1},
                                                    {kSecAttrProtocol, "ftp "},
                                                    {kSecAttrSynchronizable, "yes"},
                                                    {kSecAttrAccessible, 1},
                                                    {kSecValueData, "text"},
                                                    {kSecReturnData, "yes"},
                                                    {kSecReturnAttributes, "yes"},
                                                    {kSecUseDataProtectionKeychain, "yes"},
                                                    {kSecMatchLimit, 1}};
  for (const auto& [key, value] : wrongs) {
    const auto query = secPassword("bank", {{key, value}});
    EXPECT_EQ(copyStatus(*query), errSecParam) << key;
    EXPECT_EQ(store_.add(*query), errSecParam) << key;
    EXPECT_EQ(store_.update(*query, *data), errSecParam) << key;
    EXPECT_EQ(store_.remove(*query), errSecParam) << key;
    EXPECT_EQ(store_.update(*secPassword("bank"), *secQuery({{key, value}})), errSecParam) << key;
  }
  NSMutableDictionary numbered;
  numbered.setObject("x", 7);
  EXPECT_EQ(copyStatus(numbered), errSecParam);
  for (const std::string_view key : {kSecReturnData, kSecReturnAttributes})
    EXPECT_EQ(store_.add(*secPassword("shop", {{key, true}})), errSecParam) << key;
  EXPECT_EQ(store_.add(*secPassword("shop", {{kSecMatchLimit, kSecMatchLimitOne}})), errSecParam);
  EXPECT_EQ(store_.add(*secPassword("shop", {{kSecAttrSynchronizable, kSecAttrSynchronizableAny}})),
            errSecParam);
  EXPECT_EQ(store_.update(*secPassword("bank"), *secQuery({})), errSecParam);
  EXPECT_EQ(store_.update(*secPassword("bank"), *secQuery({{kSecAttrAccount, "anna"}})),
            errSecParam);
  EXPECT_EQ(dataOfItem(store_, *secQuery({})), "kept");
  EXPECT_EQ(itemsOfStore(store_).size(), 1U);
}

/// The tests of the contract for a fixture that derives from it.
#define SEC_ITEM_STORE_CONTRACT(Fixture)                                                \
  TEST_F(Fixture, AddsAndFindsByWhatAQueryNames) { addsAndFindsByWhatAQueryNames(); }   \
  TEST_F(Fixture, TellsItemsApartByEachAttribute) { tellsItemsApartByEachAttribute(); } \
  TEST_F(Fixture, TreatsSynchronizableAsStated) { treatsSynchronizableAsStated(); }     \
  TEST_F(Fixture, AnswersInTheOrderOfAddition) { answersInTheOrderOfAddition(); }       \
  TEST_F(Fixture, UpdatesAndRemovesEveryMatch) { updatesAndRemovesEveryMatch(); }       \
  TEST_F(Fixture, KeepsAnyBytes) { keepsAnyBytes(); }                                   \
  TEST_F(Fixture, RefusesWhatItDoesNotKnow) { refusesWhatItDoesNotKnow(); }

}  // namespace ORLFoundation
