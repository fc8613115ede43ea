/// The version of an operating system.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation {

struct NSOperatingSystemVersion {
  NSInteger majorVersion = 0;
  NSInteger minorVersion = 0;
  NSInteger patchVersion = 0;

  friend bool operator==(const NSOperatingSystemVersion&,
                         const NSOperatingSystemVersion&) = default;
};

}  // namespace ORLFoundation
