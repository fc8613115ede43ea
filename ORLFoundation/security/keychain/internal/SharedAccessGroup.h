/// The name of the access group that a program shares with its sister programs.
#pragma once

#include <ORLFoundation/platform/object/Id.h>

#include <mutex>
#include <optional>
#include <string>

namespace ORLFoundation::internal::keychain {

/// The first text of the array `groups` that contains the bundle's identifier with ".shared" behind
/// it; nil for none and for what is no array.
[[nodiscard]] std::optional<std::string> sharedGroupAmong(
    const id& groups, const std::optional<std::string>& bundleIdentifier);

/// Reads the task's entitlement and the main bundle's identifier at the first call of either
/// operation, and never again.
class SharedAccessGroup {
 public:
  [[nodiscard]] std::optional<std::string> name();
  void setName(std::optional<std::string> name);

 private:
  /// With lock_ held.
  void readOnce();

  std::mutex lock_;
  bool isRead_ = false;
  std::optional<std::string> name_;
};

}  // namespace ORLFoundation::internal::keychain
