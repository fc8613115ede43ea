#include <ORLFoundation/platform/crypto/SecBase.h>

namespace ORLFoundation {
namespace {

struct Message {
  SecStatus status;
  std::string_view text;
};

constexpr Message kMessages[] = {
    {errSecSuccess, "No error."},
    {errSecIO, "The keychain could not do it."},
    {errSecParam, "An argument or attribute is one that the keychain cannot take."},
    {errSecUserCanceled, "The keychain's prompt was dismissed."},
    {errSecNotAvailable, "No keychain is available."},
    {errSecAuthFailed, "The keychain denies access."},
    {errSecDuplicateItem, "The keychain holds such an item already."},
    {errSecItemNotFound, "The keychain holds no such item."},
    {errSecNoDefaultKeychain, "There is no default keychain that lasts."},
    {errSecInteractionNotAllowed, "The keychain is locked, and nobody can be asked to unlock it."},
    {errSecUnsupportedKeyType, "The key is of a type that is not supported."},
};

}  // namespace

std::string SecCopyErrorMessageString(OSStatus status) {
  for (const Message& message : kMessages)
    if (message.status == status) return std::string(message.text);
  return "OSStatus " + std::to_string(status);
}

}  // namespace ORLFoundation
