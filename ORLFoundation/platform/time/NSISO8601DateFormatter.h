/// Dates written as ISO 8601 has them, for files that machines read too.
///
///     NSISO8601DateFormatter::stringFromDate(
///         NSDate::date(), *NSTimeZone::timeZoneWithName("UTC"),
///         NSISO8601DateFormatWithInternetDateTime);   // "2026-11-12T11:08:06Z"
#pragma once

#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <string>

namespace ORLFoundation {

/// Bits; others have no effect.
enum NSISO8601DateFormatOptions : NSUInteger {
  NSISO8601DateFormatWithYear = 1,
  NSISO8601DateFormatWithMonth = 2,
  NSISO8601DateFormatWithDay = 16,
  NSISO8601DateFormatWithTime = 32,
  NSISO8601DateFormatWithTimeZone = 64,
  NSISO8601DateFormatWithDashSeparatorInDate = 256,
  NSISO8601DateFormatWithColonSeparatorInTime = 512,
  NSISO8601DateFormatWithColonSeparatorInTimeZone = 1024,
  /// All of them.
  NSISO8601DateFormatWithInternetDateTime = 1907,
};

class NSISO8601DateFormatter {
 public:
  /// `stringFromDate:timeZone:formatOptions:`  The parts that the options name. "T" stands between
  /// date and time where both have a part, fractions of a second are cut off, and a zone at offset
  /// 0 is "Z". Years before 1 are negative or "0000", those beyond 9999 have more digits. "" for a
  /// date that is not finite or some million years away.
  [[nodiscard]] static std::string stringFromDate(NSDate date, const NSTimeZone& timeZone,
                                                  NSUInteger formatOptions);
};

}  // namespace ORLFoundation
