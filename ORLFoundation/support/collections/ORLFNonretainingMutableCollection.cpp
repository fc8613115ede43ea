
#include <ORLFoundation/support/collections/ORLFNonretainingMutableCollection.h>

#include <ORLFoundation/support/collections/ORLFNonretainingMutableCollectionEnumerator.h>
#include <ORLFoundation/support/collections/internal/ORLFNonretained.h>

#include <algorithm>
#include <functional>

namespace ORLFoundation {

using namespace internal::collections;

NSMutableSet& ORLFNonretainingMutableCollection::realSet() const {
  if (!realSet_) realSet_ = std::make_shared<NSMutableSet>();
  return *realSet_;
}

void ORLFNonretainingMutableCollection::addObject(const id& object) {
  realSet().addObject(requireWrappedObject(object));
}

void ORLFNonretainingMutableCollection::removeObject(const id& object) {
  realSet().removeObject(wrappedObject(object));
}

void ORLFNonretainingMutableCollection::removeObject(const NSObject* object) {
  realSet().removeObject(NSValue::valueWithNonretainedObject(object));
}

void ORLFNonretainingMutableCollection::removeAllObjects() { realSet().removeAllObjects(); }

NSUInteger ORLFNonretainingMutableCollection::count() const noexcept {
  return realSet_ ? realSet_->count() : 0;
}

id ORLFNonretainingMutableCollection::member(const id& object) const {
  return unwrappedObject(realSet().member(wrappedObject(object)));
}

std::vector<id> ORLFNonretainingMutableCollection::allObjects() const {
  return objectEnumerator()->allObjects()->members();
}

std::shared_ptr<NSEnumerator> ORLFNonretainingMutableCollection::objectEnumerator() const {
  return std::make_shared<ORLFNonretainingMutableCollectionEnumerator>(
      realSet().objectEnumerator());
}

NSUInteger ORLFNonretainingMutableCollection::countByEnumeratingWithState(
    NSFastEnumerationState& state, std::span<id> objects) const {
  // A batch of nothing but destroyed objects is not the end.
  while (const NSUInteger count = realSet().countByEnumeratingWithState(state, objects)) {
    const auto batch = objects.first(count);
    std::transform(batch.begin(), batch.end(), batch.begin(), unwrappedObject);
    const auto end = std::remove_if(batch.begin(), batch.end(), std::mem_fn(&id::isNil));
    if (end != batch.begin()) return static_cast<NSUInteger>(end - batch.begin());
  }
  return 0;
}

}  // namespace ORLFoundation
