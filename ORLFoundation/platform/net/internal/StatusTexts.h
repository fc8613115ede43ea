/// What HTTP's status codes are called.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

#include <string_view>

namespace ORLFoundation::internal::net {

/// The name of a status, of its hundred where it has none, "unknown" for what is no status.
[[nodiscard]] std::string_view textOfStatus(NSInteger status) noexcept;

}  // namespace ORLFoundation::internal::net
