/// Reads binary lists: a header, objects, a table of their offsets, and a trailer of 32 bytes.
#pragma once

#include <ORLFoundation/platform/plist/PropertyListTable.h>

#include <cstdint>
#include <span>

namespace ORLFoundation::internal::plist {

/// Throws `PropertyListFault` for anything but a whole list. Each offset, count and reference is
/// checked before it is used, cycles and deep nesting are found, and what is set aside is bounded
/// by a small multiple of the length, however the objects overlap.
[[nodiscard]] PropertyListTable readBinaryPropertyList(std::span<const std::uint8_t> bytes);

}  // namespace ORLFoundation::internal::plist
