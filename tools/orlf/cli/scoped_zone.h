/// The zone in which the library makes formatters that were given none, for as long as an object
/// lives.
#pragma once

#include <ORLFoundation/platform/time/NSTimeZone.h>

#include <memory>
#include <utility>

namespace orlftool {

class ScopedZone {
 public:
  explicit ScopedZone(std::shared_ptr<ORLFoundation::NSTimeZone> zone) {
    ORLFoundation::NSTimeZone::setDefaultTimeZone(std::move(zone));
  }
  ScopedZone(const ScopedZone&) = delete;
  ScopedZone& operator=(const ScopedZone&) = delete;
  ~ScopedZone() { ORLFoundation::NSTimeZone::setDefaultTimeZone(nullptr); }
};

}  // namespace orlftool
