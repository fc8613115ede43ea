
#include <ORLFoundation/web/responses/ORLFServiceResponseEnumeration.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/text/NSStringCase.h>
#include <ORLFoundation/support/collections/ORLFArrayUtilities.h>

namespace ORLFoundation {

ORLFServiceResponseEnumeration::ORLFServiceResponseEnumeration(
    const std::shared_ptr<NSDictionary>& stringMap, bool caseSensitive,
    const std::optional<NSNumber>& unknownValueMarker,
    const std::optional<NSNumber>& nilValueMarker)
    : caseSensitive_(caseSensitive), unknownValue_(unknownValueMarker), nilValue_(nilValueMarker) {
  NSDictionary::Entries canonical, inverse;
  if (stringMap) canonical = stringMap->entries();
  for (const auto& [string, value] : canonical) inverse.emplace_back(value, string);
  for (auto& [string, value] : canonical)
    if (const auto text = string.as<std::string>(); text && !caseSensitive)
      string = lowercaseString(*text);
  canonicalMap_ = std::make_shared<NSDictionary>(canonical);
  inverseMap_ = std::make_shared<NSDictionary>(inverse);
}

std::optional<NSNumber> ORLFServiceResponseEnumeration::valueInMap(std::string_view string) const {
  return canonicalMap_->objectForKey(caseSensitive_ ? std::string(string) : lowercaseString(string))
      .as<NSNumber>();
}

std::optional<NSNumber> ORLFServiceResponseEnumeration::enumerationValueForString(
    std::optional<std::string_view> string) const {
  const auto value = string ? valueInMap(*string) : nilValue_;
  return value ? value : unknownValue_;
}

bool ORLFServiceResponseEnumeration::validEnumerationString(
    std::optional<std::string_view> string) const {
  return string && valueInMap(*string);
}

std::vector<NSNumber> ORLFServiceResponseEnumeration::enumerationValuesForStrings(
    const std::vector<std::string>& strings) const {
  std::vector<NSNumber> values;
  for (const std::string& string : strings)
    if (const auto value = enumerationValueForString(string)) values.push_back(*value);
  return values;
}

std::vector<std::string> ORLFServiceResponseEnumeration::invalidEnumerationStringsForStrings(
    const std::vector<std::string>& strings) const {
  const NSArray all(std::vector<id>(strings.begin(), strings.end()));
  const auto invalid = orlfFilteredArrayUsingBlock(all, [this](const id& string) {
    return !validEnumerationString(*string.get<std::string>());
  });
  std::vector<std::string> texts;
  for (const id& string : *invalid) texts.push_back(*string.get<std::string>());
  return texts;
}

std::optional<std::string> ORLFServiceResponseEnumeration::stringForEnumerationValue(
    const std::optional<NSNumber>& value) const {
  return value ? inverseMap_->objectForKey(*value).as<std::string>() : std::nullopt;
}

}  // namespace ORLFoundation
