
#include <ORLFoundation/support/collections/ORLFNonretainingMutableMap.h>

#include <ORLFoundation/support/collections/internal/ORLFNonretained.h>

#include <utility>

namespace ORLFoundation {

using namespace internal::collections;

NSMutableDictionary& ORLFNonretainingMutableMap::realDictionary() const {
  if (!realDictionary_) realDictionary_ = std::make_shared<NSMutableDictionary>();
  return *realDictionary_;
}

NSUInteger ORLFNonretainingMutableMap::count() const noexcept {
  return realDictionary_ ? realDictionary_->count() : 0;
}

id ORLFNonretainingMutableMap::objectForKey(const id& key) const {
  return unwrappedObject(realDictionary().objectForKey(key));
}

void ORLFNonretainingMutableMap::setObject(const id& object, const id& forKey) {
  realDictionary().setObject(requireWrappedObject(object), forKey);
}

void ORLFNonretainingMutableMap::removeObjectForKey(const id& key) {
  realDictionary().removeObjectForKey(key);
}

void ORLFNonretainingMutableMap::removeAllObjects() { realDictionary().removeAllObjects(); }

NSDictionary::Entries ORLFNonretainingMutableMap::entries() const {
  Entries entries;
  for (auto& [key, wrapped] : realDictionary().entries())
    if (id object = unwrappedObject(wrapped)) entries.emplace_back(key, std::move(object));
  return entries;
}

std::shared_ptr<NSEnumerator> ORLFNonretainingMutableMap::keyEnumerator() const {
  return realDictionary().keyEnumerator();
}

NSUInteger ORLFNonretainingMutableMap::countByEnumeratingWithState(NSFastEnumerationState& state,
                                                                   std::span<id> objects) const {
  return realDictionary().countByEnumeratingWithState(state, objects);
}

}  // namespace ORLFoundation
