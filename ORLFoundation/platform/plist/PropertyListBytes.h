/// Property lists of either form.
#pragma once

#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/platform/plist/PropertyListTable.h>
#include <ORLFoundation/platform/value/NSData.h>

namespace ORLFoundation::internal::plist {

/// The form that the first bytes tell.
[[nodiscard]] NSPropertyListFormat propertyListFormatOf(const NSData& data) noexcept;
/// Both throw `PropertyListFault`.
[[nodiscard]] PropertyListTable readPropertyList(const NSData& data);
[[nodiscard]] NSData writePropertyList(const PropertyListTable& table, NSPropertyListFormat format);

}  // namespace ORLFoundation::internal::plist
