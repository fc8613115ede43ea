/// A place in a text that moves on over what it reads.
///
///     NSScanner scanner("  12 apples");
///     scanner.scanCharactersFromSet(*NSCharacterSet::decimalDigitCharacterSet(), &digits);  // 12
///     scanner.scanString("apples");                                                      // true
///
/// Each scan first passes over the characters to be skipped, white space and line ends at first. A
/// scan that finds nothing leaves the place as it was, before what it skipped. Texts are compared
/// byte by byte; broken bytes count as U+FFFD in sets. What is found is a view of the text.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

class NSScanner : public NSObject {
 public:
  /// `initWithString:`
  explicit NSScanner(std::string string);
  /// A scanner over a text that the caller keeps alive, for long ones.
  [[nodiscard]] static std::shared_ptr<NSScanner> scannerOverString(std::string_view string);

  NSScanner(const NSScanner&) = delete;
  NSScanner& operator=(const NSScanner&) = delete;

  /// `string`
  [[nodiscard]] std::string_view string() const noexcept { return string_; }
  /// `scanLocation`  In UTF-16 units; the time to tell it grows with the text before it. Setting a
  /// place inside a character goes to its beginning; one beyond the end raises `NSRangeException`.
  [[nodiscard]] NSUInteger scanLocation() const;
  void setScanLocation(NSUInteger location);
  /// `charactersToBeSkipped`  null skips nothing.
  [[nodiscard]] const std::shared_ptr<NSCharacterSet>& charactersToBeSkipped() const noexcept {
    return skipped_;
  }
  void setCharactersToBeSkipped(std::shared_ptr<NSCharacterSet> set) { skipped_ = std::move(set); }

  /// The same in bytes, told at once. A place inside a character is not looked for.
  [[nodiscard]] std::size_t placeInBytes() const noexcept { return place_; }
  void setPlaceInBytes(std::size_t place);
  /// `isAtEnd`  Whether nothing but characters to be skipped is left.
  [[nodiscard]] bool isAtEnd() const { return placeBehindSkipped() == string_.size(); }

  /// `scanString:intoString:`  The text itself, case and all.
  bool scanString(std::string_view string, std::string_view* intoString = nullptr);
  /// `scanUpToString:intoString:`  What stands before the next such text, or before the end; false
  /// when it stands here.
  bool scanUpToString(std::string_view string, std::string_view* intoString = nullptr);
  /// `scanCharactersFromSet:intoString:`
  bool scanCharactersFromSet(const NSCharacterSet& set, std::string_view* intoString = nullptr);
  /// `scanUpToCharactersFromSet:intoString:`
  bool scanUpToCharactersFromSet(const NSCharacterSet& set, std::string_view* intoString = nullptr);

  [[nodiscard]] std::string className() const override { return "NSScanner"; }

 private:
  struct View {
    std::string_view text;
  };
  explicit NSScanner(View view) : string_(view.text) {}

  [[nodiscard]] std::size_t placeBehindSkipped() const;
  [[nodiscard]] std::size_t endOfRun(std::size_t from, const NSCharacterSet& set,
                                     bool areMembers) const;
  bool take(std::size_t start, std::size_t end, std::string_view* intoString);

  const std::string owned_;
  const std::string_view string_;
  std::size_t place_ = 0;
  std::shared_ptr<NSCharacterSet> skipped_ = NSCharacterSet::whitespaceAndNewlineCharacterSet();
};

}  // namespace ORLFoundation
