#include <ORLFoundation/platform/xml/internal/ElementDeclarations.h>

#include <algorithm>

namespace ORLFoundation::internal::xml {

void ElementDeclarations::addThatHoldsElementsAlone(std::string_view element) {
  holdElementsAlone_.emplace(element);
}

const DefaultAttributes& ElementDeclarations::addDefaultAttribute(std::string_view element,
                                                                  NSUInteger length) {
  DefaultAttributes& defaults = defaultAttributes_[std::string(element)];
  ++defaults.count;
  defaults.length += length;
  most_.count = std::max(most_.count, defaults.count);
  most_.length = std::max(most_.length, defaults.length);
  return defaults;
}

}  // namespace ORLFoundation::internal::xml
