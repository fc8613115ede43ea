#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>
#include <ORLFoundation/platform/keychain/SecItemStore_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>

#include <nlohmann/json.hpp>

namespace {

using namespace ORLFoundation;
using orlftest::runTool;
using orlftest::ToolRun;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using KeychainJson = nlohmann::json;

/// A store in memory that claims to last.
class LastingStore final : public SecItemStore {
 public:
  explicit LastingStore(std::shared_ptr<SecItemStore> inner) : inner_(std::move(inner)) {}

  [[nodiscard]] SecItemBackend backend() const override {
    return {"lasting", true, SecItemEncryptionUnknown};
  }
  [[nodiscard]] OSStatus copyMatching(const NSDictionary& query, id& result) override {
    return inner_->copyMatching(query, result);
  }
  [[nodiscard]] OSStatus add(const NSDictionary& attributes) override {
    return inner_->add(attributes);
  }
  [[nodiscard]] OSStatus update(const NSDictionary& query,
                                const NSDictionary& attributes) override {
    return inner_->update(query, attributes);
  }
  [[nodiscard]] OSStatus remove(const NSDictionary& query) override {
    return inner_->remove(query);
  }

 private:
  const std::shared_ptr<SecItemStore> inner_;
};

class KeychainCommand : public orlftest::TemporaryFolderTest {
 protected:
  KeychainCommand() { use(items_); }
  ~KeychainCommand() override { SecRegisterItemStore("lasting", nullptr); }

  static void use(const std::shared_ptr<SecItemStore>& inner) {
    SecRegisterItemStore("lasting", [inner] { return std::make_shared<LastingStore>(inner); });
  }
  static ToolRun keychain(std::vector<std::string> words) {
    words.insert(words.begin(), "keychain");
    words.insert(words.end(), {"--backend", "lasting"});
    return runTool(words);
  }
  ToolRun set(const std::string& service, const std::string& account, const std::string& password,
              std::vector<std::string> more = {}) const {
    std::vector<std::string> words{"set", service, account, "--password-file",
                                   write("password", password)};
    words.insert(words.end(), more.begin(), more.end());
    return keychain(words);
  }

  const std::shared_ptr<SecInProcessItemStore> items_ = std::make_shared<SecInProcessItemStore>();
};

TEST_F(KeychainCommand, KeepsPrintsAndDeletesAPassword) {
  const ToolRun kept = set("bank", "anna", "s3cr3t\n");
  EXPECT_EQ(kept.exitCode, 0);
  EXPECT_EQ(kept.out, "");
  EXPECT_EQ(kept.err, "orlf keychain: kept in lasting (lasting, encryption at rest unknown)\n");
  const ToolRun found = keychain({"get", "bank", "anna"});
  EXPECT_EQ(found.exitCode, 0);
  EXPECT_EQ(found.out, "s3cr3t\n");
  EXPECT_EQ(found.err, "orlf keychain: found in lasting (lasting, encryption at rest unknown)\n");
  EXPECT_EQ(set("bank", "anna", "other").exitCode, 0);
  EXPECT_EQ(keychain({"get", "bank", "anna"}).out, "other\n");
  const ToolRun deleted = keychain({"delete", "bank", "anna"});
  EXPECT_EQ(deleted.exitCode, 0);
  EXPECT_EQ(deleted.err,
            "orlf keychain: deleted from lasting (lasting, encryption at rest unknown)\n");
  EXPECT_TRUE(itemsOfStore(*items_).empty());
}

TEST_F(KeychainCommand, KeepsPasswordsOfWebSitesByTheirHost) {
  ASSERT_EQ(set("https://bank.example/login", "anna", "web", {"--web"}).exitCode, 0);
  EXPECT_EQ(keychain({"get", "https://bank.example/other", "anna", "--web"}).out, "web\n");
  EXPECT_EQ(keychain({"get", "http://bank.example/", "anna", "--web"}).exitCode, 1);
  EXPECT_EQ(keychain({"get", "https://bank.example/login", "anna"}).exitCode, 1);
  EXPECT_EQ(keychain({"delete", "https://bank.example", "anna", "--web"}).exitCode, 0);
  EXPECT_EQ(keychain({"delete", "https://bank.example", "anna", "--web"}).exitCode, 1);
  const ToolRun wrong = keychain({"get", "bank", "anna", "--web"});
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_THAT(wrong.err, HasSubstr("SERVICE: expected a web address with --web, got 'bank'"));
}

TEST_F(KeychainCommand, KeepsPasswordsInAGroup) {
  ASSERT_EQ(set("bank", "anna", "pw", {"--group", "T.shared"}).exitCode, 0);
  const auto items = itemsOfStore(*items_);
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0]->objectForKey(kSecAttrAccessGroup), id("T.shared"));
  EXPECT_EQ(keychain({"get", "bank", "anna"}).exitCode, 1);
  EXPECT_EQ(keychain({"get", "bank", "anna", "--group", "T.shared"}).out, "pw\n");
  EXPECT_EQ(keychain({"delete", "bank", "anna", "--group", "T.shared"}).exitCode, 0);
}

TEST_F(KeychainCommand, TellsOfItsBackendInJson) {
  const KeychainJson backend{
      {"name", "lasting"}, {"lasting", true}, {"encryptionAtRest", "unknown"}};
  EXPECT_EQ(KeychainJson::parse(set("bank", "anna", "pw", {"--json"}).out),
            KeychainJson({{"kept", true}, {"backend", backend}}));
  EXPECT_EQ(KeychainJson::parse(keychain({"get", "bank", "anna", "--json"}).out),
            KeychainJson({{"password", "pw"}, {"backend", backend}}));
  EXPECT_EQ(KeychainJson::parse(keychain({"delete", "bank", "anna", "--json"}).out),
            KeychainJson({{"deleted", true}, {"backend", backend}}));
}

TEST_F(KeychainCommand, SaysInOneLineWhatFailed) {
  for (const char* action : {"get", "delete"}) {
    const ToolRun run = keychain({action, "bank", "anna"});
    EXPECT_EQ(run.exitCode, 1) << action;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              "orlf keychain: The keychain holds no such item. (-25300, lasting (lasting, "
              "encryption at rest unknown))\n");
  }
  use(std::make_shared<SecFailingItemStore>(errSecInteractionNotAllowed));
  for (const ToolRun& run : {keychain({"get", "bank", "anna"}), set("bank", "anna", "s3cr3t"),
                             keychain({"delete", "bank", "anna"})}) {
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              "orlf keychain: The keychain is locked, and nobody can be asked to unlock it. "
              "(-25308, lasting (lasting, encryption at rest unknown))\n");
  }
}

TEST_F(KeychainCommand, DoesNotPrintDataThatIsNoText) {
  ASSERT_EQ(items_->add(*secPassword(
                "bank", {{kSecAttrAccount, "anna"}, {kSecValueData, NSData("\xff\x01")}})),
            errSecSuccess);
  const ToolRun run = keychain({"get", "bank", "anna"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "orlf keychain: the item holds data that is no text\n");
}

TEST_F(KeychainCommand, RefusesKeychainsThatForget) {
  for (const char* name : {"in-process", "none"}) {
    const ToolRun run = runTool({"keychain", "set", "bank", "anna", "--backend", name,
                                 "--password-file", write("password", "pw")});
    EXPECT_EQ(run.exitCode, 1) << name;
    EXPECT_THAT(run.err, AllOf(HasSubstr(name), HasSubstr("not lasting"), HasSubstr("refused")));
  }
  const ToolRun unknown = runTool({"keychain", "get", "bank", "anna", "--backend", "paper"});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_THAT(unknown.err, HasSubstr("got 'paper'"));
  // In this process nobody has registered the usual one.
  const ToolRun usual = runTool({"keychain", "get", "bank", "anna"});
  EXPECT_EQ(usual.exitCode, 1);
  EXPECT_THAT(usual.err, HasSubstr("built without libsecret"));
}

TEST_F(KeychainCommand, RefusesWordsThatMakeNoSense) {
  EXPECT_EQ(keychain({"show", "bank", "anna"}).exitCode, 2);
  EXPECT_EQ(keychain({"get", "", "anna"}).exitCode, 2);
  EXPECT_EQ(keychain({"get", "bank", ""}).exitCode, 2);
  EXPECT_EQ(keychain({"get", "bank"}).exitCode, 2);
  EXPECT_EQ(keychain({"get", "bank", "anna", "--password-file", "x"}).exitCode, 2);
  EXPECT_EQ(keychain({"set", "bank", "anna", "pw"}).exitCode, 2);
  EXPECT_EQ(set("bank", "anna", "").exitCode, 1);
  EXPECT_EQ(set("bank", "anna", "\xff").exitCode, 1);
  EXPECT_TRUE(itemsOfStore(*items_).empty());
}

TEST_F(KeychainCommand, PrintsNoPasswordWhereItFails) {
  use(std::make_shared<SecFailingItemStore>(errSecIO));
  const ToolRun run = set("bank", "xanthippe", "s3cr3t");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, AllOf(Not(HasSubstr("s3cr3t")), Not(HasSubstr("xanthippe"))));
}

}  // namespace
