
#include <ORLFoundation/calendar/ORLFISO8601.h>

#include <ORLFoundation/platform/format/DatePattern.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>

namespace ORLFoundation {
namespace {

using internal::format::DatePattern;

/// Made at first use. Years count on through year 1: 0000 is 1 BC, -0001 the year before it.
const DatePattern& sISO8601() {
  static const DatePattern shared("uuuu-MM-dd'T'HH:mm:ssZZZ");
  return shared;
}

}  // namespace

std::optional<NSDate> orlfDateFromISO8601String(std::string_view string) {
  if (string.empty() || string.back() != 'Z') return sISO8601().read(string);
  string.remove_suffix(1);
  return sISO8601().read(std::string(string) + "-0000");
}

std::string orlfISO8601StringFromDate(NSDate date) {
  return sISO8601().write(date, NSTimeZone::defaultTimeZone()->secondsFromGMTForDate(date));
}

std::string orlfISO8601String(NSDate date) { return orlfISO8601StringFromDate(date); }

}  // namespace ORLFoundation
