#include <ORLFoundation/security/keychain/internal/SharedAccessGroup.h>

#include <ORLFoundation/platform/keychain/SecTask.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/platform/process/NSBundle.h>

#include <utility>

namespace ORLFoundation::internal::keychain {

std::optional<std::string> sharedGroupAmong(const id& groups,
                                            const std::optional<std::string>& bundleIdentifier) {
  const auto names = groups.as<NSArray>();
  if (!names) return std::nullopt;
  const std::string sought = stringWithFormat("%@.shared", bundleIdentifier);
  for (const id& name : *names) {
    const auto* text = name.get<std::string>();
    if (text != nullptr && text->find(sought) != std::string::npos) return *text;
  }
  return std::nullopt;
}

void SharedAccessGroup::readOnce() {
  if (isRead_) return;
  name_ = sharedGroupAmong(
      SecTaskCopyValueForEntitlement(*SecTaskCreateFromSelf(), "keychain-access-groups"),
      NSBundle::mainBundle()->bundleIdentifier());
  isRead_ = true;
}

std::optional<std::string> SharedAccessGroup::name() {
  const std::lock_guard guard(lock_);
  readOnce();
  return name_;
}

void SharedAccessGroup::setName(std::optional<std::string> name) {
  const std::lock_guard guard(lock_);
  readOnce();
  name_ = std::move(name);
}

}  // namespace ORLFoundation::internal::keychain
