#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>
#include <ORLFoundation/platform/keychain/SecTask.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess_testing.h>
#include <ORLFoundation/security/keychain/internal/SharedAccessGroup.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using orlftest::textOrNil;

std::string runScript(const Json& in, const Json& out) {
  using Slot = KeychainScript::Slot;
  for (const Slot slot : {Slot::status, Slot::answer, Slot::none}) {
    SecInProcessItemStore store;
    KeychainScript script(store, in, slot);
    if (std::string told = script.run(in, out); !told.empty()) return told;
  }
  return {};
}

class KeychainScripts : public testing::TestWithParam<const char*> {};
TEST_P(KeychainScripts, AgreeWithVectors) {
  orlftest::runJsonVectors(GetParam(), {{"script", &runScript}});
}
INSTANTIATE_TEST_SUITE_P(All, KeychainScripts,
                         testing::Values("keychain_generic", "keychain_web", "keychain_mixed"));

std::string queryDisagreement(const Json& expected, const NSDictionary& query) {
  return disagreement(expected.dump(), keychainAttributesToVector(query).dump());
}

TEST(ORLFKeychainAccess, AgreesWithVectorsOfQueries) {
  orlftest::runJsonVectors(
      "keychain_queries",
      {{"genericQuery",
        [](const Json& in, const Json& out) {
          const auto key = textOrNil(in.at("key"));
          const auto group = textOrNil(in.at("group"));
          const auto service = textOrNil(in.at("service"));
          return queryDisagreement(
              out, *ORLFKeychainAccess::createGenericSearchQueryForKey(key, group, service));
        }},
       {"internetQuery",
        [](const Json& in, const Json& out) {
          const auto user = textOrNil(in.at("user"));
          const auto group = textOrNil(in.at("group"));
          const auto url = textOrNil(in.at("url"));
          return queryDisagreement(
              out, *ORLFKeychainAccess::createInternetSearchQueryForUser(
                       user, group, url ? NSURL::URLWithString(*url) : std::nullopt));
        }},
       {"redact", [](const Json& in, const Json& out) {
          const auto query = keychainAttributesFromVector(in);
          const auto redacted = ORLFKeychainAccess::redactSensitiveDataFromSearchQuery(*query);
          std::string told = queryDisagreement(in, *query);
          return told.empty() ? queryDisagreement(out, *redacted) : told;
        }}});
}

/// What an entitlement may hold: texts, numbers and lists of them.
id entitlementOf(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>();
  if (!value.is_array()) return value.get<std::int64_t>();
  std::vector<id> members;
  for (const Json& member : value) members.push_back(entitlementOf(member));
  return std::make_shared<NSArray>(members);
}

TEST(ORLFKeychainAccess, AgreesWithVectorsOfTheSharedGroup) {
  orlftest::runJsonVectors(
      "keychain_group",
      {{"sharedAccessGroupName", [](const Json& in, const Json& out) {
          NSMutableDictionary entitlements;
          if (!in.at("groups").is_null())
            entitlements.setObject(entitlementOf(in.at("groups")), "keychain-access-groups");
          const Replaced<std::shared_ptr<const NSDictionary>> entitled(
              &SecSetTaskEntitlements, std::make_shared<NSDictionary>(entitlements.entries()));
          NSMutableDictionary information;
          if (const auto identifier = textOrNil(in.at("bundleIdentifier")))
            information.setObject(*identifier, kCFBundleIdentifierKey);
          NSBundle::mainBundle()->setInfoDictionary(information);
          internal::keychain::SharedAccessGroup group;
          const auto name = group.name();
          NSBundle::mainBundle()->setInfoDictionary(NSDictionary());
          return disagreement(textOrNil(out), name);
        }}});
}

}  // namespace
}  // namespace ORLFoundation
