#include <ORLFoundation/bridges/libsecret/internal/SecretServiceStatus.h>

#include <ORLFoundation/bridges/libsecret/internal/PromptingService.h>

namespace ORLFoundation::internal::libsecret {
namespace {

struct Meaning {
  GQuark (*domain)();
  int code;
  OSStatus status;
};

const Meaning kMeanings[] = {
    {&promptErrorDomain, kPromptRefused, errSecInteractionNotAllowed},
    {&promptErrorDomain, kPromptDismissed, errSecUserCanceled},
    {&secret_error_get_quark, SECRET_ERROR_IS_LOCKED, errSecInteractionNotAllowed},
    {&secret_error_get_quark, SECRET_ERROR_NO_SUCH_OBJECT, errSecItemNotFound},
    // The deadline alone cancels.
    {&g_io_error_quark, G_IO_ERROR_CANCELLED, errSecNotAvailable},
    {&g_io_error_quark, G_IO_ERROR_TIMED_OUT, errSecNotAvailable},
    {&g_io_error_quark, G_IO_ERROR_CLOSED, errSecNotAvailable},
    {&g_io_error_quark, G_IO_ERROR_CONNECTION_REFUSED, errSecNotAvailable},
    {&g_io_error_quark, G_IO_ERROR_BROKEN_PIPE, errSecNotAvailable},
    {&g_io_error_quark, G_IO_ERROR_NOT_FOUND, errSecNotAvailable},
    {&g_io_error_quark, G_IO_ERROR_PERMISSION_DENIED, errSecAuthFailed},
    {&g_dbus_error_quark, G_DBUS_ERROR_SERVICE_UNKNOWN, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_NAME_HAS_NO_OWNER, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_NO_REPLY, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_NO_SERVER, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_TIMEOUT, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_TIMED_OUT, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_DISCONNECTED, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_SPAWN_EXEC_FAILED, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_SPAWN_CHILD_EXITED, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_SPAWN_CHILD_SIGNALED, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_SPAWN_FAILED, errSecNotAvailable},
    {&g_dbus_error_quark, G_DBUS_ERROR_ACCESS_DENIED, errSecAuthFailed},
    {&g_dbus_error_quark, G_DBUS_ERROR_AUTH_FAILED, errSecAuthFailed},
};

}  // namespace

OSStatus statusOfError(const GError& error) {
  for (const Meaning& meaning : kMeanings)
    if (g_error_matches(&error, meaning.domain(), meaning.code) != FALSE) return meaning.status;
  return errSecIO;
}

}  // namespace ORLFoundation::internal::libsecret
