/// What user defaults keep for values that property lists do not hold, and copies that nobody can
/// change.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <optional>

namespace ORLFoundation::internal {

/// The value with no mutable collection in it.
[[nodiscard]] id immutableCopy(const id& value);

/// An address as it is kept, and back.
[[nodiscard]] id valueOfAddress(const NSURL& url);
[[nodiscard]] std::optional<NSURL> addressOfValue(const id& value);

}  // namespace ORLFoundation::internal
