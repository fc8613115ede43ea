/// What user defaults keep for values that property lists do not hold, and copies that nobody can
/// change.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <optional>

namespace ORLFoundation::internal::defaults {

/// The value with no mutable collection in it.
[[nodiscard]] id immutableCopy(const id& value);
/// Equal in kind too: true is not 1, 5 is not 5.0, and 0.0 is not -0.0, at any depth.
[[nodiscard]] bool isSameValue(const id& left, const id& right);

/// An address as it is kept, and back.
[[nodiscard]] id valueOfAddress(const NSURL& url);
[[nodiscard]] std::optional<NSURL> addressOfValue(const id& value);

}  // namespace ORLFoundation::internal::defaults
