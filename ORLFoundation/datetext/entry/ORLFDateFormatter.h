/// A formatter of dates for fields that people type into. It prints with parts as wide as one
/// likes, and reads far more than its format: the format itself, the short style of the process's
/// locale, then free numbers with "/", "." and "-" between them, whose missing parts are today's.
///
///     ORLFDateFormatter formatter;               // the short date style
///     formatter.setForceWideYear(true);
///     formatter.stringFromDate(date);            // "2/13/2021" in en_US
///     formatter.dateFromString("2021-02-13");    // the year first
///     formatter.dateFromString("5");             // the 5th of this month
///
/// Where the format begins with the day, 13/2/2021 and 2/13/2021 are read alike, since 13 is no
/// month. One digit at the end, of any script, gets a "0" before it, so that 1/2/5 is in 2005.
///
/// Safe on any thread: one recursive lock stands around each operation. A text is looked at as far
/// as `NSDateFormatter::kLongestText` by formats; the scan of numbers reads it in place.
#pragma once

#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// The user default that asks for wide parts with dashes between them, for tests that read dates
/// off the screen.
inline constexpr std::string_view ORLFDateFormatterUseTestingFormatKey =
    "ORLFDateFormatterUseTestingFormat";

class ORLFDateFormatter : public NSDateFormatter {
 private:
  struct Uninitialized {};

 public:
  /// `init`  The short date style, and the class's minimum.
  ORLFDateFormatter();
  /// For copies, which take everything over: neither style nor minimum.
  explicit ORLFDateFormatter(Uninitialized) {}

  /// `defaultMinimunDate`, `setDefaultMinimunDate:`  What new formatters take as `minimunDate`.
  [[nodiscard]] static std::optional<NSDate> defaultMinimunDate();
  static void setDefaultMinimunDate(std::optional<NSDate> date);
  /// `useTestingFormat`  The user default, read once in the process.
  [[nodiscard]] static bool useTestingFormat();

  /// Whether an empty text is a valid nil date.
  [[nodiscard]] bool allowNilDates() const;
  void setAllowNilDates(bool allow);
  /// Whether the year is printed with four digits, the month and the day with two.
  [[nodiscard]] bool forceWideYear() const;
  void setForceWideYear(bool force);
  [[nodiscard]] bool forceWideMonth() const;
  void setForceWideMonth(bool force);
  [[nodiscard]] bool forceWideDay() const;
  void setForceWideDay(bool force);
  /// Earlier dates are refused; nil refuses none.
  [[nodiscard]] std::optional<NSDate> minimunDate() const;
  void setMinimunDate(std::optional<NSDate> date);
  /// Whether the short format was understood, and whether its month comes before its day.
  [[nodiscard]] bool recognized() const;
  [[nodiscard]] bool monthFirst() const;
  /// A copy of the lenient formatter in the short style; nil where that was not understood.
  [[nodiscard]] std::shared_ptr<NSDateFormatter> shortDateFormatter() const;

  /// `updateFormatInfo`  Understands the short format of the process's locale anew: three numbers,
  /// the year at the end. Any other is told in the log, as "Unrecognized date format string
  /// y-MM-dd", and leaves `recognized` and `monthFirst` as they are. Without a date style nothing
  /// happens.
  void updateFormatInfo();
  /// `setDateStyle:`, `setDateFormat:`  As the base class, then `updateFormatInfo`.
  void setDateStyle(NSDateFormatterStyle style) override;
  void setDateFormat(std::string_view format) override;

  /// `stringForObjectValue:`  With a date style and no words for near days, parts are widened: what
  /// is forced, and the year of a date outside the hundred years from `twoDigitStartDate`, where
  /// two digits would read as another. The format stays as it is.
  [[nodiscard]] std::optional<std::string> stringForObjectValue(const id& object) const override;
  /// `getObjectValue:forString:range:error:`  As told above; a range counts UTF-16 units. Its
  /// length becomes what the format, or the short style, took of it, and stays where the numbers
  /// were scanned or nothing was read. Errors are of `NSCocoaErrorDomain` with code 2048, in the
  /// words of the main bundle: "This field requires a date." for an empty text, "Invalid date
  /// format" with a recovery suggestion, "Invalid date" with a failure reason for a date before the
  /// minimum. An empty text gives nil whatever the answer; otherwise the value is left as it was on
  /// failure.
  bool getObjectValue(std::optional<NSDate>* object, std::string_view forString,
                      NSRange* range = nullptr, NSErrorSlot error = nullptr) const override;
  /// `dayRangeForMonth:year:calendar:`  Location `NSNotFound` where there is no such month.
  [[nodiscard]] static NSRange dayRangeForMonth(NSInteger month, NSInteger year,
                                                const NSCalendar& calendar);

  static const NSCodingClass& codingClass();
  /// What the base class wrote, then the short style and the class's minimum as `init` sets them:
  /// neither a format of one's own nor the fields of this class are kept in archives.
  static std::shared_ptr<ORLFDateFormatter> initWithCoder(NSCoder& coder);
  const NSCodingClass& classForCoder() const override { return codingClass(); }

  [[nodiscard]] std::string className() const override { return "ORLFDateFormatter"; }
  /// With the wide parts, `allowNilDates` and `minimunDate`; the short format is understood anew.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  void setUp();
  [[nodiscard]] bool readsEmpty(std::optional<NSDate>* object, NSErrorSlot error) const;
  [[nodiscard]] std::optional<NSDate> readDate(std::string_view text, NSRange* range) const;
  [[nodiscard]] std::optional<NSDate> readUnderFormat(std::string_view text, NSRange* range) const;
  [[nodiscard]] std::optional<NSDate> scanned(std::string_view text) const;
  bool refuseFormat(NSErrorSlot error) const;
  bool refuseDate(NSErrorSlot error) const;
  [[nodiscard]] bool isOutsideHundredYears(NSDate date) const;

  // Under the base class's lock.
  bool allowNilDates_ = false;
  bool forceWideYear_ = false;
  bool forceWideMonth_ = false;
  bool forceWideDay_ = false;
  bool recognized_ = false;
  bool monthFirst_ = false;
  std::optional<NSDate> minimunDate_;
  std::shared_ptr<NSDateFormatter> shortDateFormatter_;
};

}  // namespace ORLFoundation
