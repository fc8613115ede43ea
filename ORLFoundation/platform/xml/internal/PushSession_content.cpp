// What a document declares, refers to and holds.
#include <ORLFoundation/platform/xml/internal/PushSession.h>

#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/platform/xml/internal/AttributeCounter.h>
#include <libxml/SAX2.h>

#include <algorithm>

namespace ORLFoundation::internal::xml {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

}  // namespace

void PushParser::Session::declareElement(const xmlChar* name, int type) {
  if (type == XML_ELEMENT_TYPE_ELEMENT) declarations_.addThatHoldsElementsAlone(viewOf(name));
}

void PushParser::Session::declareAttribute(const xmlChar* element, const xmlChar* defaultValue) {
  if (defaultValue == nullptr) return;
  const auto& defaults =
      declarations_.addDefaultAttribute(viewOf(element), viewOf(defaultValue).size());
  if (defaults.count > limits_.attributeCount) stopForAttributes();
}

void PushParser::Session::declareEntity(const xmlChar* name, int type, const xmlChar* publicId,
                                        const xmlChar* systemId, xmlChar* content) {
  // An external one is declared as one that holds nothing: it is never opened.
  xmlChar nothing = 0;
  if (type == XML_EXTERNAL_PARAMETER_ENTITY)
    xmlSAX2EntityDecl(context_.get(), name, XML_INTERNAL_PARAMETER_ENTITY, nullptr, nullptr,
                      &nothing);
  else
    xmlSAX2EntityDecl(context_.get(), name, type, publicId, systemId, content);
}

xmlEntityPtr PushParser::Session::entity(const xmlChar* name) {
  if (xmlEntityPtr known = xmlGetPredefinedEntity(name)) return known;
  xmlEntityPtr found = xmlGetDocEntity(context_->myDoc, name);
  if (context_->inSubset == 0) {
    if (found == nullptr) {
      stop(NSXMLParserUndeclaredEntityError,
           "The entity \"" + std::string(viewOf(name)) + "\" is not declared.");
    } else if (found->etype == XML_EXTERNAL_GENERAL_PARSED_ENTITY) {
      stop(NSXMLParserEntityIsExternalError,
           "The entity \"" + std::string(viewOf(name)) + "\" lies outside of the document.");
      return nullptr;
    }
  }
  return charged(found);
}

xmlEntityPtr PushParser::Session::charged(xmlEntityPtr found) {
  if (found == nullptr) return nullptr;
  const std::string_view text = viewOf(found->content);
  AttributeCounter counter;
  counter.read(text);
  if (counter.most() > limits_.attributeCount)
    stopForAttributes();
  else if (!expansion_.takeEntity(text, declarations_.mostDefaults()))
    stopForExpansion();
  return isOver_ ? nullptr : found;
}

xmlEntityPtr PushParser::Session::parameterEntity(const xmlChar* name) {
  xmlEntity* const found = xmlGetParameterEntity(context_->myDoc, name);
  if (found != nullptr && !expansion_.takeDeclarations(viewOf(found->content))) stopForExpansion();
  return isOver_ ? nullptr : found;
}

void PushParser::Session::stopForExpansion() {
  stop(NSXMLParserEntityRefLoopError, "The document's entities expand too far.");
}

void PushParser::Session::startElement(const Tag& tag) {
  if (open_.count() >= limits_.elementDepth)
    return stop(NSXMLParserInternalError, "The elements are nested too deep.");
  if (!isWithinLimits(tag)) return;
  open_.open(tag.namespaces.size() / TagAttributes::kTextsOfANamespace,
             declarations_.holdsElementsAlone(tag.name));
  beginText();
  const auto& attributes = attributes_.dictionary(tag.namespaces, tag.attributes);
  if (attributes == nullptr)
    return stop(XML_ERR_ATTRIBUTE_REDEFINED, "A prefix is declared twice in one tag.");
  sink_.startElement(tag.name, attributes);
}

bool PushParser::Session::isWithinLimits(const Tag& tag) {
  const std::size_t namespaces = tag.namespaces.size() / TagAttributes::kTextsOfANamespace;
  const std::size_t attributes = tag.attributes.size() / TagAttributes::kTextsOfAnAttribute;
  if (attributes + attributes_.emptyPrefixCount() + namespaces + open_.namespaces() >
      limits_.attributeCount) {
    stopForAttributes();
    return false;
  }
  if (TagAttributes::longestValue(tag.attributes) > limits_.textLength)
    stop(NSXMLParserInternalError, "The value of an attribute is too long.");
  else if (!expansion_.takeDefaults(TagAttributes::defaultsOf(tag.attributes, tag.defaultCount)))
    stopForExpansion();
  return !isOver_;
}

void PushParser::Session::stopForAttributes() {
  stop(NSXMLParserInternalError, "An element has too many attributes.");
}

void PushParser::Session::endElement(std::string_view name) {
  open_.close();
  beginText();
  sink_.endElement(name);
}

void PushParser::Session::beginText() noexcept {
  textLength_ = 0;
  textHasBegun_ = !open_.holdsElementsAlone();
}

void PushParser::Session::quotedCharacters(std::string_view text) {
  // A piece of a section lies in the input right behind the one before; another section does not.
  const xmlParserInput& input = *context_->input;
  const auto* const begin = reinterpret_cast<const xmlChar*>(text.data());
  const bool follows =
      quotedLineEnds_.isOpen() && begin > input.base && begin <= input.end && begin[-1] == '\r';
  characters(quotedLineEnds_.told(text, follows), true);
}

void PushParser::Session::characters(std::string_view text, bool isQuoted) {
  textLength_ += text.size();
  if (textLength_ > limits_.textLength)
    return stop(NSXMLParserInternalError, "A text is too long.");
  if (!textHasBegun_ && !isQuoted) {
    const std::size_t blanks = std::min(text.find_first_not_of(kBlanks), text.size());
    if (blanks > 0) sink_.ignorableWhitespace(text.substr(0, blanks));
    text.remove_prefix(blanks);
  }
  if (text.empty() || isOver_) return;
  textHasBegun_ = true;
  sink_.characters(text);
}

std::string_view PushParser::Session::joinedName(const xmlChar* prefix, const xmlChar* localName) {
  if (prefix == nullptr) return viewOf(localName);
  name_.assign(viewOf(prefix)).append(":").append(viewOf(localName));
  return name_;
}

}  // namespace ORLFoundation::internal::xml
