#include <ORLFoundation/security/keychain/internal/KeychainLog.h>

#include <ORLFoundation/platform/keychain/SecItem.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/object/NSString.h>

#include <string>

namespace ORLFoundation::internal::keychain {
namespace {

constexpr std::string_view kRedacted = "REDACTED";

/// Services and servers may be called after the user.
void redactTextsWith(const std::string& account, NSMutableDictionary& query) {
  for (const auto& [key, value] : query.entries()) {
    const auto* text = value.get<std::string>();
    if (text != nullptr && text->find(account) != std::string::npos)
      query.setObject(kRedacted, key);
  }
}

std::shared_ptr<NSMutableDictionary> forLog(const NSDictionary& query) {
  auto shown = withoutAccount(query);
  if (shown->objectForKey(kSecValueData)) shown->setObject(kRedacted, kSecValueData);
  const id account = query.objectForKey(kSecAttrAccount);
  const auto* text = account.get<std::string>();
  if (text != nullptr && !text->empty()) redactTextsWith(*text, *shown);
  return shown;
}

}  // namespace

std::shared_ptr<NSMutableDictionary> withoutAccount(const NSDictionary& query) {
  auto copy = std::make_shared<NSMutableDictionary>(query.entries());
  if (copy->objectForKey(kSecAttrAccount)) copy->setObject(kRedacted, kSecAttrAccount);
  return copy;
}

void logStatus(std::string_view what, OSStatus status) {
  NSLog(stringWithFormat("%@: %d", what, status));
}

void logFailure(std::string_view what, OSStatus status, const NSDictionary& query) {
  NSLog(stringWithFormat("%@ returned error: %d\nFor Query: %@", what, status, forLog(query)));
}

}  // namespace ORLFoundation::internal::keychain
