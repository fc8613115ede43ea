/// Writes XML lists.
#pragma once

#include <ORLFoundation/platform/plist/PropertyListTable.h>

namespace ORLFoundation::internal::plist {

/// Indented by tabs, dictionaries sorted by key. Throws `PropertyListFault` for a text that XML
/// cannot hold and for a list that would grow beyond measure, since XML has no shared members.
[[nodiscard]] base::WipedText writeXMLPropertyList(const PropertyListTable& table);

}  // namespace ORLFoundation::internal::plist
