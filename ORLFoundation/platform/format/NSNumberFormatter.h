/// Numbers as text in a locale's marks and grouping.
///
///     NSNumberFormatter formatter;
///     formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
///     formatter.stringFromDouble(1234567.8915);  // "1,234,567.892" in en_US
///
/// A formatter belongs to one thread at a time.
#pragma once

#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDecimal.h>

#include <memory>
#include <string>

namespace ORLFoundation {

enum NSNumberFormatterStyle : NSUInteger {
  /// Digits with a sign and a decimal mark: no grouping, no fraction digits.
  NSNumberFormatterNoStyle = 0,
  /// Grouped digits with at most three fraction digits, ties to the even digit.
  NSNumberFormatterDecimalStyle = 1,
};

class NSNumberFormatter : public NSObject {
 public:
  NSNumberFormatter();
  ~NSNumberFormatter() override;

  [[nodiscard]] NSNumberFormatterStyle numberStyle() const noexcept;
  void setNumberStyle(NSNumberFormatterStyle style);
  /// `locale`  The process's current locale, read when the formatter is made, until set.
  [[nodiscard]] const std::shared_ptr<NSLocale>& locale() const noexcept;
  /// `setLocale:`  nil is the process's current locale.
  void setLocale(std::shared_ptr<NSLocale> locale);
  [[nodiscard]] NSInteger minimumFractionDigits() const noexcept;
  /// `setMinimumFractionDigits:`  Raises the maximum with it where needed.
  void setMinimumFractionDigits(NSInteger digits);
  [[nodiscard]] NSInteger maximumFractionDigits() const noexcept;
  /// `setMaximumFractionDigits:`  Lowers the minimum with it where needed.
  void setMaximumFractionDigits(NSInteger digits);

  /// `stringFromNumber:`  Of a double. Not-a-number and infinities are written by their symbols.
  [[nodiscard]] std::string stringFromDouble(double number) const;
  /// `stringFromNumber:`  Of a decimal, exactly, rounded to the fraction digits only.
  [[nodiscard]] std::string stringFromDecimal(const NSDecimal& number) const;

  [[nodiscard]] std::string className() const override { return "NSNumberFormatter"; }

 private:
  struct Format;
  std::unique_ptr<Format> format_;
};

}  // namespace ORLFoundation
