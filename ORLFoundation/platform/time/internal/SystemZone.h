/// The zone that the system is set to: what TZ says, else what the machine's own file says.
#pragma once

#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation::internal::time {

/// Where the system tells its zone.
struct SystemZoneSettings {
  /// The variable TZ, nil where it is not set; empty text counts as not set.
  std::optional<std::string> variable;
  /// A link into the folder zoneinfo, or a file of that folder's form.
  std::string machineFile = "/etc/localtime";

  friend bool operator==(const SystemZoneSettings&, const SystemZoneSettings&) = default;
};

/// The variable may hold a zone's name ("Europe/Vienna"), a path within or outside of zoneinfo
/// ("/etc/localtime") or a POSIX text ("EST5EDT,M3.2.0,M11.1.0", whose signs count westward), each
/// with or without a colon before it. A path that leads into zoneinfo gives the zone of that name;
/// any other file gives a zone that is named after its path. Where the variable tells no zone, a
/// line in the log says so and the machine's file decides; where that cannot be read either,
/// another line says so and the zone is UTC.
[[nodiscard]] std::shared_ptr<NSTimeZone> zoneOfSettings(const SystemZoneSettings& settings);

}  // namespace ORLFoundation::internal::time
