#include <ORLFoundation/platform/format/internal/DateSpanEngine.h>

#include <ORLFoundation/platform/format/internal/ICUCalendar.h>
#include <ORLFoundation/platform/format/internal/ZoneBridge.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <unicode/calendar.h>
#include <unicode/dtitvfmt.h>

namespace ORLFoundation::internal::format {

// ICU tells a span by two calendars, which carry the zone and all fields.
struct DateSpanEngine::Parts {
  std::unique_ptr<icu::DateIntervalFormat> format;
  std::unique_ptr<icu::Calendar> from, to;
  bool isGregorian = false;
};

DateSpanEngine::DateSpanEngine(const DateSpanSettings& settings)
    : parts_(std::make_unique<Parts>()) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale locale(settings.locale.c_str());
  std::unique_ptr<icu::DateIntervalFormat> format(
      icu::DateIntervalFormat::createInstance(text::utf16Of(settings.skeleton), locale, status));
  std::unique_ptr<icu::Calendar> calendar(
      icu::Calendar::createInstance(icuZone(settings.zone).release(), locale, status));
  if (U_FAILURE(status) || !format || !calendar) return;
  extendToAllTime(*calendar);
  format->adoptTimeZone(icuZone(settings.zone).release());
  parts_->isGregorian = isGregorianCalendar(*calendar);
  parts_->to.reset(calendar->clone());
  parts_->from = std::move(calendar);
  parts_->format = std::move(format);
}

DateSpanEngine::~DateSpanEngine() = default;

std::optional<std::string> DateSpanEngine::print(NSDate from, NSDate to) const {
  const Parts& parts = *parts_;
  if (!parts.format || !isInReach(from, parts.isGregorian) || !isInReach(to, parts.isGregorian))
    return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  parts.from->setTime(millisecondsOf(from), status);
  parts.to->setTime(millisecondsOf(to), status);
  icu::UnicodeString text;
  icu::FieldPosition position;
  parts.format->format(*parts.from, *parts.to, text, position, status);
  if (U_FAILURE(status)) return std::nullopt;
  return text::utf8Of(text);
}

}  // namespace ORLFoundation::internal::format
