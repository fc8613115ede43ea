
#include <ORLFoundation/support/collections/ORLFNonretainingMutableCollectionEnumerator.h>

#include <ORLFoundation/support/collections/internal/ORLFNonretained.h>

namespace ORLFoundation {

using namespace internal::collections;

id ORLFNonretainingMutableCollectionEnumerator::nextObject() {
  while (const id wrapped = internalEnumerator_->nextObject())
    if (id object = unwrappedObject(wrapped)) return object;
  return {};
}

}  // namespace ORLFoundation
