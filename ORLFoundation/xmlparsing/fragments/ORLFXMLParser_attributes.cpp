#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/text/NSStringCase.h>
#include <ORLFoundation/platform/text/NSStringNumbers.h>

namespace ORLFoundation {

const std::shared_ptr<NSLocale>& ORLFXMLParser::USLocal() {
  static const std::shared_ptr<NSLocale> locale = std::make_shared<NSLocale>("en_US");
  return locale;
}

std::optional<NSDecimalNumber> ORLFXMLParser::decimalValueForString(
    const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return NSDecimalNumber::decimalNumberWithString(*text, USLocal()->localeIdentifier());
}

std::optional<long long> ORLFXMLParser::integerValueForString(
    const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return longLongValue(*text);
}

std::optional<bool> ORLFXMLParser::boolValueForString(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  const std::string upper = uppercaseString(*text);
  if (upper == "NO") return false;
  if (upper == "YES") return true;
  return std::nullopt;
}

std::optional<std::string> ORLFXMLParser::stringValueNamed(
    std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes) {
  if (!fromAttributes) return std::nullopt;
  return fromAttributes->objectForKey(name).as<std::string>();
}

std::optional<bool> ORLFXMLParser::boolValueNamed(
    std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes) {
  return boolValueForString(stringValueNamed(name, fromAttributes));
}

std::optional<long long> ORLFXMLParser::integerValueNamed(
    std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes) {
  return integerValueForString(stringValueNamed(name, fromAttributes));
}

std::optional<double> ORLFXMLParser::realValueNamed(
    std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes) {
  const auto text = stringValueNamed(name, fromAttributes);
  return text ? std::optional(doubleValue(*text)) : std::nullopt;
}

std::optional<NSDecimalNumber> ORLFXMLParser::decimalValueNamed(
    std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes) {
  return decimalValueForString(stringValueNamed(name, fromAttributes));
}

std::optional<std::string> ORLFXMLParser::selectorValueNamed(
    std::string_view name, const std::shared_ptr<NSDictionary>& fromAttributes) {
  return stringValueNamed(name, fromAttributes);
}

}  // namespace ORLFoundation
