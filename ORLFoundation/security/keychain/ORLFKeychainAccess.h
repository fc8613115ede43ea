/// Passwords in the keychain: generic ones, by key and service, and those of web sites, by user and
/// address. Generic passwords move from the program's own keychain into the group that it shares
/// with its sister programs: they are looked for in the group first, then outside, and what is
/// found outside is copied into the group.
///
///     ORLFKeychainAnswer answer;
///     const auto pin = ORLFKeychainAccess::findGenericPasswordForKey("anna", "bank", &answer);
///     NSLog(answer.backend.description());  // "in-process (not lasting, ...)"
///
/// Nothing is kept until a host puts a store in (SecItemStore.h). A log line never holds a user
/// name or a password.
#pragma once

#include <ORLFoundation/platform/keychain/SecItemStore.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// What an operation came to, and who answered.
struct ORLFKeychainAnswer {
  OSStatus status = errSecSuccess;
  /// Without a name where no store was asked.
  SecItemBackend backend = {};
};

/// Where an operation leaves its status: a number, an answer, or nothing. Arguments that are nil
/// leave the slot as it is, or put `errSecParam` into it, as each operation says.
class ORLFKeychainStatusSlot {
 public:
  // Implicit, so that a pointer or null stands wherever a slot is asked for.
  ORLFKeychainStatusSlot(std::nullptr_t = nullptr) noexcept {}
  ORLFKeychainStatusSlot(OSStatus* status) noexcept : status_(status) {}
  ORLFKeychainStatusSlot(ORLFKeychainAnswer* answer) noexcept : answer_(answer) {}

  void fill(OSStatus status, const SecItemBackend& backend) const;

 private:
  OSStatus* status_ = nullptr;
  ORLFKeychainAnswer* answer_ = nullptr;
};

/// Class operations alone. Each asks one store, the one in use when it begins; they may block, and
/// hold no lock while they ask. Safe on any thread.
class ORLFKeychainAccess final {
 public:
  using Text = std::optional<std::string_view>;
  using Query = std::shared_ptr<NSMutableDictionary>;
  using StatusSlot = ORLFKeychainStatusSlot;

  ORLFKeychainAccess() = delete;

  /// `sharedAccessGroupName`, `setSharedAccessGroupName:`  One name for the process, nil for none.
  /// When the class is first used it is taken from the task's entitlement
  /// "keychain-access-groups" (SecTask.h): the first group whose name contains the main bundle's
  /// identifier with ".shared" behind it.
  [[nodiscard]] static std::optional<std::string> sharedAccessGroupName();
  static void setSharedAccessGroupName(Text name);

  /// `createGenericSearchQueryForKey:accessGroup:service:`  A query for generic passwords: the key
  /// as account, and the service. With a group, the group, synchronizable and in the
  /// data-protection keychain; so items of a group synchronize, and those outside do not. A nil key
  /// or service is left out.
  [[nodiscard]] static Query createGenericSearchQueryForKey(Text key, Text accessGroup,
                                                            Text service);
  /// `redactSensitiveDataFromSearchQuery:`  A copy in which the account, if there is one, is
  /// "REDACTED"; for logs.
  [[nodiscard]] static Query redactSensitiveDataFromSearchQuery(const NSDictionary& query);
  /// `securityItemStringValueForQuery:status:`  The data that the query finds, as text; nil when
  /// nothing is found, when the store fails, which is logged, and for data that is no UTF-8.
  [[nodiscard]] static std::optional<std::string> securityItemStringValueForQuery(
      const NSDictionary& query, StatusSlot status = {});

  /// `findGenericPasswordForKey:service:status:`  The password in the shared group, else the one
  /// outside, which then is put into the group too; a failure of that is logged, and the password
  /// given all the same. Nothing in the group stands for any failure there. The status is that of
  /// the last of these steps. nil for a nil key or service, the slot stays as it is.
  [[nodiscard]] static std::optional<std::string> findGenericPasswordForKey(Text key, Text service,
                                                                            StatusSlot status = {});

  struct GenericPassword {
    Text password;
    Text key;
    Text service;
    Text accessGroup;
    bool createIfNeeded;
  };
  /// `updateGenericPassword:forKey:service:accessGroup:createIfNeeded:status:`  Gives the item that
  /// password, readable after the first unlock; makes it where it is missing, if wanted, else
  /// `errSecItemNotFound`. Whether that was done. A nil password, key or service: false, the slot
  /// stays as it is. A password that is no UTF-8: false with `errSecParam`.
  static bool updateGenericPassword(const GenericPassword& item, StatusSlot status = {});
  /// `updateGenericPassword:forKey:service:createIfNeeded:status:`  The same in the shared group,
  /// and when that fails, which is logged, outside of it.
  static bool updateGenericPassword(Text password, Text forKey, Text service, bool createIfNeeded,
                                    StatusSlot status = {});

  /// `deleteGenericPasswordForKey:service:accessGroup:status:`  True when nothing is left, also
  /// when nothing was there. A nil key or service: false, the slot stays as it is.
  static bool deleteGenericPasswordInGroup(Text key, Text service, Text accessGroup,
                                           StatusSlot status = {});
  /// `deleteGenericPasswordForKey:service:status:`  Outside of the shared group and then in it,
  /// both in any case. True when either was done; the status is that of the second.
  static bool deleteGenericPasswordForKey(Text key, Text service, StatusSlot status = {});

  /// `createInternetSearchQueryForUser:accessGroup:service:`  A query for passwords of web sites:
  /// user, group and the address's host, each unless it is nil or empty; with a host also the
  /// protocol, for the schemes "https" and "http". Always synchronizable and in the data-protection
  /// keychain.
  [[nodiscard]] static Query createInternetSearchQueryForUser(Text user, Text accessGroup,
                                                              const std::optional<NSURL>& service);
  /// `findWebPasswordForUser:service:status:`  In the shared group, synchronizable or not. nil when
  /// nothing is found, when the store fails, which is logged, and for data that is no UTF-8.
  [[nodiscard]] static std::optional<std::string> findWebPasswordForUser(
      Text user, const std::optional<NSURL>& service, StatusSlot status = {});
  /// `updateWebPassword:forUser:service:createIfNeeded:status:`  Gives the item in the shared group
  /// that password, or makes it, if wanted. Any other status than 0 is logged.
  static bool updateWebPassword(Text password, Text forUser, const std::optional<NSURL>& service,
                                bool createIfNeeded, StatusSlot status = {});
  /// `deleteWebPasswordForUser:service:status:`  In the shared group, synchronizable or not. True
  /// when nothing is left, also when nothing was there.
  ///
  /// These three: `errSecParam` for a nil user, address or password, and for a password that is no
  /// UTF-8.
  static bool deleteWebPasswordForUser(Text user, const std::optional<NSURL>& service,
                                       StatusSlot status = {});
};

}  // namespace ORLFoundation
