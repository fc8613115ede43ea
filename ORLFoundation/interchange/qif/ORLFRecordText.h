/// What the writers of line records have in common: the text of one record, nil in it, and how
/// dates and amounts come into it.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {
class NSDateFormatter;
class NSNumberFormatter;
}  // namespace ORLFoundation

namespace ORLFoundation::internal::qif {

/// What stands in a line for nil.
inline constexpr std::string_view kNilText = "(null)";

/// A date by its formatter; nil as `kNilText`.
[[nodiscard]] std::string dateText(const NSDateFormatter& formatter,
                                   const std::optional<NSDate>& date);
/// A number by its formatter; what the formatter has no text for, nil among it, as `kNilText`. Of a
/// decimal 15 digits are written: 99999999999999.99 is "100,000,000,000,000.00". This is required.
[[nodiscard]] std::string numberText(const NSNumberFormatter& formatter,
                                     const std::optional<NSNumber>& number);

/// The lines of one record. Each begins with a mark, mostly a letter.
class ORLFRecordText {
 public:
  ORLFRecordText();

  /// A text as it stands.
  ORLFRecordText& add(std::string_view text);
  /// nil as `kNilText`.
  ORLFRecordText& addLine(std::string_view mark, std::optional<std::string_view> value);
  ORLFRecordText& addLine(std::string_view mark, const NSDateFormatter& formatter,
                          const std::optional<NSDate>& date);
  ORLFRecordText& addLine(std::string_view mark, const NSNumberFormatter& formatter,
                          const std::optional<NSNumber>& number);
  /// Nothing for nil; an empty text gives a line.
  ORLFRecordText& addPresent(std::string_view mark, std::optional<std::string_view> value);
  ORLFRecordText& addPresent(std::string_view mark, const NSNumberFormatter& formatter,
                             const std::optional<NSNumber>& number);
  /// By its description, through no formatter.
  ORLFRecordText& addPresentObject(std::string_view mark, const id& value);

  [[nodiscard]] const std::string& text() const noexcept { return text_; }

 private:
  std::string text_;
};

}  // namespace ORLFoundation::internal::qif
