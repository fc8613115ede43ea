
#include <ORLFoundation/platform/format/NSLocale.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <unicode/dcfmtsym.h>
#include <unicode/locid.h>

#include <functional>
#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::Replaceable<NSLocale> locales([] {
  return std::make_shared<NSLocale>(icu::Locale::getDefault().getBaseName());
});

std::string symbol(const std::string& identifier,
                   icu::DecimalFormatSymbols::ENumberFormatSymbol which) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DecimalFormatSymbols symbols(icu::Locale(identifier.c_str()), status);
  std::string text;
  if (U_SUCCESS(status)) symbols.getSymbol(which).toUTF8String(text);
  return text;
}

}  // namespace

NSLocale::NSLocale(std::string_view localeIdentifier) : identifier_(localeIdentifier) {}

std::shared_ptr<NSLocale> NSLocale::currentLocale() { return locales.current(); }

std::shared_ptr<NSLocale> NSLocale::setCurrentLocale(std::shared_ptr<NSLocale> locale) {
  return locales.exchange(std::move(locale));
}

std::string NSLocale::decimalSeparator() const {
  return symbol(identifier_, icu::DecimalFormatSymbols::kDecimalSeparatorSymbol);
}

std::string NSLocale::groupingSeparator() const {
  return symbol(identifier_, icu::DecimalFormatSymbols::kGroupingSeparatorSymbol);
}

bool NSLocale::isEqual(const NSObject* other) const {
  const auto* locale = dynamic_cast<const NSLocale*>(other);
  return locale != nullptr && locale->identifier_ == identifier_;
}

NSUInteger NSLocale::hash() const { return std::hash<std::string>()(identifier_); }

}  // namespace ORLFoundation
