
#include <ORLFoundation/platform/time/NSDateComponents.h>

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/internal/CalendarFields.h>

namespace ORLFoundation {

bool NSDateComponents::isValidDateInCalendar(const NSCalendar& calendar) const {
  return internal::time::areFieldsValid(calendar.rules(), *this);
}

}  // namespace ORLFoundation
