

#include <ORLFoundation/platform/defaults/NSUserDefaultsStore.h>

#include <ORLFoundation/platform/object/NSDictionary.h>

#include <cerrno>
#include <memory>
#include <mutex>

namespace ORLFoundation {

struct NSUserDefaultsMemory::Kept {
  std::mutex lock;
  std::shared_ptr<NSDictionary> values = std::make_shared<NSDictionary>();
};

NSUserDefaultsMemory::NSUserDefaultsMemory() : kept_(std::make_unique<Kept>()) {}

NSUserDefaultsMemory::~NSUserDefaultsMemory() = default;

std::shared_ptr<NSDictionary> NSUserDefaultsMemory::read(NSErrorSlot /*error*/) {
  const std::lock_guard guard(kept_->lock);
  return kept_->values;
}

std::shared_ptr<NSDictionary> NSUserDefaultsMemory::apply(const NSUserDefaultsChanges& changes,
                                                          NSErrorSlot /*error*/) {
  const std::lock_guard guard(kept_->lock);
  return kept_->values = NSDictionaryByApplyingChanges(*kept_->values, changes);
}

std::shared_ptr<NSDictionary> NSFailingUserDefaultsStore::read(NSErrorSlot error) {
  NSFillErrorSlot(error, NSPOSIXErrorDomain, EIO, "The user defaults cannot be read.");
  return nullptr;
}

std::shared_ptr<NSDictionary> NSFailingUserDefaultsStore::apply(
    const NSUserDefaultsChanges& /*changes*/, NSErrorSlot error) {
  NSFillErrorSlot(error, NSPOSIXErrorDomain, ENOSPC, "The user defaults cannot be written.");
  return nullptr;
}

std::shared_ptr<NSDictionary> NSDictionaryByApplyingChanges(const NSDictionary& values,
                                                            const NSUserDefaultsChanges& changes) {
  NSMutableDictionary changed(values.entries());
  for (const auto& [key, value] : changes) {
    if (value.isNil()) {
      changed.removeObjectForKey(key);
    } else {
      changed.setObject(value, key);
    }
  }
  return std::make_shared<NSDictionary>(changed.entries());
}

}  // namespace ORLFoundation
