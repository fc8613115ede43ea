/// A number formatter for the amounts that people type: plain numbers, numbers in any shape of the
/// locale, in words, and small sums of them.
///
///     ORLFNumberFormatter formatter;
///     formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
///     formatter.numberFromString("12.50+3*[4-1]");  // 21.5
///     formatter.numberFromString("two*three");      // 6
///
/// The signs are + - * / and brackets. A sum is worked out from the left with two stacks, of values
/// and of operators, and takes what a person leaves out: "-5" is 0-5, "*3" is 1*3, a "/" with
/// nothing before it is passed over, "5+" is 5, "[2+3" is 5 and so is "2+3]". Division by zero is
/// no number and no error. Text of a megabyte, brackets a hundred thousand deep among it, is
/// answered within two seconds.
///
/// Limits are put aside during an evaluation: a formatter belongs to one thread at a time.
#pragma once

#include <ORLFoundation/decimal/entry/ORLFNumberFormatterOperator.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class ORLFNumberFormatter : public NSNumberFormatter {
 public:
  /// The last member is the top.
  using Values = std::vector<NSNumber>;
  using Operators = std::vector<std::shared_ptr<ORLFNumberFormatterOperator>>;

  /// `init`  With expressions, lenient, in the locale of `orlfPerferredLocalForNumberFormatting`,
  /// the current one when that is nil.
  ORLFNumberFormatter();

  /// `allowExpressions`
  [[nodiscard]] bool allowExpressions() const noexcept { return allowExpressions_; }
  void setAllowExpressions(bool allow) { allowExpressions_ = allow; }
  /// `simpleFormatter`  The plain second-chance parser: nil until a number needs it, then one with
  /// the locale, the limits and the kind of numbers that this formatter has at that moment; it
  /// keeps them whatever is set here later.
  [[nodiscard]] std::shared_ptr<NSNumberFormatter> simpleFormatter() const;
  /// `setSimpleFormatter:`  Keeps a copy.
  void setSimpleFormatter(const std::shared_ptr<NSNumberFormatter>& formatter);
  /// `expressionCharacters`  "+-*/[]".
  [[nodiscard]] std::shared_ptr<NSCharacterSet> expressionCharacters() const;

  /// `errorValue:isBelowMinimum:`  Code 2048 in `NSCocoaErrorDomain`, with the value under
  /// "NSInvalidValue" and the limit under "NSMinimumValidValue".
  [[nodiscard]] static std::shared_ptr<const NSError> errorValue(const NSNumber& value,
                                                                 const NSNumber& isBelowMinimum);
  /// `errorValue:isAboveMaximum:`  Code 2559, with "NSInvalidValue" and "NSMaximumValidValue". That
  /// the codes differ is required.
  [[nodiscard]] static std::shared_ptr<const NSError> errorValueIsAboveMaximum(
      const NSNumber& value, const NSNumber& isAboveMaximum);

  using NSNumberFormatter::getObjectValue;
  /// `getObjectValue:forString:range:error:`  Reads an expression where they are allowed, else one
  /// number; any text behind it is left, and the range tells what was taken. The limits bind the
  /// end value, not those on the way. An empty or blank text is read as nil.
  bool getObjectValue(std::optional<NSNumber>* value, NSNumberText& forString,
                      NSRange* range = nullptr, NSErrorSlot error = nullptr) override;
  /// `getExpressionValue:forString:range:error:`  The same without limits. Two numbers in a row are
  /// a failure, with the code 2048 and no user information when a number could be read all the
  /// same. White space between the parts is tabs and space separators; that behind the last one is
  /// not taken. A step that fails (a division by zero) changes the stacks and decides nothing; the
  /// last one does.
  bool getExpressionValue(std::optional<NSNumber>* value, std::string_view forString,
                          NSRange* range = nullptr, NSErrorSlot error = nullptr);
  virtual bool getExpressionValue(std::optional<NSNumber>* value, NSNumberText& forString,
                                  NSRange* range = nullptr, NSErrorSlot error = nullptr);
  /// `getObjectValueBase:forString:range:error:`  Reads one number: as the base class does, else in
  /// the decimal style, else in words. The error is that of the first attempt; the range is written
  /// on success only.
  bool getObjectValueBase(std::optional<NSNumber>* value, std::string_view forString,
                          NSRange* range = nullptr, NSErrorSlot error = nullptr);
  virtual bool getObjectValueBase(std::optional<NSNumber>* value, NSNumberText& forString,
                                  NSRange* range = nullptr, NSErrorSlot error = nullptr);

  /// `isPartialStringValid:...`  `isPartialStringValidBase`, with expressions or without.
  [[nodiscard]] bool isPartialStringValid(const NSPartialStringEdit& edit) override;
  /// `isPartialStringValidBase:...`  Asks the base class under the style, then under the decimal
  /// style, then in words, until it says yes. The style is as it was afterwards.
  [[nodiscard]] virtual bool isPartialStringValidBase(const NSPartialStringEdit& edit);

  /// `proccessOperator:withValues:operators:error:`  Works out what binds at least as tight as the
  /// operator that comes, and pushes that; with nil, all there is. false when a step has no result:
  /// its values are gone and its operator stays.
  bool proccessOperator(const std::shared_ptr<ORLFNumberFormatterOperator>& theOperator,
                        Values& withValues, Operators& operators, NSErrorSlot error = nullptr);
  /// `proccessEndGroupWithValues:operators:error:`  Works out all down to the start of the group
  /// and takes that away. No start is no failure.
  bool proccessEndGroupWithValues(Values& values, Operators& operators,
                                  NSErrorSlot error = nullptr);
  /// `pushLeftDefaultOperandForOpperator:ontoValues:`  false when an operator of two numbers has no
  /// default.
  bool pushLeftDefaultOperandForOpperator(const ORLFNumberFormatterOperator& theOperator,
                                          Values& ontoValues);

  /// `awakeFromNib`  When `localizesFormat` is true, takes the separators of
  /// `orlfPerferredLocalForNumberFormatting`; without that locale, those of the formatter's own.
  void awakeFromNib() override;

  [[nodiscard]] static const NSCodingClass& codingClass();
  /// `initWithCoder:`  What the base class kept, then the locale, expressions and leniency as a new
  /// formatter has them.
  [[nodiscard]] static std::shared_ptr<ORLFNumberFormatter> initWithCoder(NSCoder& coder);
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }
  [[nodiscard]] std::string className() const override { return "ORLFNumberFormatter"; }
  /// `copyWithZone:`  The base class's copy and `allowExpressions`.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;
  /// The base class's answer, which `isPartialStringValidBase` asks for.
  [[nodiscard]] virtual bool isPartialStringValidOfBaseClass(const NSPartialStringEdit& edit);

 private:
  class LimitsPutAside;

  void takeInitialSettings();
  [[nodiscard]] std::shared_ptr<NSNumberFormatter> neededSimpleFormatter();
  bool reduceTop(Values& values, Operators& operators, NSErrorSlot error);
  bool checkLimits(std::optional<NSNumber>& value, NSErrorSlot error) const;

  bool allowExpressions_ = true;
  mutable std::mutex lock_;  // Guards simpleFormatter_.
  std::shared_ptr<NSNumberFormatter> simpleFormatter_;
};

}  // namespace ORLFoundation
