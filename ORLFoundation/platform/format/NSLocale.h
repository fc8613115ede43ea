/// A locale: the identifier ("en_US", "de_DE") under which numbers and dates are written and read.
/// The process's current locale and the user's languages are replaceable defaults; nothing else is
/// global.
///
///     const auto british = NSLocale::localeWithLocaleIdentifier("en_GB");
///     british->objectForKey(NSLocaleCountryCode);  // "GB"
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class NSDictionary;

/// What `objectForKey` and `localeIdentifierFromComponents` know.
inline constexpr std::string_view NSLocaleIdentifier = "NSLocaleIdentifier";
inline constexpr std::string_view NSLocaleLanguageCode = "NSLocaleLanguageCode";
inline constexpr std::string_view NSLocaleScriptCode = "NSLocaleScriptCode";
inline constexpr std::string_view NSLocaleCountryCode = "NSLocaleCountryCode";
inline constexpr std::string_view NSLocaleDecimalSeparator = "NSLocaleDecimalSeparator";
inline constexpr std::string_view NSLocaleGroupingSeparator = "NSLocaleGroupingSeparator";

class NSLocale : public NSObject, public NSSecureCoding {
 public:
  /// `initWithLocaleIdentifier:`  Any text is taken; the marks of numbers and the words for them
  /// are those of the root locale where the language, or a keyword behind "@", is unknown.
  explicit NSLocale(std::string_view localeIdentifier);
  /// `localeWithLocaleIdentifier:`
  [[nodiscard]] static std::shared_ptr<NSLocale> localeWithLocaleIdentifier(
      std::string_view localeIdentifier);
  /// `localeIdentifierFromComponents:`  The texts under `NSLocaleLanguageCode`,
  /// `NSLocaleScriptCode` and `NSLocaleCountryCode`, as they are, with "_" between them: "en_GB".
  /// What is absent is left out, and so is its mark: {country: GB} gives "_GB", {} the empty text.
  [[nodiscard]] static std::string localeIdentifierFromComponents(const NSDictionary& components);
  /// `preferredLanguages`  The user's languages, the dearest first, as codes with dashes: "en-GB",
  /// "zh-Hans-CN", "fr". From the environment's locale until `setPreferredLanguages` replaces them.
  /// Safe on any thread.
  [[nodiscard]] static std::vector<std::string> preferredLanguages();
  /// Replaces the languages for the whole process and gives back those before; an empty list
  /// stands for the environment's.
  static std::vector<std::string> setPreferredLanguages(std::vector<std::string> languages);

  /// `currentLocale`  The locale of formatters that were given none; from the environment until
  /// `setCurrentLocale` replaces it. Safe on any thread.
  [[nodiscard]] static std::shared_ptr<NSLocale> currentLocale();
  /// Replaces the current locale for the whole process; nil restores the environment's. Gives back
  /// the one before it, nil for the environment's while nobody has asked for that.
  static std::shared_ptr<NSLocale> setCurrentLocale(std::shared_ptr<NSLocale> locale);

  /// `localeIdentifier`
  [[nodiscard]] const std::string& localeIdentifier() const noexcept { return identifier_; }
  /// `decimalSeparator`  UTF-8: "." in en_US, "," in de_DE.
  [[nodiscard]] std::string decimalSeparator() const;
  /// `groupingSeparator`
  [[nodiscard]] std::string groupingSeparator() const;
  /// `objectForKey:`  Text under the keys above; empty text for a part that the identifier lacks,
  /// and for any other key.
  [[nodiscard]] std::string objectForKey(std::string_view key) const;

  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  [[nodiscard]] static std::shared_ptr<NSLocale> initWithCoder(NSCoder& coder);
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

  [[nodiscard]] std::string className() const override { return "NSLocale"; }
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::string description() const override { return identifier_; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<NSLocale>(identifier_); });
  }

 private:
  std::string identifier_;
};

}  // namespace ORLFoundation
