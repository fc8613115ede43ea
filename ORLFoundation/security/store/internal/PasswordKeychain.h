/// The keychain as a store sees it: generic passwords by user and service.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation::internal::store {

class PasswordKeychain {
 public:
  virtual ~PasswordKeychain() = default;

  /// nil where there is none.
  [[nodiscard]] virtual std::optional<std::string> find(const std::string& user,
                                                        const std::string& service) = 0;
  /// Adds or changes a password. The status goes to the slot, where there is one.
  [[nodiscard]] virtual bool update(const std::string& password, const std::string& user,
                                    const std::string& service, std::int32_t* status) = 0;

  /// The one in use: `ORLFKeychainAccess` by default.
  [[nodiscard]] static std::shared_ptr<PasswordKeychain> current();
  /// Puts another in its place, null for the default, and gives back the one before.
  static std::shared_ptr<PasswordKeychain> exchange(std::shared_ptr<PasswordKeychain> keychain);
};

}  // namespace ORLFoundation::internal::store
