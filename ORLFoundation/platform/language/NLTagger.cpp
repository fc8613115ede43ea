
#include <ORLFoundation/platform/language/NLTagger.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/language/internal/EnglishWordClasses.h>
#include <ORLFoundation/platform/text/UTF16.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace ORLFoundation {

struct NLTagger::Text {
  std::string bytes;
  icu::UnicodeString units;
};

namespace {

struct ClassOfTag {
  std::string_view tag;
  NSUInteger omittedBy;
};
constexpr ClassOfTag kNotWords[] = {
    {NLTagPunctuation, NLTaggerOmitPunctuation},
    {NLTagWhitespace, NLTaggerOmitWhitespace},
    {NLTagOther, NLTaggerOmitOther},
};

/// Word boundaries, lent to one walk at a time: opening them costs more than tagging a short text,
/// so each thread keeps one.
class WordBreaks {
 public:
  explicit WordBreaks(const icu::UnicodeString& text) : iterator_(std::move(spare())) {
    UErrorCode status = U_ZERO_ERROR;
    if (!iterator_)
      iterator_.reset(icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) throw NSException(NSInvalidArgumentException, u_errorName(status));
    iterator_->setText(text);
  }
  ~WordBreaks() { spare() = std::move(iterator_); }
  WordBreaks(const WordBreaks&) = delete;
  WordBreaks& operator=(const WordBreaks&) = delete;

  icu::BreakIterator* operator->() const { return iterator_.get(); }
  /// The boundary at a place, or before it.
  [[nodiscard]] std::int32_t atOrBefore(std::int32_t place) const {
    return place == 0 || iterator_->isBoundary(place) ? place : iterator_->preceding(place);
  }

 private:
  static std::unique_ptr<icu::BreakIterator>& spare() {
    thread_local std::unique_ptr<icu::BreakIterator> iterator;
    return iterator;
  }

  std::unique_ptr<icu::BreakIterator> iterator_;
};

std::string_view tagOfOther(UChar32 character) {
  if (u_isUWhiteSpace(character)) return NLTagWhitespace;
  return u_ispunct(character) ? NLTagPunctuation : NLTagOther;
}

/// The tag of a token, from the status of the boundary behind it.
std::string_view tagOf(std::string_view token, UChar32 first, std::int32_t status) {
  if (status < UBRK_WORD_NONE_LIMIT) return tagOfOther(first);
  if (status < UBRK_WORD_NUMBER_LIMIT) return NLTagNumber;
  return internal::language::classOfEnglishWord(token);
}

bool isOmitted(std::string_view tag, NSUInteger options) {
  const auto* const row = std::find_if(std::begin(kNotWords), std::end(kNotWords),
                                       [tag](const ClassOfTag& known) { return known.tag == tag; });
  return (options & (row == std::end(kNotWords) ? NLTaggerOmitWords : row->omittedBy)) != 0;
}

NSRange checkedRange(const NLTagEnumeration& enumeration, std::int32_t length) {
  const auto size = static_cast<NSUInteger>(length);
  const NSRange range = enumeration.inRange.value_or(NSRange{0, size});
  if (range.location > size || range.length > size - range.location)
    throw NSException(NSRangeException, "The range is beyond the end of the text.");
  return range;
}

/// The number of bytes that UTF-16 units take up in the well-formed text that begins here.
std::size_t bytesOfUnits(std::string_view text, std::int32_t units) {
  std::size_t at = 0;
  while (units > 0 && at < text.size()) {
    const internal::base::UTF8Character character =
        internal::base::firstUTF8Character(text.substr(at));
    units -= static_cast<std::int32_t>(internal::base::unitsInUTF16(character.codePoint));
    at += character.length;
  }
  return at;
}

}  // namespace

NLTagger::NLTagger(std::vector<std::string> tagSchemes) : text_(std::make_unique<Text>()) {
  for (const std::string& scheme : tagSchemes)
    if (scheme != NLTagSchemeLexicalClass)
      throw NSException(NSInvalidArgumentException, "Unknown tag scheme: " + scheme);
}

NLTagger::~NLTagger() = default;

void NLTagger::setString(std::string_view string) {
  text_->units = internal::text::utf16Of(string);
  text_->bytes = internal::text::utf8Of(text_->units);
}

const std::string& NLTagger::string() const noexcept { return text_->bytes; }

void NLTagger::enumerateTagsInRange(const NLTagEnumeration& enumeration) const {
  if (enumeration.scheme != NLTagSchemeLexicalClass || enumeration.unit != NLTokenUnitWord)
    throw NSException(NSInvalidArgumentException, "Only the lexical classes of words are told.");
  const NSRange range = checkedRange(enumeration, text_->units.length());
  if (range.length == 0) return;
  const WordBreaks breaks(text_->units);
  std::int32_t begin = breaks.atOrBefore(static_cast<std::int32_t>(range.location));
  std::string_view rest = text_->bytes;
  rest.remove_prefix(bytesOfUnits(rest, begin));
  bool stop = false;
  for (std::int32_t end = breaks->following(begin);
       !stop && end != icu::BreakIterator::DONE &&
       static_cast<NSUInteger>(begin) < NSMaxRange(range);
       end = breaks->next()) {
    const std::string_view token = rest.substr(0, bytesOfUnits(rest, end - begin));
    const std::string_view tag =
        tagOf(token, text_->units.char32At(begin), breaks->getRuleStatus());
    const NSRange place{static_cast<NSUInteger>(begin), static_cast<NSUInteger>(end - begin)};
    if (!isOmitted(tag, enumeration.options))
      enumeration.usingBlock(NLToken{tag, place, token}, stop);
    rest.remove_prefix(token.size());
    begin = end;
  }
}

}  // namespace ORLFoundation
