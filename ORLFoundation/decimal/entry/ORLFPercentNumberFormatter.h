/// A number formatter of percentages that takes a bare number for one: "5" is read as "5%".
///
///     ORLFPercentNumberFormatter formatter;
///     formatter.numberFromString("5");      // 0.05
///     formatter.stringFromDouble(0.12345);  // "12.345%" in en_US
///
/// In a locale that writes a blank before the sign, a bare number is not read.
#pragma once

#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

class ORLFPercentNumberFormatter : public NSNumberFormatter {
 public:
  /// `init`  Percent style, at most three fraction digits.
  ORLFPercentNumberFormatter();

  using NSNumberFormatter::getObjectValue;
  /// `getObjectValue:forString:range:error:`  As the base class reads it, else once more with a "%"
  /// behind the text and the range one longer; the second answer then counts, its error too. A text
  /// that holds a "%" anywhere is tried a second time as it stands.
  bool getObjectValue(std::optional<NSNumber>* value, NSNumberText& forString,
                      NSRange* range = nullptr, NSErrorSlot error = nullptr) override;
  /// `awakeFromNib`  Takes the separators of the current locale when `localizesFormat` is true.
  void awakeFromNib() override;

  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] static std::shared_ptr<ORLFPercentNumberFormatter> initWithCoder(NSCoder& coder);
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }
  [[nodiscard]] std::string className() const override { return "ORLFPercentNumberFormatter"; }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;
  /// The base class's reading, which both attempts go through.
  virtual bool getObjectValueOfBaseClass(std::optional<NSNumber>* value, NSNumberText& forString,
                                         NSRange* range, NSErrorSlot error);
};

}  // namespace ORLFoundation
