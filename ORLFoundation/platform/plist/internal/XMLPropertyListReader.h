/// Reads XML lists.
#pragma once

#include <ORLFoundation/platform/plist/PropertyListTable.h>

#include <cstdint>
#include <span>

namespace ORLFoundation::internal::plist {

/// Throws `PropertyListFault` for anything but one whole list. Nothing is fetched, and entities
/// that the document declares are not expanded: one that is used is a fault. A dictionary with
/// `CF$UID` and a number as its one entry is a reference to an archive's object.
[[nodiscard]] PropertyListTable readXMLPropertyList(std::span<const std::uint8_t> bytes);

}  // namespace ORLFoundation::internal::plist
