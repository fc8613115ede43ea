/// Where keychain items are kept: an interface with four operations, and the door behind which the
/// store of this process stands. Nothing stands there until a host puts a store in, so that no
/// secret gets lost, or onto a disk, by an oversight.
///
///     SecSetItemStore(SecItemStoreNamed("in-process"));  // forgets all at its end
#pragma once

#include <ORLFoundation/platform/crypto/SecBase.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// Whether what is kept lies on a disk in the clear.
enum SecItemEncryption : std::uint8_t {
  SecItemEncryptionUnknown = 0,      ///< The backend does not tell.
  SecItemEncryptionNothingKept = 1,  ///< Nothing lies on any disk.
};

/// Who answers, and how strong that is.
struct SecItemBackend {
  /// "secret-service", "in-process", "none"; "" where none was asked.
  std::string name;
  /// Whether items outlive the process and the session.
  bool isLasting = false;
  SecItemEncryption encryptionAtRest = SecItemEncryptionUnknown;

  /// "secret-service (lasting, encryption at rest unknown)"
  [[nodiscard]] std::string description() const;
  friend bool operator==(const SecItemBackend&, const SecItemBackend&) = default;
};

/// Queries name attributes of SecItem.h. An item matches when its class, account, service, server,
/// protocol and access group equal those that the query names, and it is synchronizable as the
/// query says: `kSecAttrSynchronizableAny` stands for both, and a query that does not say means
/// items that are not. The rest of a query does not matter for matching. A query without any of
/// them means all items.
///
/// All are safe on any thread and may block. `errSecParam` for a key that SecItem.h does not have
/// and a value that cannot stand under its key.
class SecItemStore {
 public:
  virtual ~SecItemStore() = default;

  [[nodiscard]] virtual SecItemBackend backend() const = 0;

  /// `SecItemCopyMatching`  The first match in the order of addition, or with `kSecMatchLimitAll`
  /// an array of all: data with `kSecReturnData`, a dictionary with `kSecReturnAttributes` (the
  /// data in it where both are asked for), nil with neither. `errSecItemNotFound` when none
  /// matches. `result` is nil unless the status is 0.
  [[nodiscard]] virtual OSStatus copyMatching(const NSDictionary& query, id& result) = 0;
  /// `SecItemAdd`  `errSecDuplicateItem` when an item stands there that is equal in class, account,
  /// service, server, protocol, access group and in being synchronizable, where naming none counts
  /// as equal to naming none. An item without data has empty data.
  [[nodiscard]] virtual OSStatus add(const NSDictionary& attributes) = 0;
  /// `SecItemUpdate`  Gives every match the data and the accessibility of `attributesToUpdate`,
  /// which may name one or both and nothing else. `errSecItemNotFound` when none matches.
  [[nodiscard]] virtual OSStatus update(const NSDictionary& query,
                                        const NSDictionary& attributesToUpdate) = 0;
  /// `SecItemDelete`  Removes every match. `errSecItemNotFound` when none matches.
  [[nodiscard]] virtual OSStatus remove(const NSDictionary& query) = 0;
};

/// Answers every call with one status, as a keychain does that is missing or refuses.
class SecFailingItemStore final : public SecItemStore {
 public:
  explicit SecFailingItemStore(OSStatus status = errSecNotAvailable) : status_(status) {}

  /// "none", which keeps nothing.
  [[nodiscard]] SecItemBackend backend() const override;
  [[nodiscard]] OSStatus copyMatching(const NSDictionary& query, id& result) override;
  [[nodiscard]] OSStatus add(const NSDictionary& attributes) override;
  [[nodiscard]] OSStatus update(const NSDictionary& query,
                                const NSDictionary& attributesToUpdate) override;
  [[nodiscard]] OSStatus remove(const NSDictionary& query) override;

 private:
  const OSStatus status_;
};

/// The store in use, never null; "none", which answers `errSecNotAvailable`, until one is put in.
[[nodiscard]] std::shared_ptr<SecItemStore> SecCurrentItemStore();
/// Puts a store in use and gives back the one before it; null stands for "none". Safe on any
/// thread.
std::shared_ptr<SecItemStore> SecSetItemStore(std::shared_ptr<SecItemStore> store);

/// Makes a store; called anew for each that is asked for.
using SecItemStoreMaker = std::function<std::shared_ptr<SecItemStore>()>;
/// Has a configuration name a store, in place of what had the name before. "in-process" and "none"
/// are there from the start.
void SecRegisterItemStore(std::string_view name, SecItemStoreMaker maker);
/// A new store of that name; null for a name that is not known.
[[nodiscard]] std::shared_ptr<SecItemStore> SecItemStoreNamed(std::string_view name);
/// The names that are known, in alphabetical order.
[[nodiscard]] std::vector<std::string> SecItemStoreNames();

}  // namespace ORLFoundation
