/// Addresses that are given relative to another.
#pragma once

#include <ORLFoundation/platform/value/NSURL.h>

#include <optional>
#include <string>

namespace ORLFoundation::internal::archive {

/// The address that the text means beside the base, where there is one; nil for no valid address.
[[nodiscard]] std::optional<NSURL> resolvedAddress(const std::optional<NSURL>& base,
                                                   const std::string& relative);

}  // namespace ORLFoundation::internal::archive
