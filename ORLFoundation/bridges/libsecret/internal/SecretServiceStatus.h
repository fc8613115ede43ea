/// Errors of GLib, D-Bus and libsecret as statuses of the keychain.
#pragma once

#include <ORLFoundation/platform/crypto/SecBase.h>
#include <glib.h>

#include <stdexcept>

namespace ORLFoundation::internal::libsecret {

/// `errSecIO` for errors that mean nothing particular.
[[nodiscard]] OSStatus statusOfError(const GError& error);

/// Ends an operation with a status.
struct StatusFailure : std::runtime_error {
  explicit StatusFailure(OSStatus failure)
      : std::runtime_error("the Secret Service failed"), status(failure) {}
  OSStatus status;
};

}  // namespace ORLFoundation::internal::libsecret
