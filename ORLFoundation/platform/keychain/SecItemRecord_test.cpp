#include <ORLFoundation/platform/keychain/SecItemRecord.h>

#include <ORLFoundation/platform/keychain/SecItem.h>
#include <ORLFoundation/platform/keychain/SecItemStore_testing.h>

#include <random>

namespace ORLFoundation::internal::keychain {
namespace {

/// The rule of matching as it is stated, on dictionaries.
bool matchesAsStated(const NSDictionary& query, const NSDictionary& item) {
  for (const std::string_view key : {kSecClass, kSecAttrAccount, kSecAttrService, kSecAttrServer,
                                     kSecAttrProtocol, kSecAttrAccessGroup}) {
    const id named = query.objectForKey(key);
    if (named && named != item.objectForKey(key)) return false;
  }
  const id asked = query.objectForKey(kSecAttrSynchronizable);
  if (asked == id(kSecAttrSynchronizableAny)) return true;
  const bool wanted = asked && asked.as<bool>().value();
  const id own = item.objectForKey(kSecAttrSynchronizable);
  return wanted == (own && own.as<bool>().value());
}

class Words {
 public:
  /// Attributes at random, of few values, so that many meet.
  std::shared_ptr<NSMutableDictionary> next(bool isQuery) {
    auto words = std::make_shared<NSMutableDictionary>();
    if (coin())
      words->setObject(coin() ? kSecClassGenericPassword : kSecClassInternetPassword, kSecClass);
    for (const std::string_view key :
         {kSecAttrAccount, kSecAttrService, kSecAttrServer, kSecAttrAccessGroup})
      if (coin() && coin()) words->setObject(coin() ? "a" : "", key);
    if (coin() && coin())
      words->setObject(coin() ? kSecAttrProtocolHTTP : kSecAttrProtocolHTTPS, kSecAttrProtocol);
    if (coin()) words->setObject(coin(), kSecAttrSynchronizable);
    if (isQuery && coin()) words->setObject(kSecAttrSynchronizableAny, kSecAttrSynchronizable);
    return words;
  }

 private:
  bool coin() { return (random_() & 1U) != 0; }
  std::mt19937 random_{17};
};

TEST(SecItemRecord, MatchesAsStated) {
  Words words;
  int matches = 0;
  for (int i = 0; i < 20'000; ++i) {
    const auto query = words.next(true);
    const auto item = words.next(false);
    const bool expected = matchesAsStated(*query, *item);
    ASSERT_EQ(itemQueryIn(*query)->matches(*itemRecordIn(*item)), expected)
        << query->description() << item->description();
    if (expected) ++matches;
  }
  EXPECT_GT(matches, 1000);
  EXPECT_LT(matches, 19'000);
}

TEST(SecItemRecord, GivesBackTheAttributesThatWereNamed) {
  const auto item = secPassword(
      "bank", {{kSecAttrAccount, ""}, {kSecAttrSynchronizable, true}, {kSecAttrAccessible, "ak"}});
  EXPECT_TRUE(itemRecordIn(*item)->attributes()->isEqual(item.get()));
  item->setObject(false, kSecAttrSynchronizable);
  const auto given = itemRecordIn(*item)->attributes();
  item->removeObjectForKey(kSecAttrSynchronizable);
  EXPECT_TRUE(given->isEqual(item.get()));
}

}  // namespace
}  // namespace ORLFoundation::internal::keychain
