// Prints the date a month after 31 January 2024, 09:30 UTC.
#include <ORLFoundation/ORLFoundation.h>

#include <iostream>

int main() {
  using namespace ORLFoundation;
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
  const auto start = NSDate::dateWithTimeIntervalSince1970(1706693400);
  const auto next = calendar->dateByAddingUnit(NSCalendarUnitMonth, 1, start, 0);
  if (!next) return 1;
  std::cout << next->description() << '\n';
  return 0;
}
