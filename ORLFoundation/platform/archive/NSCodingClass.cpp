

#include <ORLFoundation/platform/archive/NSCodingClass.h>

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace ORLFoundation {
namespace {

// Records are never destroyed: objects of any lifetime refer to them.
struct Registry {
  std::mutex mutex;
  std::map<std::string, std::unique_ptr<NSCodingClass>, std::less<>> records;
};

Registry& registry() {
  static auto& registry = *new Registry;
  return registry;
}

}  // namespace

bool NSCodingClass::isSubclassOf(const NSCodingClass& other) const noexcept {
  for (const NSCodingClass* record = this; record != nullptr; record = record->superclass_)
    if (record == &other) return true;
  return false;
}

const NSCodingClass& NSCodingClass::defineRecord(std::string_view name,
                                                 const NSCodingClass* superclass, bool isSecure,
                                                 InitWithCoder read) {
  auto record = std::make_unique<NSCodingClass>(name, superclass, isSecure, read);
  const std::lock_guard lock(registry().mutex);
  return *registry().records.try_emplace(std::string(name), std::move(record)).first->second;
}

const NSCodingClass* NSCodingClass::named(std::string_view name) {
  const std::lock_guard lock(registry().mutex);
  const auto found = registry().records.find(name);
  return found == registry().records.end() ? nullptr : found->second.get();
}

}  // namespace ORLFoundation
