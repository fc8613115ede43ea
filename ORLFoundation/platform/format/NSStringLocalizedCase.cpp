
#include <ORLFoundation/platform/format/NSStringLocalizedCase.h>

#include <ORLFoundation/platform/text/NSStringCase.h>

namespace ORLFoundation {

std::string localizedCapitalizedString(std::string_view text,
                                       const std::shared_ptr<NSLocale>& locale) {
  const std::shared_ptr<NSLocale> used = locale ? locale : NSLocale::currentLocale();
  return capitalizedStringWithLocale(text, used->localeIdentifier());
}

}  // namespace ORLFoundation
