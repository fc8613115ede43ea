/// What the non-retaining collections keep in place of their objects.
#pragma once

#include <ORLFoundation/platform/object/Id.h>

namespace ORLFoundation::internal::collections {

/// The object wrapped as a reference that does not own it. A plain value, which has no identity,
/// and nil give nil.
[[nodiscard]] id wrappedObject(const id& object);
/// The same, raising `NSInvalidArgumentException` in place of nil.
[[nodiscard]] id requireWrappedObject(const id& object);
/// The object of a wrapped reference; nil when it was destroyed.
[[nodiscard]] id unwrappedObject(const id& wrapped);

}  // namespace ORLFoundation::internal::collections
