/// What collections of objects do not take.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation::internal::object {

/// Raises `NSInvalidArgumentException` for nil.
inline void refuseNil(const id& member) {
  if (member.isNil()) throw NSException(NSInvalidArgumentException, "attempt to insert nil object");
}

}  // namespace ORLFoundation::internal::object
