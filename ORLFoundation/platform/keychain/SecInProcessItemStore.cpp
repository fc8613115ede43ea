#include <ORLFoundation/platform/keychain/SecInProcessItemStore.h>

#include <ORLFoundation/platform/keychain/SecItemRecord.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace ORLFoundation {

using namespace internal::keychain;

struct SecInProcessItemStore::Items {
  std::mutex lock;
  std::vector<ItemRecord> all;
};

SecInProcessItemStore::SecInProcessItemStore() : items_(std::make_unique<Items>()) {}

SecInProcessItemStore::~SecInProcessItemStore() = default;

SecItemBackend SecInProcessItemStore::backend() const {
  return {"in-process", false, SecItemEncryptionNothingKept};
}

OSStatus SecInProcessItemStore::copyMatching(const NSDictionary& query, id& result) {
  result = nullptr;
  const std::optional<ItemQuery> asked = itemQueryIn(query);
  if (!asked) return errSecParam;
  std::vector<ItemRecord> matches;
  {
    const std::lock_guard guard(items_->lock);
    for (const ItemRecord& item : items_->all)
      if (asked->matches(item)) matches.push_back(item);
  }
  if (matches.empty()) return errSecItemNotFound;
  result = asked->resultFor(matches);
  return errSecSuccess;
}

OSStatus SecInProcessItemStore::add(const NSDictionary& attributes) {
  std::optional<ItemRecord> item = itemRecordIn(attributes);
  if (!item) return errSecParam;
  const std::lock_guard guard(items_->lock);
  if (std::ranges::any_of(items_->all,
                          [&item](const ItemRecord& other) { return other.isDuplicateOf(*item); }))
    return errSecDuplicateItem;
  items_->all.push_back(std::move(*item));
  return errSecSuccess;
}

OSStatus SecInProcessItemStore::update(const NSDictionary& query,
                                       const NSDictionary& attributesToUpdate) {
  const std::optional<ItemQuery> asked = itemQueryIn(query);
  const std::optional<ItemChange> change = itemChangeIn(attributesToUpdate);
  if (!asked || !change) return errSecParam;
  const std::lock_guard guard(items_->lock);
  OSStatus status = errSecItemNotFound;
  for (ItemRecord& item : items_->all) {
    if (!asked->matches(item)) continue;
    change->applyTo(item);
    status = errSecSuccess;
  }
  return status;
}

OSStatus SecInProcessItemStore::remove(const NSDictionary& query) {
  const std::optional<ItemQuery> asked = itemQueryIn(query);
  if (!asked) return errSecParam;
  const std::lock_guard guard(items_->lock);
  const auto removed =
      std::erase_if(items_->all, [&asked](const ItemRecord& item) { return asked->matches(item); });
  return removed > 0 ? errSecSuccess : errSecItemNotFound;
}

}  // namespace ORLFoundation
