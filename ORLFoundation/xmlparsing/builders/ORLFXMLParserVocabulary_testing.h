/// A parser of a vocabulary of two elements, for tests and fuzz targets.
#pragma once

#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserObjectBuilder.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <memory>
#include <string_view>

namespace orlftest {

class DictionaryBuilder : public ORLFoundation::ORLFXMLParserObjectBuilder {
  ORLFoundation::id makeBuiltObjectForElement(
      std::string_view /*element*/,
      const std::shared_ptr<ORLFoundation::NSDictionary>& /*attributes*/) override {
    return std::make_shared<ORLFoundation::NSMutableDictionary>();
  }
};

/// Builds a dictionary of each "object", and a property of each "property".
class VocabularyParser : public ORLFoundation::ORLFXMLParser {
 public:
  /// Of the first object.
  std::shared_ptr<DictionaryBuilder> top;
  Handler fragmentHandlerForElementName(std::string_view name) override {
    if (name == "property") return std::make_shared<ORLFoundation::ORLFXMLParserPropertyBuilder>();
    if (name != "object") return nullptr;
    const auto builder = std::make_shared<DictionaryBuilder>();
    if (!top) top = builder;
    return builder;
  }
};

}  // namespace orlftest
