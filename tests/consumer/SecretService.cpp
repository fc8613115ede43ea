#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess.h>

#include <iostream>
#include <memory>

// Who would answer, without asking.
int main() {
  using namespace ORLFoundation;
  SecSetItemStore(std::make_shared<SecretServiceItemStore>());
  std::cout << SecCurrentItemStore()->backend().description() << '\n';
  OSStatus status = 0;
  return ORLFKeychainAccess::findGenericPasswordForKey("none", "none", &status) ? 1 : 0;
}
