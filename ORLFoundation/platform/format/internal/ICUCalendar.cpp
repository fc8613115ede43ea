#include <ORLFoundation/platform/format/internal/ICUCalendar.h>

#include <unicode/gregocal.h>

#include <cmath>
#include <limits>
#include <string_view>

namespace ORLFoundation::internal::format {

bool isGregorianCalendar(const icu::Calendar& calendar) {
  return std::string_view(calendar.getType()) == "gregorian";
}

void extendToAllTime(icu::Calendar& calendar) {
  auto* gregorian = dynamic_cast<icu::GregorianCalendar*>(&calendar);
  UErrorCode status = U_ZERO_ERROR;
  if (gregorian != nullptr)
    gregorian->setGregorianChange(-std::numeric_limits<double>::max(), status);
}

bool isInReach(NSDate date, bool isGregorian) noexcept {
  return std::abs(date.timeIntervalSince1970()) <= (isGregorian ? kGregorianReach : kOtherReach);
}

UDate millisecondsOf(NSDate date) noexcept {
  constexpr double kMicroseconds = 1e6;
  constexpr double kMicrosecondsOfMillisecond = 1e3;
  return std::floor(std::round(date.timeIntervalSince1970() * kMicroseconds) /
                    kMicrosecondsOfMillisecond);
}

}  // namespace ORLFoundation::internal::format
