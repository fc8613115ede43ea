
#include <ORLFoundation/platform/language/internal/EnglishWordClasses.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/language/NLTagger.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

namespace ORLFoundation::internal::language {
namespace {

struct WordClass {
  std::string_view word, tag;
};

// In the order of the alphabet. "that", "like" and others are more than one class; the table has
// the one that stands between the words of a title.
constexpr WordClass kWordClasses[] = {
    {"aboard", NLTagPreposition},
    {"about", NLTagPreposition},
    {"above", NLTagPreposition},
    {"across", NLTagPreposition},
    {"after", NLTagPreposition},
    {"against", NLTagPreposition},
    {"along", NLTagPreposition},
    {"alongside", NLTagPreposition},
    {"although", NLTagConjunction},
    {"amid", NLTagPreposition},
    {"amidst", NLTagPreposition},
    {"among", NLTagPreposition},
    {"amongst", NLTagPreposition},
    {"and", NLTagConjunction},
    {"around", NLTagPreposition},
    {"as", NLTagPreposition},
    {"at", NLTagPreposition},
    {"atop", NLTagPreposition},
    {"away", NLTagParticle},
    {"back", NLTagParticle},
    {"because", NLTagConjunction},
    {"before", NLTagPreposition},
    {"behind", NLTagPreposition},
    {"below", NLTagPreposition},
    {"beneath", NLTagPreposition},
    {"beside", NLTagPreposition},
    {"besides", NLTagPreposition},
    {"between", NLTagPreposition},
    {"beyond", NLTagPreposition},
    {"but", NLTagConjunction},
    {"by", NLTagPreposition},
    {"circa", NLTagPreposition},
    {"concerning", NLTagPreposition},
    {"despite", NLTagPreposition},
    {"down", NLTagParticle},
    {"during", NLTagPreposition},
    {"ere", NLTagPreposition},
    {"except", NLTagPreposition},
    {"for", NLTagPreposition},
    {"from", NLTagPreposition},
    {"if", NLTagConjunction},
    {"in", NLTagPreposition},
    {"inside", NLTagPreposition},
    {"into", NLTagPreposition},
    {"lest", NLTagConjunction},
    {"like", NLTagPreposition},
    {"near", NLTagPreposition},
    {"nor", NLTagConjunction},
    {"notwithstanding", NLTagPreposition},
    {"of", NLTagPreposition},
    {"off", NLTagParticle},
    {"on", NLTagPreposition},
    {"once", NLTagConjunction},
    {"onto", NLTagPreposition},
    {"opposite", NLTagPreposition},
    {"or", NLTagConjunction},
    {"out", NLTagParticle},
    {"outside", NLTagPreposition},
    {"over", NLTagPreposition},
    {"past", NLTagPreposition},
    {"per", NLTagPreposition},
    {"pro", NLTagPreposition},
    {"provided", NLTagConjunction},
    {"qua", NLTagPreposition},
    {"regarding", NLTagPreposition},
    {"round", NLTagPreposition},
    {"sans", NLTagPreposition},
    {"since", NLTagConjunction},
    {"so", NLTagConjunction},
    {"so", NLTagConjunction},
    {"than", NLTagConjunction},
    {"that", NLTagConjunction},
    {"though", NLTagConjunction},
    {"through", NLTagPreposition},
    {"throughout", NLTagPreposition},
    {"till", NLTagPreposition},
    {"to", NLTagParticle},
    {"toward", NLTagPreposition},
    {"towards", NLTagPreposition},
    {"under", NLTagPreposition},
    {"underneath", NLTagPreposition},
    {"unless", NLTagConjunction},
    {"unlike", NLTagPreposition},
    {"until", NLTagConjunction},
    {"unto", NLTagPreposition},
    {"up", NLTagParticle},
    {"upon", NLTagPreposition},
    {"versus", NLTagPreposition},
    {"via", NLTagPreposition},
    {"vs", NLTagPreposition},
    {"when", NLTagConjunction},
    {"whenever", NLTagConjunction},
    {"whereas", NLTagConjunction},
    {"wherever", NLTagConjunction},
    {"whether", NLTagConjunction},
    {"while", NLTagConjunction},
    {"with", NLTagPreposition},
    {"within", NLTagPreposition},
    {"without", NLTagPreposition},
    {"yet", NLTagConjunction},
};

constexpr std::size_t kLongestWord = 15;

constexpr bool isSorted() {
  return std::is_sorted(
      std::begin(kWordClasses), std::end(kWordClasses),
      [](const WordClass& left, const WordClass& right) { return left.word < right.word; });
}
static_assert(isSorted());

constexpr bool fitsLongestWord() {
  return std::all_of(std::begin(kWordClasses), std::end(kWordClasses),
                     [](const WordClass& row) { return row.word.size() <= kLongestWord; });
}
static_assert(fitsLongestWord());

}  // namespace

std::string_view classOfEnglishWord(std::string_view word) noexcept {
  if (word.size() > kLongestWord) return NLTagOtherWord;
  std::array<char, kLongestWord> lower{};
  std::transform(word.begin(), word.end(), lower.begin(),
                 [](char c) { return base::lowerASCII(c); });
  const std::string_view key(lower.data(), word.size());
  const auto* const row = std::lower_bound(
      std::begin(kWordClasses), std::end(kWordClasses), key,
      [](const WordClass& entry, std::string_view text) { return entry.word < text; });
  return row != std::end(kWordClasses) && row->word == key ? row->tag : NLTagOtherWord;
}

}  // namespace ORLFoundation::internal::language
