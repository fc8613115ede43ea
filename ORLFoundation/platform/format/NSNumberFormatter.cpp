
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <ORLFoundation/platform/format/internal/NumberFormats.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <unicode/fieldpos.h>
#include <unicode/fmtable.h>
#include <unicode/numfmt.h>
#include <unicode/unistr.h>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace ORLFoundation {

using namespace internal::text;

namespace {

// From here on all doubles are whole, and ICU spells out doubles as less than they are.
constexpr double kFirstLarge = 9007199254740992.0;

// A large whole number in words, in digits where the words for it are missing.
std::string spelledOut(const icu::NumberFormat& format, const std::string& digits) {
  UErrorCode status = U_ZERO_ERROR;
  icu::Formattable number;
  number.setDecimalNumber(digits, status);
  icu::UnicodeString text;
  icu::FieldPosition everywhere(icu::FieldPosition::DONT_CARE);
  format.format(number, text, everywhere, status);
  return U_SUCCESS(status) ? utf8Of(text) : digits;
}

}  // namespace

NSNumberFormatter::NSNumberFormatter()
    : format_(std::make_unique<internal::format::NumberFormats>()) {}

NSNumberFormatter::~NSNumberFormatter() = default;

NSNumberFormatterStyle NSNumberFormatter::numberStyle() const noexcept {
  return format_->settings.style;
}

void NSNumberFormatter::setNumberStyle(NSNumberFormatterStyle style) {
  format_->settings.style = style;
}

const std::shared_ptr<NSLocale>& NSNumberFormatter::locale() const noexcept {
  return format_->settings.locale;
}

void NSNumberFormatter::setLocale(std::shared_ptr<NSLocale> locale) {
  format_->settings.locale = locale ? std::move(locale) : NSLocale::currentLocale();
  format_->changedLocale();
}

NSInteger NSNumberFormatter::minimumFractionDigits() const noexcept {
  return format_->current().getMinimumFractionDigits();
}

void NSNumberFormatter::setMinimumFractionDigits(NSInteger digits) {
  auto& settings = format_->settings;
  settings.minimumFractionDigits = digits;
  if (settings.maximumFractionDigits && *settings.maximumFractionDigits < digits)
    settings.maximumFractionDigits = digits;
  format_->changedDetails();
}

NSInteger NSNumberFormatter::maximumFractionDigits() const noexcept {
  return format_->current().getMaximumFractionDigits();
}

void NSNumberFormatter::setMaximumFractionDigits(NSInteger digits) {
  auto& settings = format_->settings;
  settings.maximumFractionDigits = digits;
  if (settings.minimumFractionDigits && *settings.minimumFractionDigits > digits)
    settings.minimumFractionDigits = digits;
  format_->changedDetails();
}

bool NSNumberFormatter::usesGroupingSeparator() const noexcept {
  return format_->current().isGroupingUsed();
}

void NSNumberFormatter::setUsesGroupingSeparator(bool uses) {
  format_->settings.usesGrouping = uses;
  format_->changedDetails();
}

std::string NSNumberFormatter::decimalSeparator() const {
  return format_->settings.decimalSeparator.value_or(locale()->decimalSeparator());
}

void NSNumberFormatter::setDecimalSeparator(std::optional<std::string> separator) {
  format_->settings.decimalSeparator = std::move(separator);
  format_->changedLocale();
}

std::string NSNumberFormatter::groupingSeparator() const {
  return format_->settings.groupingSeparator.value_or(locale()->groupingSeparator());
}

void NSNumberFormatter::setGroupingSeparator(std::optional<std::string> separator) {
  format_->settings.groupingSeparator = std::move(separator);
  format_->changedLocale();
}

bool NSNumberFormatter::isLenient() const noexcept { return format_->settings.isLenient; }

void NSNumberFormatter::setLenient(bool lenient) {
  format_->settings.isLenient = lenient;
  format_->changedDetails();
}

bool NSNumberFormatter::generatesDecimalNumbers() const noexcept {
  return format_->settings.generatesDecimals;
}

void NSNumberFormatter::setGeneratesDecimalNumbers(bool generates) {
  format_->settings.generatesDecimals = generates;
}

const std::optional<NSNumber>& NSNumberFormatter::minimum() const noexcept {
  return format_->settings.minimum;
}

void NSNumberFormatter::setMinimum(std::optional<NSNumber> minimum) {
  format_->settings.minimum = minimum;
}

const std::optional<NSNumber>& NSNumberFormatter::maximum() const noexcept {
  return format_->settings.maximum;
}

void NSNumberFormatter::setMaximum(std::optional<NSNumber> maximum) {
  format_->settings.maximum = maximum;
}

bool NSNumberFormatter::localizesFormat() const noexcept {
  return format_->settings.localizesFormat;
}

void NSNumberFormatter::setLocalizesFormat(bool localizes) {
  format_->settings.localizesFormat = localizes;
}

bool NSNumberFormatter::isPartialStringValidationEnabled() const noexcept {
  return format_->settings.validatesPartialStrings;
}

void NSNumberFormatter::setPartialStringValidationEnabled(bool enabled) {
  format_->settings.validatesPartialStrings = enabled;
}

std::optional<std::string> NSNumberFormatter::stringFromNumber(
    const std::optional<NSNumber>& number) const {
  if (!number) return std::nullopt;
  if (number->kind() == NSNumber::Kind::Double) return stringFromDouble(number->doubleValue());
  return stringFromDecimal(number->decimalValue());
}

std::optional<std::string> NSNumberFormatter::stringForObjectValue(const id& value) const {
  return stringFromNumber(value.as<NSNumber>());
}

std::string NSNumberFormatter::stringFromDouble(double number) const {
  if (std::isfinite(number) && format_->spellsOut() && std::abs(number) >= kFirstLarge) {
    std::array<char, std::numeric_limits<double>::max_exponent10 + 3> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                   std::chars_format::fixed, 0)
                         .ptr;
    return spelledOut(format_->current(), std::string(digits.data(), end));
  }
  icu::UnicodeString text;
  return utf8Of(format_->current().format(number, text));
}

std::string NSNumberFormatter::stringFromDecimal(const NSDecimal& number) const {
  const std::string digits = number.description();
  // ICU writes decimals in digits alone.
  if (format_->readsWords()) {
    const double nearest = number.doubleValue();
    return format_->spellsOut() && std::abs(nearest) >= kFirstLarge
               ? spelledOut(format_->current(), digits.substr(0, digits.find('.')))
               : stringFromDouble(nearest);
  }
  icu::UnicodeString text;
  UErrorCode status = U_ZERO_ERROR;
  format_->current().format(icu::StringPiece(digits), text, nullptr, status);
  return U_SUCCESS(status) ? utf8Of(text) : digits;
}

std::shared_ptr<NSObject> NSNumberFormatter::newObjectOfReceiversClass() const {
  return std::make_shared<NSNumberFormatter>();
}

std::shared_ptr<NSObject> NSNumberFormatter::copy() {
  auto copy = newObjectAs<NSNumberFormatter>();
  copy->format_->settings = format_->settings;
  copy->format_->changedLocale();
  return copy;
}

}  // namespace ORLFoundation
