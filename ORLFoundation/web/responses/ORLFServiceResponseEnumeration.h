/// The texts that a service uses for the cases of an enumeration, and the numbers that a program
/// uses for them.
///
///     const ORLFServiceResponseEnumeration answers(
///         NSDictionary::dictionaryWithEntries({{"Yes", 1}, {"No", 0}}), false, NSNumber(-1));
///     answers.enumerationValueForString("YES");     // 1
///     answers.enumerationValueForString("maybe");   // -1
///     answers.stringForEnumerationValue(NSNumber(1));   // "Yes"
///
/// Objects never change and serve any thread.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class ORLFServiceResponseEnumeration final : public NSObject {
 public:
  /// `initWithStringMap:caseSensitive:unknownValueMarker:nilValueMarker:`  The map leads from texts
  /// to numbers. Where case does not count, of two texts that differ by case alone the later one
  /// holds; of two texts of one number the later one stands for it.
  ORLFServiceResponseEnumeration(const std::shared_ptr<NSDictionary>& stringMap, bool caseSensitive,
                                 const std::optional<NSNumber>& unknownValueMarker,
                                 const std::optional<NSNumber>& nilValueMarker = std::nullopt);

  [[nodiscard]] bool caseSensitive() const noexcept { return caseSensitive_; }
  /// `unknownValue`  For a text that is not in the map; nil for none.
  [[nodiscard]] const std::optional<NSNumber>& unknownValue() const noexcept {
    return unknownValue_;
  }
  /// `nilValue`  For an absent text; nil for none.
  [[nodiscard]] const std::optional<NSNumber>& nilValue() const noexcept { return nilValue_; }
  /// `canonicalMap`  Texts, in lower case where case does not count, to numbers.
  [[nodiscard]] const std::shared_ptr<NSDictionary>& canonicalMap() const noexcept {
    return canonicalMap_;
  }
  /// `inverseMap`  Numbers to texts as they were given.
  [[nodiscard]] const std::shared_ptr<NSDictionary>& inverseMap() const noexcept {
    return inverseMap_;
  }

  /// `enumerationValueForString:`  nil gives `nilValue`, and where that is nil, as any text that is
  /// not in the map, `unknownValue`.
  [[nodiscard]] std::optional<NSNumber> enumerationValueForString(
      std::optional<std::string_view> string) const;
  /// `validEnumerationString:`  Whether it is in the map; nil is not.
  [[nodiscard]] bool validEnumerationString(std::optional<std::string_view> string) const;
  /// `enumerationValuesForStrings:`  With an `unknownValue` a number for each text; without one the
  /// numbers of those that are in the map, so that places shift.
  [[nodiscard]] std::vector<NSNumber> enumerationValuesForStrings(
      const std::vector<std::string>& strings) const;
  /// `invalidEnumerationStringsForStrings:`  Those that are not in the map, as they were given.
  [[nodiscard]] std::vector<std::string> invalidEnumerationStringsForStrings(
      const std::vector<std::string>& strings) const;
  /// `stringForEnumerationValue:`  As the map was given it; nil for nil and for a number that is
  /// not in the map, the markers included.
  [[nodiscard]] std::optional<std::string> stringForEnumerationValue(
      const std::optional<NSNumber>& value) const;

  [[nodiscard]] std::string className() const override { return "ORLFServiceResponseEnumeration"; }

 private:
  [[nodiscard]] std::optional<NSNumber> valueInMap(std::string_view string) const;

  const bool caseSensitive_;
  const std::optional<NSNumber> unknownValue_, nilValue_;
  std::shared_ptr<NSDictionary> canonicalMap_, inverseMap_;
};

}  // namespace ORLFoundation
