
#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <ORLFoundation/decimal/entry/ORLFNumberFormattingLocale.h>
#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/format/NSFormattingError.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <utility>

namespace ORLFoundation {
namespace {

constexpr std::string_view kInvalidValueKey = "NSInvalidValue";
constexpr std::string_view kMinimumValidValueKey = "NSMinimumValidValue";
constexpr std::string_view kMaximumValidValueKey = "NSMaximumValidValue";
constexpr NSInteger kAboveMaximumError = 2559;

const NSKnownCodingClass<ORLFNumberFormatter> kFormattersAreKnown;

std::shared_ptr<const NSError> errorOfLimit(NSInteger code, const NSNumber& value,
                                            std::string_view key, const NSNumber& limit) {
  return NSError::errorWithDomain(
      NSCocoaErrorDomain, code,
      NSDictionary::dictionaryWithEntries({{kInvalidValueKey, value}, {key, limit}}));
}

}  // namespace

ORLFNumberFormatter::ORLFNumberFormatter() { takeInitialSettings(); }

void ORLFNumberFormatter::takeInitialSettings() {
  setLocale(orlfPerferredLocalForNumberFormatting());
  allowExpressions_ = true;
  setLenient(true);
}

std::shared_ptr<NSNumberFormatter> ORLFNumberFormatter::simpleFormatter() const {
  const std::lock_guard guard(lock_);
  return simpleFormatter_;
}

void ORLFNumberFormatter::setSimpleFormatter(const std::shared_ptr<NSNumberFormatter>& formatter) {
  auto kept = copyOf(formatter);
  const std::lock_guard guard(lock_);
  simpleFormatter_ = std::move(kept);
}

std::shared_ptr<NSNumberFormatter> ORLFNumberFormatter::neededSimpleFormatter() {
  const std::lock_guard guard(lock_);
  if (!simpleFormatter_) {
    simpleFormatter_ = std::make_shared<NSNumberFormatter>();
    simpleFormatter_->setLocale(locale());
    simpleFormatter_->setGeneratesDecimalNumbers(generatesDecimalNumbers());
    simpleFormatter_->setMinimum(minimum());
    simpleFormatter_->setMaximum(maximum());
  }
  return simpleFormatter_;
}

std::shared_ptr<NSCharacterSet> ORLFNumberFormatter::expressionCharacters() const {
  static const auto characters = NSCharacterSet::characterSetWithCharactersInString("+-*/[]");
  return characters;
}

std::shared_ptr<const NSError> ORLFNumberFormatter::errorValue(const NSNumber& value,
                                                               const NSNumber& isBelowMinimum) {
  return errorOfLimit(NSFormattingError, value, kMinimumValidValueKey, isBelowMinimum);
}

std::shared_ptr<const NSError> ORLFNumberFormatter::errorValueIsAboveMaximum(
    const NSNumber& value, const NSNumber& isAboveMaximum) {
  return errorOfLimit(kAboveMaximumError, value, kMaximumValidValueKey, isAboveMaximum);
}

bool ORLFNumberFormatter::getObjectValueBase(std::optional<NSNumber>* value,
                                             std::string_view forString, NSRange* range,
                                             NSErrorSlot error) {
  NSNumberText text(forString);
  return getObjectValueBase(value, text, range, error);
}

bool ORLFNumberFormatter::getObjectValueBase(std::optional<NSNumber>* value,
                                             NSNumberText& forString, NSRange* range,
                                             NSErrorSlot error) {
  std::shared_ptr<const NSError> first;
  if (NSNumberFormatter::getObjectValue(value, forString, range, error ? &first : nullptr))
    return true;
  const auto simple = neededSimpleFormatter();
  for (const auto style : {NSNumberFormatterDecimalStyle, NSNumberFormatterSpellOutStyle}) {
    simple->setNumberStyle(style);
    if (simple->getObjectValue(value, forString, range)) return true;
  }
  return NSFillErrorSlot(error, std::move(first));
}

bool ORLFNumberFormatter::isPartialStringValid(const NSPartialStringEdit& edit) {
  return isPartialStringValidBase(edit);
}

bool ORLFNumberFormatter::isPartialStringValidBase(const NSPartialStringEdit& edit) {
  if (isPartialStringValidOfBaseClass(edit)) return true;
  const NSNumberFormatterStyle style = numberStyle();
  bool isValid = false;
  for (const auto next : {NSNumberFormatterDecimalStyle, NSNumberFormatterSpellOutStyle}) {
    setNumberStyle(next);
    isValid = isPartialStringValidOfBaseClass(edit);
    if (isValid) break;
  }
  setNumberStyle(style);
  return isValid;
}

bool ORLFNumberFormatter::isPartialStringValidOfBaseClass(const NSPartialStringEdit& edit) {
  return NSNumberFormatter::isPartialStringValid(edit);
}

void ORLFNumberFormatter::awakeFromNib() {
  if (!localizesFormat()) return;
  const auto locale = orlfPerferredLocalForNumberFormatting();
  const auto separator = [&locale](std::string_view key) {
    return locale ? std::optional(locale->objectForKey(key)) : std::nullopt;
  };
  setDecimalSeparator(separator(NSLocaleDecimalSeparator));
  setGroupingSeparator(separator(NSLocaleGroupingSeparator));
}

const NSCodingClass& ORLFNumberFormatter::codingClass() {
  static const NSCodingClass& record = NSCodingClass::define<ORLFNumberFormatter>(
      "ORLFNumberFormatter", &NSNumberFormatter::codingClass());
  return record;
}

std::shared_ptr<ORLFNumberFormatter> ORLFNumberFormatter::initWithCoder(NSCoder& coder) {
  auto formatter = std::make_shared<ORLFNumberFormatter>();
  formatter->decodeWithCoder(coder);
  formatter->takeInitialSettings();
  return formatter;
}

std::shared_ptr<NSObject> ORLFNumberFormatter::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFNumberFormatter>();
}

std::shared_ptr<NSObject> ORLFNumberFormatter::copy() {
  auto copy = std::static_pointer_cast<ORLFNumberFormatter>(NSNumberFormatter::copy());
  copy->allowExpressions_ = allowExpressions_;
  return copy;
}

}  // namespace ORLFoundation
