/// What both builders ask.
#pragma once

#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <memory>

namespace ORLFoundation::internal::builders {

/// Whether an element of which nothing can be made is an error; without a parser it is.
[[nodiscard]] inline bool refusesUnclaimed(const std::shared_ptr<ORLFXMLParser>& parser) {
  return !parser || parser->unhandledElementBehavior() == 0;
}

}  // namespace ORLFoundation::internal::builders
