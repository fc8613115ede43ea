#include <ORLFoundation/security/keychain/ORLFKeychainAccess.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/keychain/SecItem.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/security/keychain/internal/KeychainLog.h>
#include <ORLFoundation/security/keychain/internal/SharedAccessGroup.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace ORLFoundation {

using namespace internal::keychain;

namespace {

using Text = ORLFKeychainAccess::Text;
using StatusSlot = ORLFKeychainAccess::StatusSlot;

/// Never destroyed, for what runs while the process ends.
SharedAccessGroup& sharedGroup() {
  static auto* const made = new SharedAccessGroup;
  return *made;
}

NSData wipedData(std::string_view text) {
  return NSData::dataWipedAtRelease(std::vector<std::uint8_t>(text.begin(), text.end()));
}

/// nil for what is no data and no UTF-8.
std::optional<std::string> textOf(const id& data) {
  const auto* bytes = data.get<NSData>();
  if (bytes == nullptr || !internal::base::isUTF8(bytes->text())) return std::nullopt;
  return std::string(bytes->text());
}

bool hasText(Text text) { return text && !text->empty(); }

/// Data that may be read after the first unlock.
void addPassword(std::string_view password, NSMutableDictionary& attributes) {
  attributes.setObject(wipedData(password), kSecValueData);
  attributes.setObject(kSecAttrAccessibleAfterFirstUnlock, kSecAttrAccessible);
}

/// One operation from its first step to its last: the store that it asks, the group, its slot.
class Request {
 public:
  explicit Request(StatusSlot slot) : slot_(slot), group_(sharedGroup().name()) {}

  [[nodiscard]] const std::optional<std::string>& group() const { return group_; }

  void finish(OSStatus status) const { slot_.fill(status, store_->backend()); }
  /// Ends with whether the status is success.
  bool succeed(OSStatus status) const {
    finish(status);
    return status == errSecSuccess;
  }
  /// Ends without having asked.
  void refuse(OSStatus status) const { slot_.fill(status, {}); }

  std::optional<std::string> value(const NSDictionary& query, OSStatus& status,
                                   std::string_view name) const {
    id data;
    status = store_->copyMatching(query, data);
    if (status == errSecSuccess) return textOf(data);
    if (status != errSecItemNotFound) logFailure(name, status, query);
    return std::nullopt;
  }

  std::optional<std::string> genericValue(std::string_view key, std::string_view service,
                                          Text accessGroup, OSStatus& status) const {
    const auto query =
        ORLFKeychainAccess::createGenericSearchQueryForKey(key, accessGroup, service);
    query->setObject(true, kSecReturnData);
    return value(*query, status, "SecItemCopyMatching");
  }

  /// The password, key and service are there.
  OSStatus updateGeneric(const ORLFKeychainAccess::GenericPassword& item) const {
    if (!internal::base::isUTF8(*item.password)) return errSecParam;
    const auto freshQuery = [&item] {
      return ORLFKeychainAccess::createGenericSearchQueryForKey(item.key, item.accessGroup,
                                                                item.service);
    };
    id ignored;
    const bool isMissing = store_->copyMatching(*freshQuery(), ignored) == errSecItemNotFound;
    if (isMissing && !item.createIfNeeded) return errSecItemNotFound;
    const auto query = freshQuery();
    NSMutableDictionary attributes;
    addPassword(*item.password, isMissing ? *query : attributes);
    const OSStatus status = isMissing ? store_->add(*query) : store_->update(*query, attributes);
    if (status != errSecSuccess)
      logFailure(isMissing ? "SecItemAdd" : "SecItemUpdate", status, *query);
    return status;
  }

  /// Success too for nothing that is there.
  OSStatus remove(const NSDictionary& query, std::string_view name) const {
    const OSStatus status = store_->remove(query);
    if (status == errSecItemNotFound) return errSecSuccess;
    if (status != errSecSuccess) logFailure(name, status, query);
    return status;
  }

  OSStatus removeGeneric(std::string_view key, std::string_view service, Text accessGroup) const {
    return remove(*ORLFKeychainAccess::createGenericSearchQueryForKey(key, accessGroup, service),
                  "SecItemDelete");
  }

  OSStatus updateWeb(const NSMutableDictionary& query, std::string_view password) const {
    NSMutableDictionary attributes;
    attributes.setObject(wipedData(password), kSecValueData);
    return store_->update(query, attributes);
  }
  OSStatus add(const NSDictionary& attributes) const { return store_->add(attributes); }

 private:
  const StatusSlot slot_;
  const std::optional<std::string> group_;
  const std::shared_ptr<SecItemStore> store_ = SecCurrentItemStore();
};

}  // namespace

void ORLFKeychainStatusSlot::fill(OSStatus status, const SecItemBackend& backend) const {
  if (status_ != nullptr) *status_ = status;
  if (answer_ != nullptr) *answer_ = {status, backend};
}

std::optional<std::string> ORLFKeychainAccess::sharedAccessGroupName() {
  return sharedGroup().name();
}

void ORLFKeychainAccess::setSharedAccessGroupName(Text name) {
  sharedGroup().setName(name ? std::optional<std::string>(*name) : std::nullopt);
}

ORLFKeychainAccess::Query ORLFKeychainAccess::createGenericSearchQueryForKey(Text key,
                                                                             Text accessGroup,
                                                                             Text service) {
  static_cast<void>(sharedGroup().name());
  auto query = std::make_shared<NSMutableDictionary>();
  query->setObject(kSecClassGenericPassword, kSecClass);
  if (key) query->setObject(*key, kSecAttrAccount);
  if (service) query->setObject(*service, kSecAttrService);
  if (accessGroup) {
    query->setObject(*accessGroup, kSecAttrAccessGroup);
    query->setObject(true, kSecUseDataProtectionKeychain);
    query->setObject(true, kSecAttrSynchronizable);
  }
  return query;
}

ORLFKeychainAccess::Query ORLFKeychainAccess::redactSensitiveDataFromSearchQuery(
    const NSDictionary& query) {
  static_cast<void>(sharedGroup().name());
  return withoutAccount(query);
}

std::optional<std::string> ORLFKeychainAccess::securityItemStringValueForQuery(
    const NSDictionary& query, StatusSlot slot) {
  const Request request(slot);
  OSStatus status = errSecSuccess;
  auto text = request.value(query, status, "SecItemCopyMatching");
  request.finish(status);
  return text;
}

std::optional<std::string> ORLFKeychainAccess::findGenericPasswordForKey(Text key, Text service,
                                                                         StatusSlot slot) {
  const Request request(slot);
  if (!key || !service) return std::nullopt;
  OSStatus status = errSecSuccess;
  auto password = request.genericValue(*key, *service, request.group(), status);
  if (!password) {
    password = request.genericValue(*key, *service, std::nullopt, status);
    if (password) {
      status = request.updateGeneric({.password = *password,
                                      .key = key,
                                      .service = service,
                                      .accessGroup = request.group(),
                                      .createIfNeeded = true});
      if (status != errSecSuccess) logStatus("Failed to create item for keychain group", status);
    }
  }
  request.finish(status);
  return password;
}

bool ORLFKeychainAccess::updateGenericPassword(const GenericPassword& item, StatusSlot slot) {
  const Request request(slot);
  if (!item.password || !item.key || !item.service) return false;
  return request.succeed(request.updateGeneric(item));
}

bool ORLFKeychainAccess::updateGenericPassword(Text password, Text forKey, Text service,
                                               bool createIfNeeded, StatusSlot slot) {
  const Request request(slot);
  const bool isComplete = password && forKey && service;
  GenericPassword item{password, forKey, service, request.group(), createIfNeeded};
  OSStatus status = isComplete ? request.updateGeneric(item) : errSecParam;
  if (status != errSecSuccess) {
    logStatus("Updating group item failed returned status error", status);
    if (!isComplete) return false;
    item.accessGroup.reset();
    status = request.updateGeneric(item);
  }
  return request.succeed(status);
}

bool ORLFKeychainAccess::deleteGenericPasswordInGroup(Text key, Text service, Text accessGroup,
                                                      StatusSlot slot) {
  const Request request(slot);
  if (!key || !service) return false;
  return request.succeed(request.removeGeneric(*key, *service, accessGroup));
}

bool ORLFKeychainAccess::deleteGenericPasswordForKey(Text key, Text service, StatusSlot slot) {
  const Request request(slot);
  if (!key || !service) return false;
  const OSStatus outside = request.removeGeneric(*key, *service, std::nullopt);
  const OSStatus inGroup = request.removeGeneric(*key, *service, request.group());
  return request.succeed(inGroup) || outside == errSecSuccess;
}

ORLFKeychainAccess::Query ORLFKeychainAccess::createInternetSearchQueryForUser(
    Text user, Text accessGroup, const std::optional<NSURL>& service) {
  static_cast<void>(sharedGroup().name());
  auto query = std::make_shared<NSMutableDictionary>();
  query->setObject(kSecClassInternetPassword, kSecClass);
  if (hasText(user)) query->setObject(*user, kSecAttrAccount);
  if (hasText(accessGroup)) query->setObject(*accessGroup, kSecAttrAccessGroup);
  const auto host = service ? service->host() : std::nullopt;
  if (hasText(host)) {
    query->setObject(*host, kSecAttrServer);
    const auto scheme = service->scheme();
    if (scheme == "https") query->setObject(kSecAttrProtocolHTTPS, kSecAttrProtocol);
    if (scheme == "http") query->setObject(kSecAttrProtocolHTTP, kSecAttrProtocol);
  }
  query->setObject(true, kSecAttrSynchronizable);
  query->setObject(true, kSecUseDataProtectionKeychain);
  return query;
}

std::optional<std::string> ORLFKeychainAccess::findWebPasswordForUser(
    Text user, const std::optional<NSURL>& service, StatusSlot slot) {
  const Request request(slot);
  if (!user || !service) {
    request.refuse(errSecParam);
    return std::nullopt;
  }
  const auto query = createInternetSearchQueryForUser(user, request.group(), service);
  query->setObject(kSecAttrSynchronizableAny, kSecAttrSynchronizable);
  query->setObject(true, kSecReturnData);
  query->setObject(kSecMatchLimitOne, kSecMatchLimit);
  OSStatus status = errSecSuccess;
  auto password = request.value(*query, status, "findWebPassword");
  request.finish(status);
  return password;
}

bool ORLFKeychainAccess::updateWebPassword(Text password, Text forUser,
                                           const std::optional<NSURL>& service, bool createIfNeeded,
                                           StatusSlot slot) {
  const Request request(slot);
  if (!password || !forUser || !service || !internal::base::isUTF8(*password)) {
    request.refuse(errSecParam);
    return false;
  }
  auto query = createInternetSearchQueryForUser(forUser, request.group(), service);
  OSStatus status = request.updateWeb(*query, *password);
  if (status == errSecItemNotFound && createIfNeeded) {
    query = createInternetSearchQueryForUser(forUser, request.group(), service);
    query->setObject(wipedData(*password), kSecValueData);
    status = request.add(*query);
  }
  if (status != errSecSuccess) logFailure("updateWebPassword", status, *query);
  return request.succeed(status);
}

bool ORLFKeychainAccess::deleteWebPasswordForUser(Text user, const std::optional<NSURL>& service,
                                                  StatusSlot slot) {
  const Request request(slot);
  if (!user || !service) {
    request.refuse(errSecParam);
    return false;
  }
  const auto query = createInternetSearchQueryForUser(user, request.group(), service);
  query->setObject(kSecAttrSynchronizableAny, kSecAttrSynchronizable);
  return request.succeed(request.remove(*query, "deleteWebPassword"));
}

}  // namespace ORLFoundation
