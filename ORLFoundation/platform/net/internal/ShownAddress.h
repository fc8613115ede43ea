/// Addresses as descriptions show them.
#pragma once

#include <ORLFoundation/platform/value/NSURL.h>

#include <optional>
#include <string>

namespace ORLFoundation::internal::net {

/// Scheme, host, port and path, without name, password, query and fragment, which may hold secrets;
/// of an address without a host the scheme alone, but a file's path. "(null)" for nil.
[[nodiscard]] std::string shownAddress(const std::optional<NSURL>& url);

}  // namespace ORLFoundation::internal::net
