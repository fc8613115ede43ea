
#include <ORLFoundation/platform/format/NSLocale.h>

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <unicode/dcfmtsym.h>
#include <unicode/locid.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::Replaceable<NSLocale> locales([] {
  return std::make_shared<NSLocale>(icu::Locale::getDefault().getBaseName());
});

using Languages = std::vector<std::string>;

constinit internal::base::Replaceable<const Languages> languages([] {
  std::string code = icu::Locale::getDefault().getBaseName();
  std::replace(code.begin(), code.end(), '_', '-');
  return std::make_shared<const Languages>(Languages{std::move(code)});
});

// Part of stored archives: it never changes.
constexpr std::string_view kIdentifierKey = "NS.identifier";

std::optional<std::string> symbolOf(const icu::Locale& locale,
                                    icu::DecimalFormatSymbols::ENumberFormatSymbol which) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DecimalFormatSymbols symbols(locale, status);
  if (U_FAILURE(status)) return std::nullopt;
  std::string text;
  return symbols.getSymbol(which).toUTF8String(text);
}

std::string symbol(const std::string& identifier,
                   icu::DecimalFormatSymbols::ENumberFormatSymbol which) {
  const auto text = symbolOf(icu::Locale(identifier.c_str()), which);
  return text ? *text : symbolOf(icu::Locale::getRoot(), which).value_or("");
}

}  // namespace

NSLocale::NSLocale(std::string_view localeIdentifier) : identifier_(localeIdentifier) {}

std::shared_ptr<NSLocale> NSLocale::currentLocale() { return locales.current(); }

std::shared_ptr<NSLocale> NSLocale::setCurrentLocale(std::shared_ptr<NSLocale> locale) {
  return locales.exchange(std::move(locale));
}

std::shared_ptr<NSLocale> NSLocale::localeWithLocaleIdentifier(std::string_view localeIdentifier) {
  return std::make_shared<NSLocale>(localeIdentifier);
}

std::string NSLocale::localeIdentifierFromComponents(const NSDictionary& components) {
  const auto text = [&components](std::string_view key) {
    return components.objectForKey(key).as<std::string>().value_or("");
  };
  std::string identifier = text(NSLocaleLanguageCode);
  for (const std::string_view key : {NSLocaleScriptCode, NSLocaleCountryCode})
    if (const std::string part = text(key); !part.empty()) identifier += "_" + part;
  return identifier;
}

std::vector<std::string> NSLocale::preferredLanguages() { return *languages.current(); }

std::vector<std::string> NSLocale::setPreferredLanguages(std::vector<std::string> list) {
  std::shared_ptr<const Languages> next;
  if (!list.empty()) next = std::make_shared<const Languages>(std::move(list));
  const auto before = languages.exchange(std::move(next));
  return before ? *before : Languages();
}

std::string NSLocale::decimalSeparator() const {
  return symbol(identifier_, icu::DecimalFormatSymbols::kDecimalSeparatorSymbol);
}

std::string NSLocale::groupingSeparator() const {
  return symbol(identifier_, icu::DecimalFormatSymbols::kGroupingSeparatorSymbol);
}

std::string NSLocale::objectForKey(std::string_view key) const {
  const icu::Locale locale(identifier_.c_str());
  if (key == NSLocaleIdentifier) return identifier_;
  if (key == NSLocaleLanguageCode) return locale.getLanguage();
  if (key == NSLocaleScriptCode) return locale.getScript();
  if (key == NSLocaleCountryCode) return locale.getCountry();
  if (key == NSLocaleDecimalSeparator) return decimalSeparator();
  if (key == NSLocaleGroupingSeparator) return groupingSeparator();
  return {};
}

const NSCodingClass& NSLocale::codingClass() {
  static const NSCodingClass& record = NSCodingClass::define<NSLocale>("NSLocale");
  return record;
}

std::shared_ptr<NSLocale> NSLocale::initWithCoder(NSCoder& coder) {
  const auto identifier = coder.decodeObjectOfClass<std::string>(kIdentifierKey);
  return identifier ? std::make_shared<NSLocale>(*identifier) : nullptr;
}

void NSLocale::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObject(identifier_, kIdentifierKey);
}

bool NSLocale::isEqual(const NSObject* other) const {
  const auto* locale = dynamic_cast<const NSLocale*>(other);
  return locale != nullptr && locale->identifier_ == identifier_;
}

NSUInteger NSLocale::hash() const { return std::hash<std::string>()(identifier_); }

}  // namespace ORLFoundation
