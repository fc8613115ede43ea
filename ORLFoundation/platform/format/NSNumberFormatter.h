/// Numbers as text in a locale's marks, grouping and words, and back.
///
///     NSNumberFormatter formatter;
///     formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
///     formatter.stringFromDouble(1234567.8915);  // "1,234,567.892" in en_US
///     formatter.numberFromString("1,234.5");     // 1234.5
///
/// A formatter belongs to one thread at a time.
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/format/NSNumberText.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDecimal.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class id;

namespace internal::format {
class NumberFormats;
}  // namespace internal::format

enum NSNumberFormatterStyle : NSUInteger {
  /// Digits with a sign and a decimal mark: no grouping, no fraction digits. Values that name no
  /// style count as this one.
  NSNumberFormatterNoStyle = 0,
  /// Grouped digits with at most three fraction digits, ties to the even digit.
  NSNumberFormatterDecimalStyle = 1,
  /// With the sign and the fraction digits of the currency of the locale's country.
  NSNumberFormatterCurrencyStyle = 2,
  /// 0.05 is "5%".
  NSNumberFormatterPercentStyle = 3,
  /// "1.2345E3".
  NSNumberFormatterScientificStyle = 4,
  /// "one hundred five".
  NSNumberFormatterSpellOutStyle = 5,
  /// "21st".
  NSNumberFormatterOrdinalStyle = 6,
};

/// What a text field asks about a text that is being typed. The formatter changes neither text nor
/// selection.
struct NSPartialStringEdit {
  std::string_view partialString;
  NSRange* proposedSelectedRange = nullptr;
  std::string_view originalString = {};
  NSRange originalSelectedRange = {};
  std::string* errorDescription = nullptr;
};

class NSNumberFormatter : public NSObject, public NSSecureCoding {
 public:
  NSNumberFormatter();
  ~NSNumberFormatter() override;

  [[nodiscard]] NSNumberFormatterStyle numberStyle() const noexcept;
  /// `setNumberStyle:`  What was set of digits, grouping and separators stays as it was set.
  void setNumberStyle(NSNumberFormatterStyle style);
  /// `locale`  The process's current locale, read when the formatter is made, until set.
  [[nodiscard]] const std::shared_ptr<NSLocale>& locale() const noexcept;
  /// `setLocale:`  nil is the process's current locale.
  void setLocale(std::shared_ptr<NSLocale> locale);
  [[nodiscard]] NSInteger minimumFractionDigits() const noexcept;
  /// `setMinimumFractionDigits:`  Raises the maximum with it where needed: one that was set for
  /// good, that of the style only while the minimum is above it.
  void setMinimumFractionDigits(NSInteger digits);
  [[nodiscard]] NSInteger maximumFractionDigits() const noexcept;
  /// `setMaximumFractionDigits:`  Lowers the minimum in the same way.
  void setMaximumFractionDigits(NSInteger digits);
  /// `usesGroupingSeparator`  As the style has it until set.
  [[nodiscard]] bool usesGroupingSeparator() const noexcept;
  void setUsesGroupingSeparator(bool uses);
  /// `decimalSeparator`, `groupingSeparator`  The locale's until set; nil restores the locale's.
  [[nodiscard]] std::string decimalSeparator() const;
  void setDecimalSeparator(std::optional<std::string> separator);
  [[nodiscard]] std::string groupingSeparator() const;
  void setGroupingSeparator(std::optional<std::string> separator);
  /// `isLenient`  Whether texts are read with other spaces, signs, grouping and case than they
  /// would be written with. Not at first.
  [[nodiscard]] bool isLenient() const noexcept;
  void setLenient(bool lenient);
  /// `generatesDecimalNumbers`  Whether numbers that are read are decimals, digit by digit as they
  /// stand there; else they are integers and doubles. Not at first.
  [[nodiscard]] bool generatesDecimalNumbers() const noexcept;
  void setGeneratesDecimalNumbers(bool generates);
  /// `minimum`, `maximum`  Numbers beyond them are not read; nil is none. Any number is written.
  [[nodiscard]] const std::optional<NSNumber>& minimum() const noexcept;
  void setMinimum(std::optional<NSNumber> minimum);
  [[nodiscard]] const std::optional<NSNumber>& maximum() const noexcept;
  void setMaximum(std::optional<NSNumber> maximum);
  /// `localizesFormat`  For subclasses, which take separators of a locale of theirs when they awake
  /// from an interface file; true at first.
  [[nodiscard]] bool localizesFormat() const noexcept;
  void setLocalizesFormat(bool localizes);
  /// `isPartialStringValidationEnabled`  Not at first.
  [[nodiscard]] bool isPartialStringValidationEnabled() const noexcept;
  void setPartialStringValidationEnabled(bool enabled);

  /// `stringFromNumber:`  nil for nil.
  [[nodiscard]] std::optional<std::string> stringFromNumber(
      const std::optional<NSNumber>& number) const;
  /// `stringForObjectValue:`  nil for what is no number.
  [[nodiscard]] virtual std::optional<std::string> stringForObjectValue(const id& value) const;
  /// `stringFromNumber:`  Of a double. Not-a-number and infinities are written by their symbols;
  /// numbers that the language has no words for are spelled out in digits.
  [[nodiscard]] std::string stringFromDouble(double number) const;
  /// `stringFromNumber:`  Of a decimal, exactly, rounded to the fraction digits only; in words, of
  /// the nearest double, or from 2^53 on of its whole digits. At most 127 fraction digits are
  /// written.
  [[nodiscard]] std::string stringFromDecimal(const NSDecimal& number) const;

  /// `numberFromString:`  nil unless all of the text is a number, within the limits. White space
  /// and tabs in front count as part of it.
  [[nodiscard]] std::optional<NSNumber> numberFromString(std::string_view text);
  /// `getObjectValue:forString:range:error:`  Reads the number at the beginning of the text, or of
  /// the range, whatever stands behind it; the range then tells what was taken, in UTF-16 units,
  /// white space and tabs in front included. A range beyond the text is cut to it. On failure
  /// (false) value and range stay, and the error has the code 2048. Bounds on very long numbers
  /// stand in NSNumberText.h.
  bool getObjectValue(std::optional<NSNumber>* value, std::string_view forString,
                      NSRange* range = nullptr, NSErrorSlot error = nullptr);
  /// The same in place, for whoever reads several numbers of one text. Subclasses that read
  /// otherwise override this one.
  virtual bool getObjectValue(std::optional<NSNumber>* value, NSNumberText& forString,
                              NSRange* range = nullptr, NSErrorSlot error = nullptr);
  /// `isPartialStringValid:proposedSelectedRange:originalString:originalSelectedRange:
  /// errorDescription:`  true unless validation is enabled. Then for an empty text, one that
  /// `numberFromString` would read were there no limits, and one that a digit at its end would make
  /// such: "-", "12." in en_US. Else false, and the description says so.
  [[nodiscard]] virtual bool isPartialStringValid(const NSPartialStringEdit& edit);
  /// `awakeFromNib`  Does nothing here.
  virtual void awakeFromNib() {}

  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  /// `initWithCoder:`
  [[nodiscard]] static std::shared_ptr<NSNumberFormatter> initWithCoder(NSCoder& coder);
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

  [[nodiscard]] std::string className() const override { return "NSNumberFormatter"; }
  /// `copyWithZone:`  A formatter of the same class with the same settings.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;
  /// Takes the settings of an archive, for `initWithCoder` of subclasses.
  void decodeWithCoder(NSCoder& coder);

 private:
  std::unique_ptr<internal::format::NumberFormats> format_;
};

}  // namespace ORLFoundation
