/// Cuts a text into words, punctuation and white space, and tells the lexical class of each word.
///
///     NLTagger tagger({std::string(NLTagSchemeLexicalClass)});
///     tagger.setString("of mice and men");
///     tagger.enumerateTagsInRange({.usingBlock = [](const NLToken& token, bool&) {
///       std::cout << token.text << '/' << token.tag << ' ';   // of/Preposition  /Whitespace ...
///     }});
///
/// Words end where Unicode's word boundaries are; contractions ("don't") are one word. The closed
/// classes of English are known, whatever the case of the word and the sentence around it: a word
/// of two classes has the one that it most often is. Every other word is NLTagOtherWord.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

inline constexpr std::string_view NLTagSchemeLexicalClass = "LexicalClass";

inline constexpr std::string_view NLTagConjunction = "Conjunction";
inline constexpr std::string_view NLTagParticle = "Particle";
inline constexpr std::string_view NLTagPreposition = "Preposition";
inline constexpr std::string_view NLTagNumber = "Number";
inline constexpr std::string_view NLTagOtherWord = "OtherWord";
inline constexpr std::string_view NLTagPunctuation = "Punctuation";
inline constexpr std::string_view NLTagWhitespace = "Whitespace";
/// Symbols, control characters and whatever else is no word.
inline constexpr std::string_view NLTagOther = "Other";

enum NLTokenUnit : NSInteger { NLTokenUnitWord = 0 };

/// Bits.
enum NLTaggerOptions : NSUInteger {
  NLTaggerOmitWords = 1,
  NLTaggerOmitPunctuation = 2,
  NLTaggerOmitWhitespace = 4,
  NLTaggerOmitOther = 8,
  /// Contractions are always joined here; the bit is taken for those who ask for it.
  NLTaggerJoinContractions = 32,
};

struct NLToken {
  std::string_view tag;
  /// In UTF-16 units of the tagger's text.
  NSRange range;
  /// Valid until the block returns.
  std::string_view text;
};

/// Called with each token in order; setting `stop` ends the walk.
using NLTokenBlock = std::function<void(const NLToken& token, bool& stop)>;

struct NLTagEnumeration {
  /// The whole text when absent.
  std::optional<NSRange> inRange = std::nullopt;
  NLTokenUnit unit = NLTokenUnitWord;
  std::string_view scheme = NLTagSchemeLexicalClass;
  NSUInteger options = 0;
  NLTokenBlock usingBlock = nullptr;
};

class NLTagger : public NSObject {
 public:
  struct Text;

  /// `initWithTagSchemes:`  Raises `NSInvalidArgumentException` for a scheme other than
  /// NLTagSchemeLexicalClass.
  explicit NLTagger(std::vector<std::string> tagSchemes);
  ~NLTagger() override;

  /// `setString:`  Broken bytes become U+FFFD.
  void setString(std::string_view string);
  /// `string`
  [[nodiscard]] const std::string& string() const noexcept;

  /// `enumerateTagsInRange:unit:scheme:options:usingBlock:`  The tokens that touch the range.
  /// Raises `NSRangeException` for one beyond the end of the text. The block must not change the
  /// tagger.
  void enumerateTagsInRange(const NLTagEnumeration& enumeration) const;

  [[nodiscard]] std::string className() const override { return "NLTagger"; }

 private:
  std::unique_ptr<Text> text_;
};

}  // namespace ORLFoundation
