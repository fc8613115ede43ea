/// Spans of dates as text, in the words, order and calendar of a locale: what both ends share is
/// told once.
///
///     NSDateIntervalFormatter formatter;
///     formatter.setLocale(std::make_shared<NSLocale>("en_US"));
///     formatter.setDateStyle(NSDateIntervalFormatterMediumStyle);
///     formatter.stringFromDate(from, to);  // "Jan 5 – 7, 2024"
///
/// A span whose ends lie on one day, or in one minute or second where a time style asks for them,
/// is told as `NSDateFormatter` tells that date. A time style alone tells the days too where the
/// ends have different ones. Clock changes are those of the zone's own table; the two passes of an
/// hour that a change doubles are not told apart.
///
/// Safe on any thread; one lock stands around each operation.
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSCalendar;
class NSTimeZone;

namespace internal::format {
struct NSDateIntervalFormatterState;
}  // namespace internal::format

enum NSDateIntervalFormatterStyle : NSUInteger {
  NSDateIntervalFormatterNoStyle = 0,
  NSDateIntervalFormatterShortStyle = 1,
  NSDateIntervalFormatterMediumStyle = 2,
  NSDateIntervalFormatterLongStyle = 3,
  NSDateIntervalFormatterFullStyle = 4,
};

class NSDateIntervalFormatter : public NSObject, public NSSecureCoding {
 public:
  /// Both styles none, in the process's current locale, its calendar and the default zone, read
  /// now.
  NSDateIntervalFormatter();
  ~NSDateIntervalFormatter() override;

  /// `dateStyle`, `timeStyle`  An unknown style is kept, and prints as none.
  [[nodiscard]] NSDateIntervalFormatterStyle dateStyle() const;
  [[nodiscard]] NSDateIntervalFormatterStyle timeStyle() const;
  /// `setDateStyle:`, `setTimeStyle:`  The template is from now on that of the styles.
  void setDateStyle(NSDateIntervalFormatterStyle style);
  void setTimeStyle(NSDateIntervalFormatterStyle style);
  /// `dateTemplate`  What a date is told by, in any order: the template that was set, else that of
  /// the styles ("yMMMd" and "jm" for the medium and the short one).
  [[nodiscard]] std::string dateTemplate() const;
  /// `setDateTemplate:`  The styles keep their values.
  void setDateTemplate(std::string_view dateTemplate);

  /// `locale`, `setLocale:`  nil is the current locale.
  [[nodiscard]] std::shared_ptr<NSLocale> locale() const;
  void setLocale(std::shared_ptr<NSLocale> locale);
  /// `timeZone`, `setTimeZone:`  nil is the default zone.
  [[nodiscard]] std::shared_ptr<NSTimeZone> timeZone() const;
  void setTimeZone(std::shared_ptr<NSTimeZone> zone);
  /// `calendar`, `setCalendar:`  Held as a copy. Its kind counts for printing, not its zone; under
  /// nil dates print in the locale's own calendar.
  [[nodiscard]] std::shared_ptr<NSCalendar> calendar() const;
  void setCalendar(const std::shared_ptr<NSCalendar>& calendar);

  /// `stringFromDate:toDate:`  nil when a date is nil, not finite, or too far away for the calendar
  /// (some five million years, 10,000 in calendars beyond the Gregorian); empty when both styles
  /// are none and there is no template. A span whose end comes first is told as it stands.
  [[nodiscard]] virtual std::optional<std::string> stringFromDate(
      std::optional<NSDate> fromDate, std::optional<NSDate> toDate) const;

  static bool supportsSecureCoding() { return true; }
  static const NSCodingClass& codingClass();
  static std::shared_ptr<NSDateIntervalFormatter> initWithCoder(NSCoder& coder);
  void encodeWithCoder(NSCoder& coder) const override;
  const NSCodingClass& classForCoder() const override { return codingClass(); }

  [[nodiscard]] std::string className() const override { return "NSDateIntervalFormatter"; }
  /// A formatter of its own with the same settings, of the receiver's class.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;
  /// Takes over what `encodeWithCoder` wrote.
  void readSettings(NSCoder& coder);

 private:
  mutable std::mutex lock_;
  std::unique_ptr<internal::format::NSDateIntervalFormatterState> state_;
};

}  // namespace ORLFoundation
