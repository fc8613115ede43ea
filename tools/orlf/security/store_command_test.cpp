#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>
#include "security/store_entries.h"

namespace {

using namespace ORLFoundation;
using orlftest::ToolRun;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class StoreCommand : public orlftest::TemporaryFolderTest {
 protected:
  StoreCommand() : TemporaryFolderTest(orlftest::parentInMemory()) {
    write("right", "correct horse\n");
    write("wrong", "wrong horse");
    write("value", "s3cret value\r\n");
  }
  /// `orlf store`, with the right password where none is named.
  [[nodiscard]] ToolRun store(std::vector<std::string> words) const {
    words.insert(words.begin(), "store");
    bool isNamed = false;
    for (std::string& word : words) {
      if (word == "FILE") word = path("my.store");
      isNamed = isNamed || word.starts_with("--password-file");
    }
    if (!isNamed) words.push_back("--password-file=" + path("right"));
    return orlftest::runTool(words);
  }
  void create() const { ASSERT_EQ(store({"create", "FILE"}).exitCode, 0); }
  [[nodiscard]] ToolRun set(const std::string& service, const std::string& user,
                            const std::string& value = "value",
                            const std::string& context = "") const {
    std::vector<std::string> words{"set", "FILE", service, user, "--value-file=" + path(value)};
    if (!context.empty()) words.push_back("--context=" + context);
    return store(words);
  }
  [[nodiscard]] NSURL url() const { return NSURL::fileURLWithPath(path("my.store")); }
};

TEST_F(StoreCommand, CreatesAFileOnce) {
  const ToolRun run = store({"create", "FILE"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, "created " + path("my.store") + "\n");
  EXPECT_EQ(ORLFEncryptedStore::checkPassword("correct horse", url()), ORLFEncryptedStoreOpens);
  const std::string before = read("my.store");
  const ToolRun again = store({"create", "FILE"});
  EXPECT_EQ(again.exitCode, 1);
  EXPECT_THAT(again.err, HasSubstr("it exists already"));
  EXPECT_EQ(read("my.store"), before);
  write("empty", "\n");
  const ToolRun empty =
      orlftest::runTool({"store", "create", path("other"), "--password-file=" + path("empty")});
  EXPECT_EQ(empty.exitCode, 1);
  EXPECT_THAT(names(), Not(testing::Contains("other")));
}

TEST_F(StoreCommand, SaysWhyAFileCannotBeMadeOrRead) {
  const ToolRun none = store({"create", path("none/my.store")});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_THAT(none.err, HasSubstr("none/my.store: cannot be written: No such file or directory"));
  EXPECT_THAT(store({"create", path("right/my.store")}).err, HasSubstr("Not a directory"));
  EXPECT_THAT(store({"list", path("right")}).err, HasSubstr("right: The data is neither"));
}

TEST_F(StoreCommand, KeepsListsGivesAndDeletesPasswords) {
  create();
  EXPECT_EQ(set("bank", "ann").out, "the password of 'ann' for 'bank' lies in the file\n");
  write("other", "other");
  EXPECT_EQ(set("bank", "ann", "other", "card").exitCode, 0);
  EXPECT_EQ(set("bank", "bob", "other", "0x00ff").exitCode, 0);
  EXPECT_EQ(store({"get", "FILE", "bank", "ann"}).out, "s3cret value\n");
  EXPECT_EQ(store({"get", "FILE", "bank", "ann", "--context=card"}).out, "other\n");
  EXPECT_EQ(store({"get", "FILE", "bank", "bob", "--context=0x00ff"}).out, "other\n");
  EXPECT_EQ(store({"list", "FILE"}).out,
            "Service  User  Context  Where\n"
            "-------  ----  -------  -----\n"
            "bank     ann            file\n"
            "bank     ann   card     file\n"
            "bank     bob   0x00ff   file\n");
  EXPECT_EQ(set("bank", "ann", "other").exitCode, 0);
  EXPECT_EQ(store({"get", "FILE", "bank", "ann"}).out, "other\n");
  EXPECT_EQ(store({"delete", "FILE", "bank", "ann"}).out,
            "deleted the entry of 'ann' for 'bank'\n");
  const ToolRun gone = store({"get", "FILE", "bank", "ann"});
  EXPECT_EQ(gone.exitCode, 1);
  EXPECT_EQ(gone.out, "");
  EXPECT_THAT(gone.err, HasSubstr("there is no password of 'ann' for 'bank'"));
  EXPECT_EQ(store({"delete", "FILE", "bank", "ann"}).exitCode, 1);
  EXPECT_THAT(store({"list", "FILE", "shop"}).err, HasSubstr("there are no passwords"));
}

TEST_F(StoreCommand, SpeaksJSON) {
  using Json = nlohmann::json;
  create();
  const auto json = [&](std::vector<std::string> words) {
    words.emplace_back("--json");
    const ToolRun run = store(words);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return Json::parse(run.out);
  };
  EXPECT_EQ(json({"list", "FILE"}), Json::array());
  EXPECT_EQ(json({"set", "FILE", "bank", "ann", "--value-file=" + path("value")}),
            Json::parse(R"({"set": true, "where": "file"})"));
  EXPECT_EQ(json({"list", "FILE"}), Json::parse(R"([{"service": "bank", "user": "ann",
                                                     "context": "", "where": "file"}])"));
  EXPECT_EQ(json({"get", "FILE", "bank", "ann"}), Json::parse(R"({"password": "s3cret value"})"));
  EXPECT_EQ(json({"delete", "FILE", "bank", "ann"}), Json::parse(R"({"deleted": true})"));
}

TEST_F(StoreCommand, FindsServicesWithPointsAndSaysThatProgramsDoNot) {
  create();
  const ToolRun run = set("mail.example.com", "ann");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.err, HasSubstr("programs do not find services with '.' in their names"));
  EXPECT_EQ(store({"get", "FILE", "mail.example.com", "ann"}).out, "s3cret value\n");
  EXPECT_EQ(set("bank", "ann").err, "");
}

TEST_F(StoreCommand, WritesNothingUnderAWrongPasswordAndIntoOtherFiles) {
  create();
  EXPECT_EQ(set("bank", "ann").exitCode, 0);
  const std::string password = "--password-file=" + path("wrong");
  const auto refused = [&](const char* reason) {
    const std::string before = read("my.store");
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"list", "FILE", password},
             {"get", "FILE", "bank", "ann", password},
             {"set", "FILE", "bank", "ann", "--value-file=" + path("value"), password},
             {"delete", "FILE", "bank", "ann", password}}) {
      const ToolRun run = store(words);
      EXPECT_EQ(run.exitCode, 1) << words[0];
      EXPECT_EQ(run.out, "") << words[0];
      EXPECT_THAT(run.err, HasSubstr(reason)) << words[0];
      EXPECT_THAT(run.err, Not(HasSubstr("horse")));
      EXPECT_THAT(run.err, Not(HasSubstr("s3cret")));
    }
    EXPECT_EQ(read("my.store"), before);
  };
  refused("the password is wrong, or the file is damaged");
  write("my.store", "<plist><dict><key>name</key><string>Ann</string></dict></plist>");
  refused("it is not an encrypted store");
  write("my.store", "no list");
  refused("neither a binary nor an XML property list");
  std::filesystem::remove(path("my.store"));
  EXPECT_EQ(set("bank", "ann").exitCode, 1);
  EXPECT_THAT(names(), ElementsAre("my.store.lock", "right", "value", "wrong"));
}

/// A keychain that would last and denies access.
class LastingAndFailing final : public SecItemStore {
 public:
  SecItemBackend backend() const override { return {"vault", true, SecItemEncryptionUnknown}; }
  OSStatus copyMatching(const NSDictionary&, id& result) override {
    result = nullptr;
    return errSecAuthFailed;
  }
  OSStatus add(const NSDictionary&) override { return errSecAuthFailed; }
  OSStatus update(const NSDictionary&, const NSDictionary&) override { return errSecAuthFailed; }
  OSStatus remove(const NSDictionary&) override { return errSecAuthFailed; }
};

TEST_F(StoreCommand, RefusesTheKeychainUnlessItLasts) {
  create();
  const std::vector<std::string> words{
      "set", "FILE", "bank", "ann", "--value-file=" + path("value"), "--keychain"};
  const Replaced none(SecSetItemStore, nullptr);
  EXPECT_THAT(store(words).err, HasSubstr("--keychain: there is no keychain that lasts: none"));
  const Replaced items(SecSetItemStore, std::make_shared<SecInProcessItemStore>());
  const ToolRun run = store(words);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("in-process"));
  const Replaced failing(SecSetItemStore, std::make_shared<LastingAndFailing>());
  const ToolRun failed = store(words);
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_EQ(failed.err, "orlf store: --keychain: " + SecCopyErrorMessageString(errSecAuthFailed) +
                            " (-25293)\n");
  EXPECT_THAT(store({"list", "FILE"}).err, HasSubstr("there are no passwords"));
}

TEST_F(StoreCommand, SaysWhereAKeychainDoesNotGiveAPassword) {
  const auto entry = NSDictionary::dictionaryWithEntries(
      {{"user", "ann"}, {"context", ORLFEncryptedStore::noContext()}, {"keychain", "DEFAULT"}});
  const auto content = NSDictionary::dictionaryWithEntries(
      {{"passwords",
        NSDictionary::dictionaryWithEntries({{"bank", NSArray::arrayWithObjects({entry})}})}});
  ASSERT_TRUE(ORLFEncryptedStore::writeEncryptedPropertyList(content, url(), "correct horse"));
  EXPECT_THAT(store({"list", "FILE"}).out, HasSubstr("keychain"));
  const ToolRun run = store({"get", "FILE", "bank", "ann"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("lies in the keychain, which does not give it: none"));
  EXPECT_THAT(store({"delete", "FILE", "bank", "ann"}).err, HasSubstr("stays in the keychain"));
}

struct UsageCase {
  std::vector<std::string> words;
  const char* fault;
};

TEST_F(StoreCommand, RefusesWordsThatWouldNotCount) {
  create();
  const std::string value = "--value-file=" + path("value");
  for (const UsageCase& row : {
           UsageCase{{"open", "FILE"}, "expected create, list, get, set or delete, got 'open'"},
           UsageCase{{"create", "FILE", "bank"}, "SERVICE does not go with create"},
           UsageCase{{"get", "FILE", "bank"}, "SERVICE and USER are needed for get"},
           UsageCase{{"delete", "FILE"}, "SERVICE and USER are needed for delete"},
           UsageCase{{"list", "FILE", "--context=x"}, "--context does not go with list"},
           UsageCase{{"get", "FILE", "bank", "ann", value}, "go with set, not with get"},
           UsageCase{{"delete", "FILE", "bank", "ann", "--keychain"},
                     "go with set, not with delete"},
           UsageCase{{"set", "FILE", "bank", "ann", "--value-file=-", "--password-file=-"},
                     "the standard input holds one password"},
           UsageCase{{"list", "", value}, "go with set, not with list"},
           UsageCase{{"list", ""}, "FILE: expected a path"},
       }) {
    const ToolRun run = store(row.words);
    EXPECT_EQ(run.exitCode, 2) << row.fault << run.err;
    EXPECT_THAT(run.err, HasSubstr(row.fault));
  }
}

TEST_F(StoreCommand, SaysWhichPasswordCannotBeRead) {
  create();
  write("long", std::string(70000, 'x'));
  EXPECT_THAT(store({"list", "FILE", "--password-file=" + path("none")}).err,
              HasSubstr("none: cannot be read"));
  EXPECT_THAT(store({"list", "FILE", "--password-file=" + path("long")}).err,
              HasSubstr("got more than 64 KB"));
  EXPECT_EQ(store({"list", "FILE", "--password-file=" + folder_.string()}).exitCode, 1);
  write("control", "a\1b");
  const ToolRun run = set("bank", "ann", "control");
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.err, HasSubstr("XML cannot hold"));
}

TEST(StoreEntries, ShowContextsInOneWayEach) {
  const auto data = [](std::string_view text) { return NSData(text); };
  for (const auto& [context, text] :
       std::vector<std::pair<NSData, std::string>>{{data("NONE"), ""},
                                                   {data("card"), "card"},
                                                   {data(""), "0x"},
                                                   {data("\1"), "0x01"},
                                                   {data("0x41"), "0x30783431"},
                                                   {data("\xff"), "0xff"},
                                                   {data("größe"), "größe"},
                                                   {data("a\nb"), "0x610a62"}}) {
    EXPECT_EQ(orlftool::textOfContext(context), text);
    EXPECT_EQ(orlftool::contextOfText(text), context);
  }
  EXPECT_EQ(orlftool::contextOfText("0xyz"), data("0xyz"));
}

}  // namespace
