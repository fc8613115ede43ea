/// What a step of a calendar unit does. For the sources of this room and of those above it.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>

namespace ORLFoundation::internal::calendar {

/// Whether steps of the unit lead anywhere: those of a mask, and of what is no unit, do not.
[[nodiscard]] inline bool moves(NSCalendarUnit unit) {
  NSDateComponents step;
  step.setValueForComponent(1, unit);
  return step.setUnits() != 0;
}

}  // namespace ORLFoundation::internal::calendar
