/// Dates as text and back, in the words, order and calendar of a locale.
///
///     NSDateFormatter formatter;
///     formatter.setLocale(std::make_shared<NSLocale>("en_US"));
///     formatter.setDateStyle(NSDateFormatterShortStyle);
///     formatter.stringFromDate(NSDate());              // "1/1/01"
///     formatter.dateFromString("1-2-2021");            // midnight of 2 January 2021
///
/// Reading is lenient about the text, whether the formatter is lenient or not: other marks and
/// widths than the format's and a month's name for its number are taken. It is strict about the
/// calendar: month 13, 30 February and a time that a clock change leaves out are refused. A day
/// whose midnight is left out begins at the change, and one that is left out whole is the next. Two
/// digits of a year under "y" and "yy" lie in the hundred years from `twoDigitStartDate`. What the
/// format does not ask for is that of 1 January 2000, midnight.
///
/// Safe on any thread; one lock stands around each operation.
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class id;
class NSCalendar;
class NSTimeZone;

namespace internal::format {
struct NSDateFormatterState;
}  // namespace internal::format

enum NSDateFormatterStyle : NSUInteger {
  NSDateFormatterNoStyle = 0,
  NSDateFormatterShortStyle = 1,
  NSDateFormatterMediumStyle = 2,
  NSDateFormatterLongStyle = 3,
  NSDateFormatterFullStyle = 4,
};

class NSDateFormatter : public NSObject, public NSSecureCoding {
 public:
  /// The most UTF-16 units of a text that are looked at. A longer text is no date; of a longer
  /// range so much of its beginning is read.
  static constexpr NSUInteger kLongestText = 256;

  /// Both styles none, in the process's current locale and default zone, read now.
  NSDateFormatter();
  ~NSDateFormatter() override;

  /// `dateStyle`, `timeStyle`  An unknown style is none.
  [[nodiscard]] NSDateFormatterStyle dateStyle() const;
  [[nodiscard]] NSDateFormatterStyle timeStyle() const;
  /// `setDateStyle:`, `setTimeStyle:`  The format is from now on that of the styles.
  virtual void setDateStyle(NSDateFormatterStyle style);
  virtual void setTimeStyle(NSDateFormatterStyle style);
  /// `dateFormat`  The format that was set, else that of the styles in the locale and calendar:
  /// "M/d/yy"; empty when both are none.
  [[nodiscard]] std::string dateFormat() const;
  /// `setDateFormat:`  In the letters of Unicode's date patterns. The styles keep their values.
  virtual void setDateFormat(std::string_view format);
  /// `setLocalizedDateFormatFromTemplate:`
  void setLocalizedDateFormatFromTemplate(std::string_view dateFormatTemplate);
  /// `dateFormatFromTemplate:options:locale:`  The locale's own format for the letters of the
  /// template, "M/d/y" for "yMd". nil is the current locale. Options change nothing.
  [[nodiscard]] static std::string dateFormatFromTemplate(std::string_view dateFormatTemplate,
                                                          NSUInteger options,
                                                          const std::shared_ptr<NSLocale>& locale);

  /// `locale`, `setLocale:`  nil is the current locale.
  [[nodiscard]] std::shared_ptr<NSLocale> locale() const;
  virtual void setLocale(std::shared_ptr<NSLocale> locale);
  /// `timeZone`, `setTimeZone:`  nil is the default zone.
  [[nodiscard]] std::shared_ptr<NSTimeZone> timeZone() const;
  virtual void setTimeZone(std::shared_ptr<NSTimeZone> zone);
  /// `calendar`  A copy of the calendar that was set, else the locale's own (buddhist in th_TH;
  /// Gregorian where `NSCalendar` does not know it), in the formatter's zone.
  [[nodiscard]] std::shared_ptr<NSCalendar> calendar() const;
  /// `setCalendar:`  Its kind and its weeks count, not its zone. nil is the locale's own.
  virtual void setCalendar(const std::shared_ptr<NSCalendar>& calendar);
  /// `isLenient`, `setLenient:`  Kept, and without effect: see above.
  [[nodiscard]] bool isLenient() const;
  void setLenient(bool lenient);
  /// `twoDigitStartDate`  1950-01-01T00:00:00Z at first; nil reads as that date does.
  [[nodiscard]] std::optional<NSDate> twoDigitStartDate() const;
  void setTwoDigitStartDate(std::optional<NSDate> date);
  /// `doesRelativeDateFormatting`  Whether days near the current one are told in words ("Today"),
  /// under a date style and no format of one's own. The words are read too, without a time style.
  [[nodiscard]] bool doesRelativeDateFormatting() const;
  void setDoesRelativeDateFormatting(bool relative);

  /// `monthSymbols` and its siblings, in the locale and calendar: the forms within a date, and
  /// those that stand alone. Weekdays begin with Sunday.
  [[nodiscard]] std::vector<std::string> monthSymbols() const;
  [[nodiscard]] std::vector<std::string> shortMonthSymbols() const;
  [[nodiscard]] std::vector<std::string> veryShortMonthSymbols() const;
  [[nodiscard]] std::vector<std::string> standaloneMonthSymbols() const;
  [[nodiscard]] std::vector<std::string> shortStandaloneMonthSymbols() const;
  [[nodiscard]] std::vector<std::string> weekdaySymbols() const;
  [[nodiscard]] std::vector<std::string> shortWeekdaySymbols() const;
  [[nodiscard]] std::vector<std::string> veryShortWeekdaySymbols() const;

  /// `stringFromDate:`  What `stringForObjectValue` gives, empty for nil.
  [[nodiscard]] std::string stringFromDate(NSDate date) const;
  /// `dateFromString:`
  [[nodiscard]] std::optional<NSDate> dateFromString(std::string_view string) const;
  /// `stringForObjectValue:`  nil for what is no date, and for a date that is not finite or too far
  /// away for the calendar: some five million years, 10,000 in calendars beyond the Gregorian.
  [[nodiscard]] virtual std::optional<std::string> stringForObjectValue(const id& object) const;
  /// `getObjectValue:forString:range:error:`  Without a range all of the text must be a date, but
  /// for white space at its end. With one, in UTF-16 units and cut to the text, its beginning is
  /// read, and its length becomes what was taken. On failure the value is left, the range too, and
  /// the slot gets an error of `NSCocoaErrorDomain` with code 2048. `object` may be null.
  virtual bool getObjectValue(std::optional<NSDate>* object, std::string_view forString,
                              NSRange* range = nullptr, NSErrorSlot error = nullptr) const;

  static bool supportsSecureCoding() { return true; }
  static const NSCodingClass& codingClass();
  static std::shared_ptr<NSDateFormatter> initWithCoder(NSCoder& coder);
  void encodeWithCoder(NSCoder& coder) const override;
  const NSCodingClass& classForCoder() const override { return codingClass(); }

  [[nodiscard]] std::string className() const override { return "NSDateFormatter"; }
  /// A formatter of its own with the same settings, of the receiver's class.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;
  /// The lock of every operation. Recursive, for operations of subclasses around several of these.
  [[nodiscard]] std::recursive_mutex& lock() const noexcept { return lock_; }
  /// Takes over all settings of another formatter.
  void takeSettings(const NSDateFormatter& other);
  /// Takes over what `encodeWithCoder` wrote.
  void readSettings(NSCoder& coder);
  /// The date as `stringForObjectValue` prints it, but under the format given; for formats that are
  /// the receiver's own but for small changes.
  [[nodiscard]] std::optional<std::string> stringUnderFormat(std::string_view format,
                                                             NSDate date) const;

 private:
  mutable std::recursive_mutex lock_;
  std::unique_ptr<internal::format::NSDateFormatterState> state_;
};

}  // namespace ORLFoundation
