/// Zones told as POSIX tells them in TZ: "EST5EDT,M3.2.0,M11.1.0" is a standard time 5 hours west
/// of GMT, with daylight saving time from the second Sunday of March to the first one of November.
#pragma once

#include <ORLFoundation/platform/time/ZoneTable.h>

#include <memory>
#include <string_view>

namespace ORLFoundation::internal::time {

/// The zone's rules for all time; null for a text of another form. A daylight saving time without
/// rules takes those of the United States.
[[nodiscard]] std::shared_ptr<const ZoneTable> zoneFromPosixText(std::string_view text);

}  // namespace ORLFoundation::internal::time
