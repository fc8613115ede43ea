#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserFragmentHandlerBase.h>

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

namespace ORLFoundation {

// In a loop: a document may nest as deep as a host lets it.
id ORLFXMLParserFragmentHandlerBase::parentObject() const {
  auto above = std::dynamic_pointer_cast<ORLFXMLParserFragmentHandlerBase>(parent());
  while (above) {
    if (auto object = above->objectForHandlersBeneath()) return *object;
    above = std::dynamic_pointer_cast<ORLFXMLParserFragmentHandlerBase>(above->parent());
  }
  return nullptr;
}

std::shared_ptr<ORLFXMLParserFragmentHandler>
ORLFXMLParserFragmentHandlerBase::subFragmentHandlerForElementName(std::string_view /*name*/) {
  return nullptr;
}

void ORLFXMLParserFragmentHandlerBase::beginFragmentWithParent(
    const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
    const std::shared_ptr<ORLFXMLParser>& parser) {
  setParser(parser);
  setParent(parent);
}

void ORLFXMLParserFragmentHandlerBase::endFragment() {
  setParser(nullptr);
  setParent(nullptr);
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserFragmentHandlerBase::willStartSubElement(
    std::string_view /*name*/) {
  return nullptr;
}
ORLFXMLParserFragmentHandler::Error ORLFXMLParserFragmentHandlerBase::didFinishSubElement(
    std::string_view /*name*/) {
  return nullptr;
}
ORLFXMLParserFragmentHandler::Error ORLFXMLParserFragmentHandlerBase::startElement(
    std::string_view /*name*/, const std::shared_ptr<NSDictionary>& /*attributes*/) {
  return nullptr;
}
ORLFXMLParserFragmentHandler::Error ORLFXMLParserFragmentHandlerBase::endElement(
    std::string_view /*name*/) {
  return nullptr;
}
ORLFXMLParserFragmentHandler::Error ORLFXMLParserFragmentHandlerBase::foundCharacters(
    std::string_view /*text*/) {
  return nullptr;
}
ORLFXMLParserFragmentHandler::Error ORLFXMLParserFragmentHandlerBase::foundIgnorableWhitespace(
    std::string_view /*text*/) {
  return nullptr;
}

const NSKeyTable& ORLFXMLParserFragmentHandlerBase::keyTable() const {
  using Base = ORLFXMLParserFragmentHandlerBase;
  static const NSKeyTable table(NSObject::keyTable(),
                                {
                                    NSKey::readWrite<&Base::parser, &Base::setParser>("parser"),
                                    NSKey::readWrite<&Base::parent, &Base::setParent>("parent"),
                                    NSKey::readOnly<&Base::parentObject>("parentObject"),
                                });
  return table;
}

}  // namespace ORLFoundation
