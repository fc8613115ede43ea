#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/xmlparsing/fragments/RefusedElement.h>

namespace ORLFoundation {

bool ORLFXMLParserContentHandler::checkpointContent(std::string_view /*content*/,
                                                    std::string_view /*forSubElement*/) {
  return true;
}
bool ORLFXMLParserContentHandler::finalizeContent(std::string_view /*content*/,
                                                  std::string_view /*forElement*/) {
  return true;
}

void ORLFXMLParserContentHandler::beginFragmentWithParent(
    const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
    const std::shared_ptr<ORLFXMLParser>& parser) {
  ORLFXMLParserFragmentHandlerBase::beginFragmentWithParent(parent, parser);
  content_.emplace();
}

void ORLFXMLParserContentHandler::endFragment() {
  ORLFXMLParserFragmentHandlerBase::endFragment();
  content_.reset();
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserContentHandler::willStartSubElement(
    std::string_view name) {
  if (checkpointContent(contentSoFar(), name) && content_) content_->clear();
  return nullptr;
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserContentHandler::endElement(std::string_view name) {
  if (auto error = ORLFXMLParserFragmentHandlerBase::endElement(name)) return error;
  return finalizeContent(contentSoFar(), name) ? nullptr : internal::fragments::refusedElement();
}

ORLFXMLParserFragmentHandler::Error ORLFXMLParserContentHandler::foundCharacters(
    std::string_view text) {
  append(text);
  return nullptr;
}
ORLFXMLParserFragmentHandler::Error ORLFXMLParserContentHandler::foundIgnorableWhitespace(
    std::string_view text) {
  if (includeIgnorableWhitespace_) append(text);
  return nullptr;
}
void ORLFXMLParserContentHandler::unhandledSubElementFoundCharacters(std::string_view /*name*/,
                                                                     std::string_view text) {
  if (includeUnhandledSubElementContent_) append(text);
}
void ORLFXMLParserContentHandler::unhandledSubElementFoundIgnorableWhitespace(
    std::string_view /*name*/, std::string_view text) {
  if (includeUnhandledSubElementContent_ && includeIgnorableWhitespace_) append(text);
}

void ORLFXMLParserContentHandler::append(std::string_view text) {
  if (content_) content_->append(text);
}
std::string_view ORLFXMLParserContentHandler::contentSoFar() const noexcept {
  return content_ ? std::string_view(*content_) : std::string_view();
}

const NSKeyTable& ORLFXMLParserContentHandler::keyTable() const {
  using Self = ORLFXMLParserContentHandler;
  static const NSKeyTable table(
      ORLFXMLParserFragmentHandlerBase::keyTable(),
      {
          NSKey::readWrite<&Self::content, &Self::setContent>("content"),
          NSKey::readWrite<&Self::includeIgnorableWhitespace, &Self::setIncludeIgnorableWhitespace>(
              "includeIgnorableWhitespace"),
          NSKey::readWrite<&Self::includeUnhandledSubElementContent,
                           &Self::setIncludeUnhandledSubElementContent>(
              "includeUnhandledSubElementContent"),
      });
  return table;
}

}  // namespace ORLFoundation
