#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserObjectBuilder.h>

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/xmlparsing/builders/internal/BuilderSupport.h>
#include <ORLFoundation/xmlparsing/fragments/RefusedElement.h>

namespace ORLFoundation {

using namespace internal::builders;
using internal::fragments::refusedElement;

id ORLFXMLParserObjectBuilder::makeBuiltObjectForElement(
    std::string_view /*element*/, const std::shared_ptr<NSDictionary>& /*attributes*/) {
  return nullptr;
}

bool ORLFXMLParserObjectBuilder::finalizeBuiltObject(const id& /*object*/,
                                                     std::string_view /*forElement*/) {
  return true;
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserObjectBuilder::startElement(
    std::string_view name, const std::shared_ptr<NSDictionary>& attributes) {
  if (auto error = ORLFXMLParserContentHandler::startElement(name, attributes)) return error;
  setBuiltObject(makeBuiltObjectForElement(name, attributes));
  return builtObject_.isNil() && refusesUnclaimed(parser()) ? refusedElement() : nullptr;
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserObjectBuilder::endElement(std::string_view name) {
  if (auto error = ORLFXMLParserContentHandler::endElement(name)) return error;
  const id object = builtObject_;
  return object.isNil() || finalizeBuiltObject(object, name) ? nullptr : refusedElement();
}

void ORLFXMLParserObjectBuilder::setValueForUndefinedKey(const id& value, std::string_view key) {
  if (const auto object = builtObject_.object()) return object->setValueForKey(value, key);
  ORLFXMLParserContentHandler::setValueForUndefinedKey(value, key);
}

id ORLFXMLParserObjectBuilder::valueForUndefinedKey(std::string_view key) const {
  if (builtObject_) return builtObject_.valueForKey(key);
  return ORLFXMLParserContentHandler::valueForUndefinedKey(key);
}

const NSKeyTable& ORLFXMLParserObjectBuilder::keyTable() const {
  using Self = ORLFXMLParserObjectBuilder;
  static const NSKeyTable table(
      ORLFXMLParserContentHandler::keyTable(),
      {NSKey::readWrite<&Self::builtObject, &Self::setBuiltObject>("builtObject")});
  return table;
}

}  // namespace ORLFoundation
