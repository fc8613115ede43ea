/// Property lists between objects and tables.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/plist/PropertyListTable.h>

namespace ORLFoundation::internal::plist {

/// Throws `PropertyListFault` for a value that a property list cannot hold, and for collections
/// that hold themselves or are nested too deep. A collection met twice is in the table once.
[[nodiscard]] PropertyListTable tableFromObject(const id& object);
/// The top value; a container that the table refers to twice is one object. `mutableContainers`
/// makes arrays and dictionaries mutable.
[[nodiscard]] id objectFromTable(const PropertyListTable& table, bool mutableContainers);

}  // namespace ORLFoundation::internal::plist
