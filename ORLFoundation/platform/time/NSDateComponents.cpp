
#include <ORLFoundation/platform/time/NSDateComponents.h>

#include <ORLFoundation/platform/time/NSCalendar.h>

namespace ORLFoundation {

bool NSDateComponents::isValidDateInCalendar(const NSCalendar& calendar) const {
  return calendar.areValid(*this);
}

}  // namespace ORLFoundation
