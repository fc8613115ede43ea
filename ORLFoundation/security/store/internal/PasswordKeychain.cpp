#include <ORLFoundation/security/store/internal/PasswordKeychain.h>

#include <ORLFoundation/platform/base/Replaceable.h>

#include <utility>

namespace ORLFoundation::internal::store {
namespace {

constexpr std::int32_t kNotAvailable = -25291;

/// Holds nothing and takes nothing.
class AbsentKeychain final : public PasswordKeychain {
 public:
  std::optional<std::string> find(const std::string& /*user*/,
                                  const std::string& /*service*/) override {
    return std::nullopt;
  }
  bool update(const std::string& /*password*/, const std::string& /*user*/,
              const std::string& /*service*/, std::int32_t* status) override {
    if (status != nullptr) *status = kNotAvailable;
    return false;
  }
};

constinit base::Replaceable<PasswordKeychain> keychains([]() -> std::shared_ptr<PasswordKeychain> {
  return std::make_shared<AbsentKeychain>();
});

}  // namespace

std::shared_ptr<PasswordKeychain> PasswordKeychain::current() { return keychains.current(); }

std::shared_ptr<PasswordKeychain> PasswordKeychain::exchange(
    std::shared_ptr<PasswordKeychain> keychain) {
  return keychains.exchangeMade(std::move(keychain));
}

}  // namespace ORLFoundation::internal::store
