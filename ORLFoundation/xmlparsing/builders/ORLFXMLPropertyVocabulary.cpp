#include <ORLFoundation/xmlparsing/builders/ORLFXMLPropertyVocabulary.h>

namespace ORLFoundation {
namespace {

/// `merge` keeps what is there already: the later words take the earlier ones in.
template <class Family>
void takeIn(Family& words, Family earlier) {
  words.merge(earlier);
}

}  // namespace

ORLFXMLPropertyVocabulary ORLFXMLPropertyVocabulary::extendedBy(
    ORLFXMLPropertyVocabulary more) const {
  takeIn(more.basicTypes, basicTypes);
  takeIn(more.collections, collections);
  takeIn(more.texts, texts);
  takeIn(more.objects, objects);
  takeIn(more.elementAdders, elementAdders);
  return more;
}

}  // namespace ORLFoundation
