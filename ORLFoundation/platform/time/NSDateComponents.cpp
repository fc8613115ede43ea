
#include <ORLFoundation/platform/time/NSDateComponents.h>

#include <ORLFoundation/platform/time/NSCalendar.h>

namespace ORLFoundation {

bool NSDateComponents::isValidDateInCalendar(const NSCalendar& calendar) const {
  return calendar.dateFromValidComponents(*this).has_value();
}

}  // namespace ORLFoundation
