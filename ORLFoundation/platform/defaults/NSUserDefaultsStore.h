/// Where the settings that a user has made are kept between runs: one dictionary of values under
/// text keys. `NSUserDefaultsFile` keeps them in a file; the two stores here keep nothing on disk
/// and serve tests, of the library and of its users.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <map>
#include <memory>
#include <string>

namespace ORLFoundation {

class NSDictionary;

/// New values under keys; nil removes a key.
using NSUserDefaultsChanges = std::map<std::string, id, std::less<>>;

class NSUserDefaultsStore {
 public:
  virtual ~NSUserDefaultsStore() = default;

  /// What is kept. null and an error when it cannot be read; nothing and an error when it can be
  /// read and makes no sense.
  [[nodiscard]] virtual std::shared_ptr<NSDictionary> read(NSErrorSlot error = nullptr) = 0;
  /// Puts the changes into what is kept, all or none, and answers the whole of it. Other values
  /// stay as they are, also where someone else has written them meanwhile. null and an error on
  /// failure. Safe on any thread.
  [[nodiscard]] virtual std::shared_ptr<NSDictionary> apply(const NSUserDefaultsChanges& changes,
                                                            NSErrorSlot error = nullptr) = 0;
};

/// Keeps the values as long as it lives.
class NSUserDefaultsMemory final : public NSUserDefaultsStore {
 public:
  NSUserDefaultsMemory();
  ~NSUserDefaultsMemory() override;
  [[nodiscard]] std::shared_ptr<NSDictionary> read(NSErrorSlot error = nullptr) override;
  [[nodiscard]] std::shared_ptr<NSDictionary> apply(const NSUserDefaultsChanges& changes,
                                                    NSErrorSlot error = nullptr) override;

 private:
  struct Kept;
  const std::unique_ptr<Kept> kept_;
};

/// Fails with every call, as a disk does that is full or gone.
class NSFailingUserDefaultsStore final : public NSUserDefaultsStore {
 public:
  [[nodiscard]] std::shared_ptr<NSDictionary> read(NSErrorSlot error = nullptr) override;
  [[nodiscard]] std::shared_ptr<NSDictionary> apply(const NSUserDefaultsChanges& changes,
                                                    NSErrorSlot error = nullptr) override;
};

/// The values with changes made; for stores to use.
[[nodiscard]] std::shared_ptr<NSDictionary> NSDictionaryByApplyingChanges(
    const NSDictionary& values, const NSUserDefaultsChanges& changes);

}  // namespace ORLFoundation
