// How number formatters are archived.

#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/format/internal/NumberFormats.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/Id.h>

#include <optional>
#include <string_view>

namespace ORLFoundation {
namespace {

// Part of stored archives: they never change.
constexpr std::string_view kStyleKey = "NS.numberStyle";
constexpr std::string_view kNumberLocaleKey = "NS.locale";
constexpr std::string_view kMinimumFractionDigitsKey = "NS.minimumFractionDigits";
constexpr std::string_view kMaximumFractionDigitsKey = "NS.maximumFractionDigits";
constexpr std::string_view kUsesGroupingKey = "NS.usesGroupingSeparator";
constexpr std::string_view kDecimalSeparatorKey = "NS.decimalSeparator";
constexpr std::string_view kGroupingSeparatorKey = "NS.groupingSeparator";
constexpr std::string_view kNumberLenientKey = "NS.lenient";
constexpr std::string_view kGeneratesDecimalsKey = "NS.generatesDecimalNumbers";
constexpr std::string_view kLocalizesFormatKey = "NS.localizesFormat";
constexpr std::string_view kValidatesPartialStringsKey = "NS.partialStringValidation";
constexpr std::string_view kMinimumKey = "NS.minimum";
constexpr std::string_view kMaximumKey = "NS.maximum";

// nil where the key is missing or the value is no number.
template <class T>
std::optional<T> decodeNumber(NSCoder& coder, std::string_view key) {
  return coder.decodeObjectOfClasses<NSNumber, NSDecimalNumber>(key).template as<T>();
}

}  // namespace

const NSCodingClass& NSNumberFormatter::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<NSNumberFormatter>("NSNumberFormatter");
  return record;
}

std::shared_ptr<NSNumberFormatter> NSNumberFormatter::initWithCoder(NSCoder& coder) {
  auto formatter = std::make_shared<NSNumberFormatter>();
  formatter->decodeWithCoder(coder);
  return formatter;
}

void NSNumberFormatter::encodeWithCoder(NSCoder& coder) const {
  const auto& settings = format_->settings;
  coder.encodeInteger(static_cast<NSInteger>(settings.style), kStyleKey);
  coder.encodeObject(settings.locale, kNumberLocaleKey);
  coder.encodeObject(settings.minimumFractionDigits, kMinimumFractionDigitsKey);
  coder.encodeObject(settings.maximumFractionDigits, kMaximumFractionDigitsKey);
  coder.encodeObject(settings.usesGrouping, kUsesGroupingKey);
  coder.encodeObject(settings.decimalSeparator, kDecimalSeparatorKey);
  coder.encodeObject(settings.groupingSeparator, kGroupingSeparatorKey);
  coder.encodeBool(settings.isLenient, kNumberLenientKey);
  coder.encodeBool(settings.generatesDecimals, kGeneratesDecimalsKey);
  coder.encodeBool(settings.localizesFormat, kLocalizesFormatKey);
  coder.encodeBool(settings.validatesPartialStrings, kValidatesPartialStringsKey);
  coder.encodeObject(settings.minimum, kMinimumKey);
  coder.encodeObject(settings.maximum, kMaximumKey);
}

void NSNumberFormatter::decodeWithCoder(NSCoder& coder) {
  auto& settings = format_->settings;
  settings.style = static_cast<NSNumberFormatterStyle>(coder.decodeInteger(kStyleKey));
  if (auto locale = coder.decodeObjectOfClass<NSLocale>(kNumberLocaleKey)) settings.locale = locale;
  settings.minimumFractionDigits = decodeNumber<NSInteger>(coder, kMinimumFractionDigitsKey);
  settings.maximumFractionDigits = decodeNumber<NSInteger>(coder, kMaximumFractionDigitsKey);
  settings.usesGrouping = decodeNumber<bool>(coder, kUsesGroupingKey);
  settings.decimalSeparator = coder.decodeObjectOfClass<std::string>(kDecimalSeparatorKey);
  settings.groupingSeparator = coder.decodeObjectOfClass<std::string>(kGroupingSeparatorKey);
  settings.isLenient = coder.decodeBool(kNumberLenientKey);
  settings.generatesDecimals = coder.decodeBool(kGeneratesDecimalsKey);
  settings.localizesFormat = coder.decodeBool(kLocalizesFormatKey);
  settings.validatesPartialStrings = coder.decodeBool(kValidatesPartialStringsKey);
  settings.minimum = decodeNumber<NSNumber>(coder, kMinimumKey);
  settings.maximum = decodeNumber<NSNumber>(coder, kMaximumKey);
  format_->changedLocale();
}

}  // namespace ORLFoundation
