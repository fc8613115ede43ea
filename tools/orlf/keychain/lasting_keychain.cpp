#include "keychain/lasting_keychain.h"

#include <algorithm>
#include <vector>

#include "cli/failure.h"
#include "cli/message_text.h"

namespace orlftool {

using namespace ORLFoundation;

std::shared_ptr<SecItemStore> lastingKeychainNamed(const std::string& name) {
  auto store = SecItemStoreNamed(name);
  if (!store && name == kUsualKeychain)
    throw JobFailure("this orlf was built without libsecret: it has no keychain that lasts");
  if (!store)
    throw UsageFailure("--backend: expected " + joinedWithAnd(SecItemStoreNames()) + ", got " +
                       quotedForMessage(name));
  if (!store->backend().isLasting)
    throw JobFailure("the keychain " + store->backend().description() +
                     " would lose the password: refused");
  return store;
}

}  // namespace orlftool
