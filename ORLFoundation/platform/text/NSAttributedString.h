/// A text with attributes, values under names, on stretches of its characters.
///
///     NSMutableAttributedString text("paid late");
///     text.addAttribute("color", "red", {5, 4});
///     text.attribute("color", 6);                       // "red"
///
/// Places and ranges count UTF-16 units; one beyond the end raises `NSRangeException`. Broken bytes
/// become U+FFFD.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// Bits of an enumeration.
enum NSAttributedStringEnumerationOptions : NSUInteger {
  NSAttributedStringEnumerationReverse = 2,
};

/// Called with the value of a stretch, nil where it has none; setting `stop` ends the walk.
using NSAttributeBlock = std::function<void(const id& value, NSRange range, bool& stop)>;

class NSAttributedString : public NSObject {
 public:
  /// `initWithString:attributes:`  nil stands for no attributes.
  explicit NSAttributedString(std::string_view string,
                              const std::shared_ptr<NSDictionary>& attributes = nullptr);

  /// `string`
  [[nodiscard]] const std::string& string() const noexcept { return string_; }
  /// `length`
  [[nodiscard]] NSUInteger length() const noexcept { return length_; }
  /// `attributesAtIndex:effectiveRange:`  Never null. The range is the longest stretch around the
  /// place with equal attributes.
  [[nodiscard]] std::shared_ptr<NSDictionary> attributesAtIndex(
      NSUInteger index, NSRange* effectiveRange = nullptr) const;
  /// `attribute:atIndex:effectiveRange:`  nil when it is absent there. The range is the longest one
  /// with equal values of this attribute.
  [[nodiscard]] id attribute(std::string_view name, NSUInteger atIndex,
                             NSRange* effectiveRange = nullptr) const;
  /// `enumerateAttribute:inRange:options:usingBlock:`  The longest stretches of the range with
  /// equal values, in order; nothing for an empty range. The block may change the text's
  /// attributes: the walk goes on over what they were.
  void enumerateAttribute(std::string_view name, NSRange inRange, NSUInteger options,
                          const NSAttributeBlock& usingBlock) const;

  [[nodiscard]] std::string className() const override { return "NSAttributedString"; }
  /// Equal texts with equal attributes at every place; a mutable one can equal one that is not.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// Each stretch followed by its attributes: "paid {\n}late{\n    color = red;\n}".
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

 protected:
  /// Attributes from a place to the next run's, neighbours unequal. The first run begins at 0; an
  /// empty text has none.
  struct Run {
    NSUInteger location;
    std::shared_ptr<NSDictionary> attributes;
  };
  struct Stretch {
    id value;
    NSRange range;
  };

  /// Asks for the constructor that copies; texts as such do not.
  struct CopyOf {
    const NSAttributedString& text;
  };
  explicit NSAttributedString(CopyOf other);

  void checkRange(NSRange range) const;
  [[nodiscard]] std::size_t runAt(NSUInteger place) const;
  [[nodiscard]] NSUInteger endOfRun(std::size_t run) const;
  [[nodiscard]] std::vector<Stretch> stretches(std::string_view name, NSRange range) const;

  const std::string string_;
  const NSUInteger length_;
  std::vector<Run> runs_;
};

class NSMutableAttributedString final : public NSAttributedString {
 public:
  using NSAttributedString::NSAttributedString;
  explicit NSMutableAttributedString(const NSAttributedString& other);

  /// `addAttribute:value:range:`  In place of the attribute's former values there. Raises
  /// `NSInvalidArgumentException` for a nil value.
  void addAttribute(std::string_view name, const id& value, NSRange range);
  /// `addAttributes:range:`
  void addAttributes(const NSDictionary& attributes, NSRange range);
  /// `removeAttribute:range:`
  void removeAttribute(std::string_view name, NSRange range);
  /// `setAttributes:range:`  nil stands for no attributes.
  void setAttributes(const std::shared_ptr<NSDictionary>& attributes, NSRange range);

  [[nodiscard]] std::string className() const override { return "NSMutableAttributedString"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 private:
  using Change = std::function<std::shared_ptr<NSDictionary>(const NSDictionary& before)>;
  std::size_t splitAt(NSUInteger place);
  void changeRuns(NSRange range, const Change& change);
  void joinRuns(std::size_t first, std::size_t last);
};

}  // namespace ORLFoundation
