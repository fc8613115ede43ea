/// The running task and what its signer entitled it to. No signature is read here: the host says
/// what the entitlements are.
///
///     SecSetTaskEntitlements(NSDictionary::dictionaryWithEntries(
///         {{"keychain-access-groups",
///           NSArray::arrayWithObjects({"TEAM.com.example.accounts.shared"})}}));
///     const id groups = SecTaskCopyValueForEntitlement(*SecTaskCreateFromSelf(),
///                                                      "keychain-access-groups");
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

/// What the task was entitled to when this was made.
class SecTask final : public NSObject {
 public:
  /// null stands for no entitlements.
  explicit SecTask(std::shared_ptr<const NSDictionary> entitlements)
      : entitlements_(std::move(entitlements)) {}

  [[nodiscard]] const std::shared_ptr<const NSDictionary>& entitlements() const noexcept {
    return entitlements_;
  }

  [[nodiscard]] std::string className() const override { return "SecTask"; }

 private:
  const std::shared_ptr<const NSDictionary> entitlements_;
};

/// `SecTaskCreateFromSelf`  The running task, never null.
[[nodiscard]] std::shared_ptr<SecTask> SecTaskCreateFromSelf();
/// `SecTaskCopyValueForEntitlement`  nil for an entitlement that the task does not have, which is
/// no error: the slot stays as it is.
[[nodiscard]] id SecTaskCopyValueForEntitlement(const SecTask& task, std::string_view entitlement,
                                                NSErrorSlot error = nullptr);
/// Says what the running task is entitled to, and gives back what was said before; null stands for
/// nothing. What the entitlements hold is not changed afterwards. Safe on any thread.
std::shared_ptr<const NSDictionary> SecSetTaskEntitlements(
    std::shared_ptr<const NSDictionary> entitlements);

}  // namespace ORLFoundation
