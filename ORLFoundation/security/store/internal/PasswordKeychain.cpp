#include <ORLFoundation/security/store/internal/PasswordKeychain.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/security/keychain/ORLFKeychainAccess.h>

#include <utility>

namespace ORLFoundation::internal::store {
namespace {

class SystemKeychain final : public PasswordKeychain {
 public:
  std::optional<std::string> find(const std::string& user, const std::string& service) override {
    return ORLFKeychainAccess::findGenericPasswordForKey(user, service);
  }
  bool update(const std::string& password, const std::string& user, const std::string& service,
              std::int32_t* status) override {
    return ORLFKeychainAccess::updateGenericPassword(password, user, service, true, status);
  }
};

constinit base::Replaceable<PasswordKeychain> keychains([]() -> std::shared_ptr<PasswordKeychain> {
  return std::make_shared<SystemKeychain>();
});

}  // namespace

std::shared_ptr<PasswordKeychain> PasswordKeychain::current() { return keychains.current(); }

std::shared_ptr<PasswordKeychain> PasswordKeychain::exchange(
    std::shared_ptr<PasswordKeychain> keychain) {
  return keychains.exchangeMade(std::move(keychain));
}

}  // namespace ORLFoundation::internal::store
