
#include <ORLFoundation/support/collections/ORLFNonretainingMutableCollectionEnumerator.h>

#include <ORLFoundation/support/collections/internal/ORLFNonretained.h>

namespace ORLFoundation {

id ORLFNonretainingMutableCollectionEnumerator::nextObject() {
  while (const id wrapped = internalEnumerator_->nextObject())
    if (id object = internal::unwrappedObject(wrapped)) return object;
  return {};
}

}  // namespace ORLFoundation
