/// The collection of the Secret Service into which items go, for one operation of a store.
#pragma once

#include <ORLFoundation/bridges/libsecret/internal/ServiceConnection.h>
#include <ORLFoundation/bridges/libsecret/internal/StoredItem.h>

#include <string>
#include <vector>

namespace ORLFoundation::internal::libsecret {

/// Every operation throws `StatusFailure` where it fails.
class DefaultCollection {
 public:
  /// Unlocks it. Fails with `errSecNoDefaultKeychain` where there is none that lasts.
  DefaultCollection(const ServiceConnection& connection, GCancellable* cancellable);

  /// In the order of addition, without their data.
  [[nodiscard]] std::vector<StoredItem> find(const keychain::ItemQuery& query) const;
  /// Reads its data.
  void load(StoredItem& item) const;
  void create(const keychain::ItemRecord& record) const;
  void change(StoredItem& item, const keychain::ItemChange& change) const;
  void erase(const StoredItem& item) const;

 private:
  void unlock(const std::string& path) const;
  [[nodiscard]] bool isLocked() const;
  [[nodiscard]] StoredItem itemAt(const char* path) const;

  const ServiceConnection& connection_;
  GCancellable* const cancellable_;
  std::string path_;
};

}  // namespace ORLFoundation::internal::libsecret
