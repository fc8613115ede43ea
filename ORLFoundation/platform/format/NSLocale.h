/// A locale: the identifier ("en_US", "de_DE") under which numbers and dates are written and read.
/// The process's current locale is a replaceable default; nothing else is global.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSLocale : public NSObject {
 public:
  /// `initWithLocaleIdentifier:`  Any text is taken; marks and words of an unknown language are
  /// those of the root locale.
  explicit NSLocale(std::string_view localeIdentifier);

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
