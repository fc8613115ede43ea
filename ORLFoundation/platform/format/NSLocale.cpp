
#include <ORLFoundation/platform/format/NSLocale.h>

#include <unicode/dcfmtsym.h>
#include <unicode/locid.h>

#include <functional>
#include <mutex>
#include <utility>

namespace ORLFoundation {
namespace {

struct Current {
  std::mutex mutex;
  std::shared_ptr<NSLocale> locale;
};

Current& current() {
  static Current state;
  return state;
}

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

std::shared_ptr<NSLocale> NSLocale::currentLocale() {
  Current& state = current();
  const std::lock_guard lock(state.mutex);
  if (!state.locale) {
    state.locale = std::make_shared<NSLocale>(icu::Locale::getDefault().getBaseName());
  }
  return state.locale;
}

void NSLocale::setCurrentLocale(std::shared_ptr<NSLocale> locale) {
  Current& state = current();
  const std::lock_guard lock(state.mutex);
  state.locale = std::move(locale);
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
