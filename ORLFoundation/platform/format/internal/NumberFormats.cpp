
#include <ORLFoundation/platform/format/internal/NumberFormats.h>

#include <ORLFoundation/platform/text/UTF16.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>
#include <unicode/rbnf.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace ORLFoundation::internal::format {
namespace {

// The most fraction digits that ICU writes.
constexpr NSInteger kMostFractionDigits = 127;

std::int32_t fractionDigits(NSInteger digits) {
  return static_cast<std::int32_t>(std::clamp<NSInteger>(digits, 0, kMostFractionDigits));
}

using Symbols = icu::DecimalFormatSymbols;

icu::NumberFormat* noStyle(const icu::Locale& locale, UErrorCode& status) {
  return new icu::DecimalFormat(icu::UnicodeString(u"#"), Symbols(locale, status), status);
}
template <UNumberFormatStyle style>
icu::NumberFormat* digits(const icu::Locale& locale, UErrorCode& status) {
  return icu::NumberFormat::createInstance(locale, style, status);
}
template <icu::URBNFRuleSetTag tag>
icu::NumberFormat* words(const icu::Locale& locale, UErrorCode& status) {
  return new icu::RuleBasedNumberFormat(tag, locale, status);
}

// By style.
using Maker = icu::NumberFormat* (*)(const icu::Locale& locale, UErrorCode& status);
constexpr Maker kMakers[] = {
    noStyle,
    digits<UNUM_DECIMAL>,
    digits<UNUM_CURRENCY>,
    digits<UNUM_PERCENT>,
    digits<UNUM_SCIENTIFIC>,
    words<icu::URBNF_SPELLOUT>,
    words<icu::URBNF_ORDINAL>,
};

// null where ICU makes nothing of the locale, a numbering system of no name among it.
std::unique_ptr<icu::NumberFormat> formatOf(std::size_t style, const icu::Locale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::NumberFormat> format(kMakers[style](locale, status));
  return U_SUCCESS(status) ? std::move(format) : nullptr;
}

// The symbol where it is one UTF-16 unit, else 0.
char16_t unitOf(const icu::UnicodeString& symbol) {
  return symbol.length() == 1 ? symbol.charAt(0) : u'\0';
}

}  // namespace

std::size_t NumberFormats::index() const noexcept {
  return settings.style < kStyles ? static_cast<std::size_t>(settings.style) : 0;
}

bool NumberFormats::readsWords() const { return entry().readsWords; }

bool NumberFormats::spellsOut() const {
  return readsWords() && index() != NSNumberFormatterOrdinalStyle;
}

NumberFormats::Entry& NumberFormats::entry() const {
  Entry& entry = entries_[index()];
  if (!entry.format) {
    entry = make(index());
    apply(entry, index());
  }
  return entry;
}

icu::NumberFormat& NumberFormats::current() const { return *entry().format; }

const PlainMarks& NumberFormats::plainMarks() const { return entry().plain; }

void NumberFormats::changedLocale() noexcept {
  for (Entry& entry : entries_) entry.format.reset();
}

void NumberFormats::changedDetails() {
  for (std::size_t style = 0; style < kStyles; ++style)
    if (entries_[style].format) apply(entries_[style], style);
}

NumberFormats::Entry NumberFormats::make(std::size_t style) const {
  Entry entry;
  entry.format = formatOf(style, icu::Locale(settings.locale->localeIdentifier().c_str()));
  if (!entry.format) entry.format = formatOf(style, icu::Locale::getRoot());
  if (!entry.format) throw std::runtime_error("no number format data");
  entry.minimumFractionDigits = entry.format->getMinimumFractionDigits();
  entry.maximumFractionDigits = entry.format->getMaximumFractionDigits();
  entry.readsWords = dynamic_cast<icu::RuleBasedNumberFormat*>(entry.format.get()) != nullptr;
  auto* decimal = dynamic_cast<icu::DecimalFormat*>(entry.format.get());
  if (decimal == nullptr) return entry;
  decimal->setRoundingMode(icu::NumberFormat::kRoundHalfEven);
  if (!settings.decimalSeparator && !settings.groupingSeparator) return entry;
  Symbols symbols(*decimal->getDecimalFormatSymbols());
  const auto set = [&symbols](const std::optional<std::string>& text, auto plain, auto monetary) {
    if (!text) return;
    symbols.setSymbol(plain, text::utf16Of(*text));
    symbols.setSymbol(monetary, text::utf16Of(*text));
  };
  set(settings.decimalSeparator, Symbols::kDecimalSeparatorSymbol,
      Symbols::kMonetarySeparatorSymbol);
  set(settings.groupingSeparator, Symbols::kGroupingSeparatorSymbol,
      Symbols::kMonetaryGroupingSeparatorSymbol);
  decimal->setDecimalFormatSymbols(symbols);
  return entry;
}

void NumberFormats::apply(Entry& entry, std::size_t style) const {
  icu::NumberFormat& format = *entry.format;
  format.setLenient(settings.isLenient);
  if (settings.usesGrouping) format.setGroupingUsed(*settings.usesGrouping);
  // Each bound moves the other, so that what was set before would show through.
  format.setMaximumFractionDigits(entry.maximumFractionDigits);
  format.setMinimumFractionDigits(entry.minimumFractionDigits);
  if (settings.minimumFractionDigits)
    format.setMinimumFractionDigits(fractionDigits(*settings.minimumFractionDigits));
  if (settings.maximumFractionDigits)
    format.setMaximumFractionDigits(fractionDigits(*settings.maximumFractionDigits));
  entry.plain = marksOf(format, style);
}

PlainMarks NumberFormats::marksOf(const icu::NumberFormat& format, std::size_t style) const {
  using Reach = PlainMarks::Reach;
  // With separators of one's own a digit, or what ends a number, may be one.
  if (settings.decimalSeparator || settings.groupingSeparator) return {};
  if (style == NSNumberFormatterSpellOutStyle) return {.reach = Reach::Words};
  const auto* decimal = dynamic_cast<const icu::DecimalFormat*>(&format);
  if (decimal == nullptr) return {};
  const Symbols& symbols = *decimal->getDecimalFormatSymbols();
  const char16_t mark = unitOf(symbols.getConstSymbol(Symbols::kDecimalSeparatorSymbol));
  if (style == NSNumberFormatterNoStyle && mark != 0)
    return {.reach = Reach::Fractions, .decimal = mark};
  if (style == NSNumberFormatterPercentStyle && settings.isLenient)
    return {.reach = Reach::Digits, .exponent = -2};
  if (style != NSNumberFormatterDecimalStyle || mark == 0) return {};
  const bool groups = decimal->isGroupingUsed() && decimal->getGroupingSize() == 3 &&
                      decimal->getSecondaryGroupingSize() <= 0;
  const char16_t grouping =
      groups ? unitOf(symbols.getConstSymbol(Symbols::kGroupingSeparatorSymbol)) : u'\0';
  return {.reach = Reach::Fractions, .decimal = mark, .grouping = grouping};
}

}  // namespace ORLFoundation::internal::format
