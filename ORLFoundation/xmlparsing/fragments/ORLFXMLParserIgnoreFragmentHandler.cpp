#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserIgnoreFragmentHandler.h>

#include <ORLFoundation/platform/object/NSError.h>

namespace ORLFoundation {

std::shared_ptr<ORLFXMLParserFragmentHandler>
ORLFXMLParserIgnoreFragmentHandler::subFragmentHandlerForElementName(std::string_view name) {
  if (!ignoreElementOnly_)
    return std::make_shared<ORLFXMLParserIgnoreFragmentHandler>(ignoreElementOnly_);
  return logicalParent_ ? logicalParent_->subFragmentHandlerForElementName(name) : nullptr;
}

void ORLFXMLParserIgnoreFragmentHandler::beginFragmentWithParent(
    const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
    const std::shared_ptr<ORLFXMLParser>& /*parser*/) {
  const auto* skipping = parent ? parent->skippingHandler() : nullptr;
  logicalParent_ = skipping == nullptr ? parent : skipping->logicalParent();
}

void ORLFXMLParserIgnoreFragmentHandler::endFragment() { logicalParent_ = nullptr; }

ORLFXMLParserFragmentHandler::Error ORLFXMLParserIgnoreFragmentHandler::willStartSubElement(
    std::string_view /*name*/) {
  return nullptr;
}
ORLFXMLParserFragmentHandler::Error ORLFXMLParserIgnoreFragmentHandler::didFinishSubElement(
    std::string_view /*name*/) {
  return nullptr;
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserIgnoreFragmentHandler::startElement(
    std::string_view name, const std::shared_ptr<NSDictionary>& /*attributes*/) {
  elementName_ = name;
  return nullptr;
}
ORLFXMLParserFragmentHandler::Error ORLFXMLParserIgnoreFragmentHandler::endElement(
    std::string_view /*name*/) {
  return nullptr;
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserIgnoreFragmentHandler::foundCharacters(
    std::string_view text) {
  if (logicalParent_ && logicalParent_->takesUnhandledCharacters()) tellParent(text);
  return nullptr;
}

// Whitespace crosses over to characters. This is required.
ORLFXMLParserFragmentHandler::Error ORLFXMLParserIgnoreFragmentHandler::foundIgnorableWhitespace(
    std::string_view text) {
  if (logicalParent_ && logicalParent_->takesUnhandledIgnorableWhitespace()) tellParent(text);
  return nullptr;
}

void ORLFXMLParserIgnoreFragmentHandler::tellParent(std::string_view text) const {
  const auto parent = logicalParent_;  // it may end this very fragment
  const std::string name = elementName_.value_or(std::string());
  parent->unhandledSubElementFoundCharacters(name, text);
}

}  // namespace ORLFoundation
