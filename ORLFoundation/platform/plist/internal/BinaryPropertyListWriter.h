/// Writes binary lists.
#pragma once

#include <ORLFoundation/platform/plist/PropertyListTable.h>

#include <cstdint>
#include <vector>

namespace ORLFoundation::internal::plist {

/// Numbers each node once, a container before its members and keys before values, with the
/// narrowest offsets and references that do. Throws `PropertyListFault` for a text that is not
/// UTF-8. The list must not hold itself.
[[nodiscard]] std::vector<std::uint8_t> writeBinaryPropertyList(const PropertyListTable& table);

}  // namespace ORLFoundation::internal::plist
