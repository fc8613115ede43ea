#include <ORLFoundation/support/ORLFNonretainingMutableCollectionEnumerator.h>
#include <ORLFoundation/support/internal/ORLFNonretained.h>

namespace ORLFoundation {

id ORLFNonretainingMutableCollectionEnumerator::nextObject() {
  while (const id wrapped = internalEnumerator_->nextObject())
    if (id object = internal::unwrappedObject(wrapped)) return object;
  return {};
}

}  // namespace ORLFoundation
