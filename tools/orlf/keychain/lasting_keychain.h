/// The keychain that the tool may keep passwords in: one that outlives it.
#pragma once

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/keychain/SecItemStore.h>

#include <memory>
#include <string>

namespace orlftool {

/// The name that holds where none is given.
inline constexpr const char* kUsualKeychain = "secret-service";

/// A store of that name. Throws UsageFailure for a name that is not known, and JobFailure for a
/// store that does not last, and for the usual one where this tool was built without it.
[[nodiscard]] std::shared_ptr<ORLFoundation::SecItemStore> lastingKeychainNamed(
    const std::string& name);

/// While it lives, the library's operations ask such a store.
class LastingKeychain {
 public:
  explicit LastingKeychain(const std::string& name = kUsualKeychain)
      : inUse_(&ORLFoundation::SecSetItemStore, lastingKeychainNamed(name)) {}

 private:
  const ORLFoundation::Replaced<std::shared_ptr<ORLFoundation::SecItemStore>> inUse_;
};

}  // namespace orlftool
