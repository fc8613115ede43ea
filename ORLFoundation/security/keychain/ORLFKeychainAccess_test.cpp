#include <ORLFoundation/security/keychain/ORLFKeychainAccess.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>
#include <ORLFoundation/platform/keychain/SecTask.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

namespace ORLFoundation {
namespace {

using Access = ORLFKeychainAccess;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::string_view kGroup = "TEAM.com.example.app.shared";

class KeychainAccess : public testing::Test {
 protected:
  KeychainAccess() { Access::setSharedAccessGroupName(kGroup); }
  ~KeychainAccess() override { Access::setSharedAccessGroupName(std::nullopt); }

  const std::shared_ptr<SecInProcessItemStore> store_ = std::make_shared<SecInProcessItemStore>();
  const Replaced<std::shared_ptr<SecItemStore>> inUse_{&SecSetItemStore, store_};
  const std::optional<NSURL> bank_ = NSURL::URLWithString("https://bank.example/login");
};

TEST_F(KeychainAccess, CopiesWhatIsFoundOutsideIntoTheGroup) {
  ASSERT_TRUE(Access::updateGenericPassword({"pw", "anna", "bank", std::nullopt, true}));
  EXPECT_EQ(itemsOfStore(*store_).size(), 1U);
  OSStatus status = 1;
  EXPECT_EQ(Access::findGenericPasswordForKey("anna", "bank", &status), "pw");
  EXPECT_EQ(status, errSecSuccess);
  const auto items = itemsOfStore(*store_);
  ASSERT_EQ(items.size(), 2U);
  EXPECT_EQ(items[1]->objectForKey(kSecAttrAccessGroup), id(kGroup));
  EXPECT_EQ(items[1]->objectForKey(kSecAttrSynchronizable), id(true));
  EXPECT_EQ(items[1]->objectForKey(kSecValueData), id(NSData("pw")));
}

TEST_F(KeychainAccess, DeletesWhatIsInNeitherPlace) {
  OSStatus status = 1;
  EXPECT_TRUE(Access::deleteGenericPasswordForKey("anna", "bank", &status));
  EXPECT_EQ(status, errSecSuccess);
}

TEST_F(KeychainAccess, DeletesInBothPlaces) {
  ASSERT_TRUE(Access::updateGenericPassword({"out", "anna", "bank", std::nullopt, true}));
  ASSERT_TRUE(Access::updateGenericPassword({"in", "anna", "bank", kGroup, true}));
  EXPECT_TRUE(Access::deleteGenericPasswordForKey("anna", "bank"));
  EXPECT_THAT(itemsOfStore(*store_), IsEmpty());
}

TEST_F(KeychainAccess, TellsOfAMissingItemThatIsNotToBeMade) {
  OSStatus status = 1;
  EXPECT_FALSE(Access::updateGenericPassword({"pw", "anna", "bank", kGroup, false}, &status));
  EXPECT_EQ(status, errSecItemNotFound);
  EXPECT_THAT(itemsOfStore(*store_), IsEmpty());
}

TEST_F(KeychainAccess, AQueryForFtpHasAServerAndNoProtocol) {
  const auto query = Access::createInternetSearchQueryForUser(
      "anna", kGroup, NSURL::URLWithString("ftp://example.com/pub"));
  EXPECT_EQ(query->objectForKey(kSecAttrServer), id("example.com"));
  EXPECT_TRUE(query->objectForKey(kSecAttrProtocol).isNil());
}

TEST_F(KeychainAccess, QueriesLeaveOutWhatIsNil) {
  const auto generic = Access::createGenericSearchQueryForKey({}, {}, {});
  EXPECT_TRUE(generic->isEqual(secQuery({{kSecClass, kSecClassGenericPassword}}).get()));
  const auto internet = Access::createInternetSearchQueryForUser({}, {}, {});
  EXPECT_TRUE(internet->isEqual(secQuery({{kSecClass, kSecClassInternetPassword},
                                          {kSecAttrSynchronizable, true},
                                          {kSecUseDataProtectionKeychain, true}})
                                    .get()));
}

// "HTTPS" is not the scheme "https": an item under the one is not found under the other.
TEST_F(KeychainAccess, SchemesAreToldApartByTheirLetters) {
  const auto query =
      Access::createInternetSearchQueryForUser("anna", {}, NSURL::URLWithString("HTTPS://a.b/"));
  EXPECT_EQ(query->objectForKey(kSecAttrServer), id("a.b"));
  EXPECT_TRUE(query->objectForKey(kSecAttrProtocol).isNil());
}

TEST_F(KeychainAccess, RefusesPasswordsThatAreNoUTF8) {
  const LogCapture log;
  OSStatus status = 1;
  EXPECT_FALSE(Access::updateGenericPassword({"\xff", "anna", "bank", kGroup, true}, &status));
  EXPECT_EQ(status, errSecParam);
  status = 1;
  EXPECT_FALSE(Access::updateGenericPassword("\xff", "anna", "bank", true, &status));
  EXPECT_EQ(status, errSecParam);
  status = 1;
  EXPECT_FALSE(Access::updateWebPassword("\xff", "anna", bank_, true, &status));
  EXPECT_EQ(status, errSecParam);
  EXPECT_THAT(itemsOfStore(*store_), IsEmpty());
}

TEST_F(KeychainAccess, KeepsEmptyPasswordsAndZeroBytes) {
  for (const std::string_view password : {std::string_view(), std::string_view("a\0b", 3)}) {
    ASSERT_TRUE(Access::updateGenericPassword(password, "anna", "bank", true));
    EXPECT_EQ(Access::findGenericPasswordForKey("anna", "bank"), password);
    ASSERT_TRUE(Access::updateWebPassword(password, "anna", bank_, true));
    EXPECT_EQ(Access::findWebPasswordForUser("anna", bank_), password);
  }
}

/// All operations that ask, each with arguments that it takes.
const std::pair<const char*, std::function<void(const std::optional<NSURL>&, Access::StatusSlot)>>
    kOperations[] = {
        {"value",
         [](const auto&, auto slot) {
           static_cast<void>(Access::securityItemStringValueForQuery(
               *secPassword("bank", {{kSecAttrAccount, "xanthippe"}}), slot));
         }},
        {"find",
         [](const auto&, auto slot) {
           static_cast<void>(Access::findGenericPasswordForKey("xanthippe", "bank", slot));
         }},
        {"updateIn",
         [](const auto&, auto slot) {
           Access::updateGenericPassword({"s3cr3t", "xanthippe", "bank", kGroup, true}, slot);
         }},
        {"update",
         [](const auto&, auto slot) {
           Access::updateGenericPassword("s3cr3t", "xanthippe", "xanthippe's bank", true, slot);
         }},
        {"deleteIn",
         [](const auto&, auto slot) {
           Access::deleteGenericPasswordInGroup("xanthippe", "bank", kGroup, slot);
         }},
        {"delete",
         [](const auto&, auto slot) {
           Access::deleteGenericPasswordForKey("xanthippe", "bank", slot);
         }},
        {"findWeb",
         [](const auto& url, auto slot) {
           static_cast<void>(Access::findWebPasswordForUser("xanthippe", url, slot));
         }},
        {"updateWeb",
         [](const auto& url, auto slot) {
           Access::updateWebPassword("s3cr3t", "xanthippe", url, true, slot);
         }},
        {"deleteWeb", [](const auto& url,
                         auto slot) { Access::deleteWebPasswordForUser("xanthippe", url, slot); }},
};

TEST_F(KeychainAccess, EveryAnswerNamesItsBackendAndHowStrongItIs) {
  for (const auto& [name, operation] : kOperations) {
    ORLFKeychainAnswer answer;
    operation(bank_, &answer);
    EXPECT_EQ(answer.backend, store_->backend()) << name;
    EXPECT_FALSE(answer.backend.isLasting) << name;
  }
}

TEST_F(KeychainAccess, WithoutAStoreEveryOperationSaysSo) {
  const LogCapture log;
  const Replaced<std::shared_ptr<SecItemStore>> nothing(&SecSetItemStore, nullptr);
  for (const auto& [name, operation] : kOperations) {
    ORLFKeychainAnswer answer;
    operation(bank_, &answer);
    EXPECT_EQ(answer.status, errSecNotAvailable) << name;
    EXPECT_EQ(answer.backend.name, "none") << name;
  }
}

// Whichever call fails, and how: neither the user's name, nor the service that is called after the
// user, nor the password comes into the log.
TEST_F(KeychainAccess, LogsNeitherUserNamesNorPasswords) {
  const LogCapture log;
  std::size_t lines = 0;
  for (const OSStatus status : {errSecAuthFailed, errSecDuplicateItem, errSecItemNotFound}) {
    for (const char* call : {"copy", "add", "update", "delete"}) {
      for (const auto& [name, operation] : kOperations) {
        orlftest::Json failures = orlftest::Json::object();
        for (const char* turn : {"1", "2", "3"}) failures[call][turn] = status;
        const auto failing = std::make_shared<RecordingItemStore>(*store_, failures);
        const Replaced<std::shared_ptr<SecItemStore>> replaced(&SecSetItemStore, failing);
        operation(bank_, nullptr);
      }
    }
  }
  for (const std::string& line : log.lines()) {
    ++lines;
    EXPECT_THAT(line, Not(HasSubstr("xanthippe")));
    EXPECT_THAT(line, Not(HasSubstr("s3cr3t")));
    EXPECT_THAT(line, Not(HasSubstr("733363")));  // the password's bytes
  }
  EXPECT_GT(lines, 20U);
}

TEST_F(KeychainAccess, NilArgumentsAskNoStore) {
  const LogCapture log;
  ORLFKeychainAnswer answer{7, {"mark"}};
  EXPECT_EQ(Access::findGenericPasswordForKey(std::nullopt, "bank", &answer), std::nullopt);
  EXPECT_EQ(Access::findGenericPasswordForKey("anna", std::nullopt, &answer), std::nullopt);
  EXPECT_FALSE(Access::updateGenericPassword({std::nullopt, "anna", "bank", {}, true}, &answer));
  EXPECT_FALSE(Access::updateGenericPassword({"pw", std::nullopt, "bank", {}, true}, &answer));
  EXPECT_FALSE(Access::updateGenericPassword({"pw", "anna", std::nullopt, {}, true}, &answer));
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_FALSE(Access::updateGenericPassword(std::nullopt, "anna", "bank", true, &answer));
  EXPECT_FALSE(Access::updateGenericPassword("pw", "anna", std::nullopt, true, &answer));
  EXPECT_EQ(log.lines().size(), 2U);
  EXPECT_FALSE(Access::deleteGenericPasswordInGroup(std::nullopt, "bank", kGroup, &answer));
  EXPECT_FALSE(Access::deleteGenericPasswordInGroup("anna", std::nullopt, kGroup, &answer));
  EXPECT_FALSE(Access::deleteGenericPasswordForKey(std::nullopt, "bank", &answer));
  EXPECT_FALSE(Access::deleteGenericPasswordForKey("anna", std::nullopt, &answer));
  EXPECT_EQ(answer.status, 7);
  EXPECT_EQ(answer.backend.name, "mark");
  EXPECT_EQ(Access::findWebPasswordForUser(std::nullopt, bank_, &answer), std::nullopt);
  EXPECT_EQ(answer.status, errSecParam);
  EXPECT_EQ(answer.backend.name, "");
  for (const auto& refuse : std::initializer_list<std::function<bool(OSStatus*)>>{
           [](OSStatus* s) { return Access::findWebPasswordForUser("a", {}, s).has_value(); },
           [this](OSStatus* s) { return Access::updateWebPassword({}, "a", bank_, true, s); },
           [this](OSStatus* s) { return Access::updateWebPassword("p", {}, bank_, true, s); },
           [](OSStatus* s) { return Access::updateWebPassword("p", "a", {}, true, s); },
           [this](OSStatus* s) { return Access::deleteWebPasswordForUser({}, bank_, s); },
           [](OSStatus* s) { return Access::deleteWebPasswordForUser("a", {}, s); }}) {
    OSStatus status = 7;
    EXPECT_FALSE(refuse(&status));
    EXPECT_EQ(status, errSecParam);
  }
  EXPECT_EQ(log.lines().size(), 2U);
  EXPECT_THAT(itemsOfStore(*store_), IsEmpty());
}

// In processes of their own, where nothing has used the class yet.

void entitle() {
  NSBundle::mainBundle()->setInfoDictionary(
      *NSDictionary::dictionaryWithEntries({{kCFBundleIdentifierKey, "com.example.app"}}));
  SecSetTaskEntitlements(NSDictionary::dictionaryWithEntries(
      {{"keychain-access-groups", NSArray::arrayWithObjects({"T.other", kGroup})}}));
}

TEST(ORLFKeychainAccessDeathTest, TakesTheGroupFromTheTaskWhenItIsFirstUsed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        entitle();
        const bool isTaken = Access::sharedAccessGroupName() == kGroup;
        SecSetTaskEntitlements(nullptr);
        std::_Exit(isTaken && Access::sharedAccessGroupName() == kGroup ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(ORLFKeychainAccessDeathTest, AnyOperationIsAFirstUse) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto afterwards = [](const auto& use) {
    use();
    entitle();
    std::_Exit(Access::sharedAccessGroupName() ? 1 : 0);
  };
  EXPECT_EXIT(
      afterwards([] { static_cast<void>(Access::createGenericSearchQueryForKey("a", {}, "b")); }),
      testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      afterwards([] { static_cast<void>(Access::createInternetSearchQueryForUser("a", {}, {})); }),
      testing::ExitedWithCode(0), "");
  EXPECT_EXIT(afterwards([] {
                static_cast<void>(Access::redactSensitiveDataFromSearchQuery(NSDictionary()));
              }),
              testing::ExitedWithCode(0), "");
  EXPECT_EXIT(afterwards([] { static_cast<void>(Access::findGenericPasswordForKey({}, {})); }),
              testing::ExitedWithCode(0), "");
  EXPECT_EXIT(afterwards([] { Access::setSharedAccessGroupName(std::nullopt); }),
              testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ORLFoundation
