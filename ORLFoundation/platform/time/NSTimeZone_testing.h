/// The process's zone, for tests.
#pragma once

#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <string_view>

namespace orlftest {

/// Pins the default zone while it lives; then that of the system is back.
class DefaultZone {
 public:
  explicit DefaultZone(std::string_view name) { set(name); }
  ~DefaultZone() { ORLFoundation::NSTimeZone::setDefaultTimeZone(nullptr); }
  DefaultZone(const DefaultZone&) = delete;
  DefaultZone& operator=(const DefaultZone&) = delete;

  static void set(std::string_view name) {
    using ORLFoundation::NSTimeZone;
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName(name));
  }
};

}  // namespace orlftest
