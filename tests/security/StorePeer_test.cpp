// Files that an independent program reads and writes.
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

using Json = nlohmann::json;

/// {"data": BASE64} stands for bytes.
id listOf(const Json& json) {
  if (json.is_string()) return json.get<std::string>();
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number()) return json.get<std::int64_t>();
  if (json.is_array()) {
    const auto list = std::make_shared<NSMutableArray>();
    for (const Json& member : json) list->addObject(listOf(member));
    return list;
  }
  if (json.size() == 1 && json.contains("data"))
    return NSData(std::string_view(
        internal::base::bytesOfBase64Text(json["data"].get<std::string>()).value()));
  const auto list = std::make_shared<NSMutableDictionary>();
  for (const auto& [key, member] : json.items()) list->setObject(listOf(member), key);
  return list;
}

class StorePeer : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] NSURL url(const std::string& name) const {
    return NSURL::fileURLWithPath(path(name));
  }
};

TEST_F(StorePeer, ReadsWhatIsWrittenHereAndWritesWhatIsReadHere) {
  const Json entry = {{"user", "ann"}, {"context", {{"data", "Tk9ORQ=="}}}, {"password", "s3"}};
  const std::vector<Json> contents = {
      Json::object(),
      {{"passwords", {{"bank", {entry}}}}},
      {{"passwords", {{"日本 & <co>", {entry, {{"user", "😀"}, {"context", {{"data", ""}}}}}}}},
       {"kept", {{"list", {1, -2, true, "three"}}, {"empty", Json::array()}}},
       {"long", std::string(5000, 'x')}}};
  Json cases = Json::array();
  for (const char* password : {"correct horse", "", "pässwörd",
                               "a password of more than 64 bytes, "
                               "which is hashed before it is used"})
    for (const Json& content : contents) {
      const std::string number = std::to_string(cases.size());
      cases.push_back({{"password", password},
                       {"content", content},
                       {"ours", "ours" + number},
                       {"theirs", "theirs" + number}});
      ASSERT_TRUE(ORLFEncryptedStore::writeEncryptedPropertyList(listOf(content),
                                                                 url("ours" + number), password));
    }
  write("cases.json", cases.dump());
  const std::string program = std::string(ORLF_SOURCE_DIR) + "/tests/security/store_peer.py";
  ASSERT_EQ(std::system(("python3 '" + program + "' '" + folder_.string() + "'").c_str()), 0);
  for (const Json& row : cases) {
    const std::string password = row["password"];
    const NSURL theirs = url(row["theirs"]);
    EXPECT_EQ(ORLFEncryptedStore::readEncryptedPropertyListForFileAtURL(theirs, password),
              listOf(row["content"]));
    EXPECT_EQ(ORLFEncryptedStore::checkPassword(password, theirs), ORLFEncryptedStoreOpens);
  }
}

}  // namespace
}  // namespace ORLFoundation
