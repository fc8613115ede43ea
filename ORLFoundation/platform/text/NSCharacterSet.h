/// A set of characters, of code points that is, asked one by one. Sets never change; the named ones
/// are made once and shared.
///
///     NSCharacterSet::whitespaceCharacterSet()->longCharacterIsMember(U'\u00A0');  // true
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSCharacterSet : public NSObject {
 public:
  struct Members;

  /// `characterSetWithCharactersInString:`  Broken bytes stand for U+FFFD.
  [[nodiscard]] static std::shared_ptr<NSCharacterSet> characterSetWithCharactersInString(
      std::string_view string);

  /// `whitespaceCharacterSet`  Tab, the space separators and U+200B; no line ends.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& whitespaceCharacterSet();
  /// `newlineCharacterSet`  U+000A to U+000D, U+0085, U+2028 and U+2029.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& newlineCharacterSet();
  /// `whitespaceAndNewlineCharacterSet`
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& whitespaceAndNewlineCharacterSet();
  /// `decimalDigitCharacterSet`  The digits of every script.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& decimalDigitCharacterSet();
  /// `letterCharacterSet`  Letters and the marks that combine with them.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& letterCharacterSet();
  /// `lowercaseLetterCharacterSet`
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& lowercaseLetterCharacterSet();
  /// `uppercaseLetterCharacterSet`  Title-case letters such as U+01C5 too.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& uppercaseLetterCharacterSet();
  /// `capitalizedLetterCharacterSet`  Title-case letters alone.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& capitalizedLetterCharacterSet();
  /// `alphanumericCharacterSet`  Letters, marks and numbers of every kind.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& alphanumericCharacterSet();
  /// `nonBaseCharacterSet`  Marks.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& nonBaseCharacterSet();
  /// `decomposableCharacterSet`  Characters that canonical decomposition takes apart.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& decomposableCharacterSet();
  /// `punctuationCharacterSet`
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& punctuationCharacterSet();
  /// `symbolCharacterSet`
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& symbolCharacterSet();
  /// `controlCharacterSet`  Control and format characters.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& controlCharacterSet();
  /// `illegalCharacterSet`  Code points that no character is assigned to, noncharacters among them.
  [[nodiscard]] static const std::shared_ptr<NSCharacterSet>& illegalCharacterSet();

  explicit NSCharacterSet(std::unique_ptr<const Members> members);
  ~NSCharacterSet() override;

  /// `longCharacterIsMember:`  false beyond U+10FFFF.
  [[nodiscard]] bool longCharacterIsMember(char32_t character) const noexcept {
    if (character >= 128) return isMemberBeyondASCII(character);
    return (ascii_[character / 64] >> (character % 64) & 1) != 0;
  }
  /// The members of this set and the characters of a text. Broken bytes stand for U+FFFD.
  [[nodiscard]] std::shared_ptr<NSCharacterSet> setByAddingCharactersInString(
      std::string_view string) const;
  /// The members of this set and of another; nil has none.
  [[nodiscard]] std::shared_ptr<NSCharacterSet> setByAddingCharactersOfSet(
      const NSCharacterSet* set) const;
  /// `invertedSet`
  [[nodiscard]] std::shared_ptr<NSCharacterSet> invertedSet() const;

  [[nodiscard]] std::string className() const override { return "NSCharacterSet"; }
  /// The same members.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override { return shared_from_this(); }

 private:
  [[nodiscard]] bool isMemberBeyondASCII(char32_t character) const noexcept;

  const std::unique_ptr<const Members> members_;
  std::array<std::uint64_t, 2> ascii_{};  // a bit for each character
};

}  // namespace ORLFoundation
