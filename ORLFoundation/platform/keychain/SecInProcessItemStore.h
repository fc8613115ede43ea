/// Keychain items in memory, for tests and for machines without a keychain that may forget.
#pragma once

#include <ORLFoundation/platform/keychain/SecItemStore.h>

#include <memory>

namespace ORLFoundation {

/// Keeps items as long as it lives, and nothing on a disk; their data is wiped when it goes.
class SecInProcessItemStore final : public SecItemStore {
 public:
  SecInProcessItemStore();
  ~SecInProcessItemStore() override;

  /// "in-process", which does not last.
  [[nodiscard]] SecItemBackend backend() const override;
  [[nodiscard]] OSStatus copyMatching(const NSDictionary& query, id& result) override;
  [[nodiscard]] OSStatus add(const NSDictionary& attributes) override;
  [[nodiscard]] OSStatus update(const NSDictionary& query,
                                const NSDictionary& attributesToUpdate) override;
  [[nodiscard]] OSStatus remove(const NSDictionary& query) override;

 private:
  struct Items;
  const std::unique_ptr<Items> items_;
};

}  // namespace ORLFoundation
