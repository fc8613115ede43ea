#include "session.h"

#include <unicode/calendar.h>
#include <unicode/locid.h>

#include <ostream>

#include "cli/failure.h"
#include "cli/message_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

void setWeeksOfRegion(NSCalendar& calendar, const std::string& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Calendar> weeks(
      icu::Calendar::createInstance(icu::Locale(locale.c_str()), status));
  if (U_FAILURE(status)) return;
  const UCalendarDaysOfWeek first = weeks->getFirstDayOfWeek(status);
  if (U_FAILURE(status)) return;
  calendar.setFirstWeekday(first);
  calendar.setMinimumDaysInFirstWeek(weeks->getMinimalDaysInFirstWeek());
}

/// Whether language and region (where one is named) of an identifier such as "de_DE" exist.
bool isKnownLocale(const std::string& identifier) {
  const icu::Locale locale(identifier.c_str());
  if (identifier.empty() || locale.isBogus() || *locale.getISO3Language() == '\0') return false;
  return *locale.getCountry() == '\0' || *locale.getISO3Country() != '\0';
}

}  // namespace

void printNote(Session& session, std::string_view note) {
  session.err << "orlf" << (session.command.empty() ? "" : " ") << session.command << ": "
              << oneLine(note) << '\n';
}

std::shared_ptr<NSCalendar> makeCalendar(const std::string& zone, const std::string& locale) {
  if (!isKnownLocale(locale)) throw UsageFailure("--locale: unknown locale '" + locale + "'");
  std::shared_ptr<NSTimeZone> timeZone = NSTimeZone::timeZoneWithName(zone);
  if (!timeZone) throw UsageFailure("--tz: unknown time zone '" + zone + "'");
  std::shared_ptr<NSCalendar> calendar =
      NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(std::move(timeZone));
  calendar->setLocaleIdentifier(locale);
  setWeeksOfRegion(*calendar, locale);
  return calendar;
}

}  // namespace orlftool
