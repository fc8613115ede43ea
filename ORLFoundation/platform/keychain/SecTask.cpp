#include <ORLFoundation/platform/keychain/SecTask.h>

#include <ORLFoundation/platform/base/Replaceable.h>

namespace ORLFoundation {
namespace {

constinit internal::base::Replaceable<const NSDictionary> taskEntitlements;

}  // namespace

std::shared_ptr<SecTask> SecTaskCreateFromSelf() {
  return std::make_shared<SecTask>(taskEntitlements.current());
}

id SecTaskCopyValueForEntitlement(const SecTask& task, std::string_view entitlement, NSErrorSlot) {
  return task.entitlements() ? task.entitlements()->objectForKey(entitlement) : id();
}

std::shared_ptr<const NSDictionary> SecSetTaskEntitlements(
    std::shared_ptr<const NSDictionary> entitlements) {
  return taskEntitlements.exchange(std::move(entitlements));
}

}  // namespace ORLFoundation
