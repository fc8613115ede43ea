

#include <ORLFoundation/platform/defaults/NSUserDefaultsStore.h>

#include <ORLFoundation/platform/object/NSDictionary.h>

#include <cerrno>

namespace ORLFoundation {

NSUserDefaultsMemory::NSUserDefaultsMemory() : values_(std::make_shared<NSDictionary>()) {}

std::shared_ptr<NSDictionary> NSUserDefaultsMemory::read(NSErrorSlot /*error*/) {
  const std::lock_guard guard(lock_);
  return values_;
}

std::shared_ptr<NSDictionary> NSUserDefaultsMemory::apply(const NSUserDefaultsChanges& changes,
                                                          NSErrorSlot /*error*/) {
  const std::lock_guard guard(lock_);
  return values_ = NSDictionaryByApplyingChanges(*values_, changes);
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
