
#include <ORLFoundation/support/collections/internal/ORLFNonretained.h>

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation::internal::collections {

id wrappedObject(const id& object) {
  const auto held = object.object();
  return held ? id(NSValue::valueWithNonretainedObject(held.get())) : id();
}

id requireWrappedObject(const id& object) {
  id wrapped = wrappedObject(object);
  if (wrapped.isNil())
    throw NSException(
        NSInvalidArgumentException,
        "a non-retaining collection cannot refer to " +
            (object.isNil() ? "nil" : "a plain value of class " + object.className()));
  return wrapped;
}

id unwrappedObject(const id& wrapped) {
  const auto* value = wrapped.get<NSValue>();
  return value != nullptr ? id(value->nonretainedObjectValue()) : id();
}

}  // namespace ORLFoundation::internal::collections
