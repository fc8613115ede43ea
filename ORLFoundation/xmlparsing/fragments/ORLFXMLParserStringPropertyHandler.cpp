#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserStringPropertyHandler.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>

namespace ORLFoundation {

bool ORLFXMLParserStringPropertyHandler::finalizeContent(std::string_view content,
                                                         std::string_view /*forElement*/) {
  const auto above = parent();
  if (propertyName_ && above) above->setValueForKey(content, *propertyName_);
  return true;
}

const NSKeyTable& ORLFXMLParserStringPropertyHandler::keyTable() const {
  using Self = ORLFXMLParserStringPropertyHandler;
  static const NSKeyTable table(
      ORLFXMLParserContentHandler::keyTable(),
      {NSKey::readWrite<&Self::propertyName, &Self::setPropertyName>("propertyName")});
  return table;
}

}  // namespace ORLFoundation
