
#include <ORLFoundation/platform/format/NSNumberFormatter.h>

#include <unicode/decimfmt.h>
#include <unicode/fmtable.h>
#include <unicode/locid.h>
#include <unicode/numfmt.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace ORLFoundation {
namespace {

// What each style asks of the formatter; the pattern itself is the locale's.
struct StyleSettings {
  NSNumberFormatterStyle style;
  bool grouping;
  NSInteger maximumFractionDigits;
};
constexpr StyleSettings kStyles[] = {
    {NSNumberFormatterNoStyle, false, 0},
    {NSNumberFormatterDecimalStyle, true, 3},
};

const StyleSettings& settingsOf(NSNumberFormatterStyle style) {
  const auto* found = std::find_if(std::begin(kStyles), std::end(kStyles),
                                   [style](const auto& row) { return row.style == style; });
  return found == std::end(kStyles) ? kStyles[0] : *found;
}

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

// The most fraction digits that are asked of ICU; a decimal holds no more.
constexpr NSInteger kMostFractionDigits = 166;

int32_t fractionDigits(NSInteger digits) {
  return static_cast<int32_t>(std::clamp<NSInteger>(digits, 0, kMostFractionDigits));
}

}  // namespace

struct NSNumberFormatter::Format {
  NSNumberFormatterStyle style = NSNumberFormatterNoStyle;
  std::shared_ptr<NSLocale> locale = NSLocale::currentLocale();
  std::unique_ptr<icu::NumberFormat> icuFormat;

  void rebuild() {
    UErrorCode status = U_ZERO_ERROR;
    icuFormat.reset(icu::NumberFormat::createInstance(
        icu::Locale(locale->localeIdentifier().c_str()), UNUM_DECIMAL, status));
    if (U_FAILURE(status) || !icuFormat) throw std::runtime_error("no number format data");
    const StyleSettings& settings = settingsOf(style);
    icuFormat->setGroupingUsed(settings.grouping);
    icuFormat->setMinimumFractionDigits(0);
    icuFormat->setMaximumFractionDigits(fractionDigits(settings.maximumFractionDigits));
    icuFormat->setRoundingMode(icu::NumberFormat::kRoundHalfEven);
  }
};

NSNumberFormatter::NSNumberFormatter() : format_(std::make_unique<Format>()) { format_->rebuild(); }

NSNumberFormatter::~NSNumberFormatter() = default;

NSNumberFormatterStyle NSNumberFormatter::numberStyle() const noexcept { return format_->style; }

void NSNumberFormatter::setNumberStyle(NSNumberFormatterStyle style) {
  format_->style = style;
  format_->rebuild();
}

const std::shared_ptr<NSLocale>& NSNumberFormatter::locale() const noexcept {
  return format_->locale;
}

void NSNumberFormatter::setLocale(std::shared_ptr<NSLocale> locale) {
  format_->locale = locale ? std::move(locale) : NSLocale::currentLocale();
  format_->rebuild();
}

NSInteger NSNumberFormatter::minimumFractionDigits() const noexcept {
  return format_->icuFormat->getMinimumFractionDigits();
}

void NSNumberFormatter::setMinimumFractionDigits(NSInteger digits) {
  format_->icuFormat->setMinimumFractionDigits(fractionDigits(digits));
}

NSInteger NSNumberFormatter::maximumFractionDigits() const noexcept {
  return format_->icuFormat->getMaximumFractionDigits();
}

void NSNumberFormatter::setMaximumFractionDigits(NSInteger digits) {
  format_->icuFormat->setMaximumFractionDigits(fractionDigits(digits));
}

std::string NSNumberFormatter::stringFromDouble(double number) const {
  icu::UnicodeString text;
  return utf8(format_->icuFormat->format(number, text));
}

std::string NSNumberFormatter::stringFromDecimal(const NSDecimal& number) const {
  const std::string digits = number.description();
  icu::UnicodeString text;
  UErrorCode status = U_ZERO_ERROR;
  format_->icuFormat->format(icu::StringPiece(digits), text, nullptr, status);
  return U_SUCCESS(status) ? utf8(text) : digits;
}

}  // namespace ORLFoundation
