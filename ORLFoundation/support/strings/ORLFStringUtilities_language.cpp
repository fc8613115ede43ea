// The operations that know of words and addresses.

#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/language/NLTagger.h>
#include <ORLFoundation/platform/language/NSDataDetector.h>
#include <ORLFoundation/platform/text/NSStringCase.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>

namespace ORLFoundation {
namespace {

constexpr NSUInteger kFewestLetters = 4;

bool staysAsItIs(const NLToken& token) {
  return token.range.location > 0 && token.range.length < kFewestLetters &&
         (token.tag == NLTagConjunction || token.tag == NLTagParticle ||
          token.tag == NLTagPreposition);
}

}  // namespace

std::string orlfTitleCase(std::string_view text, const std::shared_ptr<NSLocale>& locale) {
  const std::string language = (locale ? locale : NSLocale::currentLocale())->localeIdentifier();
  NLTagger tagger({std::string(NLTagSchemeLexicalClass)});
  tagger.setString(text);
  std::string title;
  title.reserve(text.size());
  tagger.enumerateTagsInRange(
      {.options = NLTaggerJoinContractions, .usingBlock = [&](const NLToken& token, bool&) {
         if (staysAsItIs(token)) {
           title += token.text;
         } else {
           title += capitalizedStringWithLocale(token.text, language);
         }
       }});
  return title;
}

bool isEmailAddress(std::string_view text) {
  if (text.empty()) return false;
  static const auto& detector =
      *new auto(NSDataDetector::dataDetectorWithTypes(NSTextCheckingTypeLink));
  int matches = 0;
  bool isWholeAddress = false;
  detector->enumerateMatchesInString(text, [&](const NSTextCheckingResult& match, bool& stop) {
    ++matches;
    // A scheme is the same in any case.
    isWholeAddress = internal::base::equalsLower(match.URL.scheme().value_or(""), "mailto") &&
                     match.range == NSRange{0, length(text)};
    stop = !isWholeAddress;
  });
  return matches == 1 && isWholeAddress;
}

}  // namespace ORLFoundation
