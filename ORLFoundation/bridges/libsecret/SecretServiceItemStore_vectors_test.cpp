#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>

#include <ORLFoundation/bridges/libsecret/PrivateSession_testing.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess_testing.h>
#include <gtest/gtest.h>

#include <iostream>

namespace ORLFoundation {
namespace {

using orlftest::Json;

/// The rows in which no call is made to fail, over the real daemon.
class SecretServiceScripts : public testing::TestWithParam<const char*> {};
TEST_P(SecretServiceScripts, AgreeWithVectors) {
  const PrivateSessionBus bus;
  const PrivateKeyring keyring(bus);
  SecretServiceItemStore store;
  const auto all = secQuery({{kSecAttrSynchronizable, kSecAttrSynchronizableAny}});
  int runs = 0;
  orlftest::runJsonVectors(GetParam(),
                           {{"script", [&](const Json& in, const Json& out) -> std::string {
                               if (in.contains("fail")) return {};
                               ++runs;
                               std::string told;
                               {
                                 KeychainScript script(store, in, KeychainScript::Slot::answer);
                                 told = script.run(in, out);
                               }
                               static_cast<void>(store.remove(*all));
                               return told;
                             }}});
  EXPECT_GE(runs, 90);
  std::cout << GetParam() << ": " << runs << " of them over the Secret Service\n";
}
INSTANTIATE_TEST_SUITE_P(All, SecretServiceScripts,
                         testing::Values("keychain_generic", "keychain_web", "keychain_mixed"));

}  // namespace
}  // namespace ORLFoundation
