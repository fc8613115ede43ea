/// What the security services answer, and how it reads.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// 0 is success; failures are negative.
using OSStatus = std::int32_t;

inline constexpr std::string_view NSOSStatusErrorDomain = "NSOSStatusErrorDomain";

/// The statuses that this library gives.
enum SecStatus : OSStatus {
  errSecSuccess = 0,
  errSecIO = -36,                        ///< The backend failed in some other way.
  errSecParam = -50,                     ///< An argument or attribute that cannot be.
  errSecUserCanceled = -128,             ///< The user dismissed a prompt.
  errSecNotAvailable = -25291,           ///< No keychain, or none that answers.
  errSecAuthFailed = -25293,             ///< The keychain denies access.
  errSecDuplicateItem = -25299,          ///< Such an item stands there already.
  errSecItemNotFound = -25300,           ///< No item matches.
  errSecNoDefaultKeychain = -25307,      ///< The service has no lasting place for items.
  errSecInteractionNotAllowed = -25308,  ///< Locked, and nobody can be asked.
  errSecUnsupportedKeyType = -67734,     ///< A key that is no public RSA key.
};

/// `SecCopyErrorMessageString`  A sentence for people; "OSStatus 7" for a status that is not in the
/// table.
[[nodiscard]] std::string SecCopyErrorMessageString(OSStatus status);

}  // namespace ORLFoundation
