// The callbacks of libxml2.
#include <ORLFoundation/platform/xml/internal/PushSession.h>

#include <libxml/SAX2.h>

namespace ORLFoundation::internal::xml {

/// Runs a step inside of libxml2's frames; none where nothing more is wanted.
template <class Step>
void PushParser::Session::run(void* data, Step&& step) noexcept {
  Session& session = of(data);
  if (session.isOver_) return;
  try {
    step(session);
  } catch (...) {
    session.thrown_ = std::current_exception();
    session.end();
  }
}

xmlSAXHandler PushParser::Session::handlers() {
  xmlSAXHandler handler{};
  handler.initialized = XML_SAX2_MAGIC;
  handler.startDocument = [](void* data) {
    run(data, [](Session& session) {
      xmlSAX2StartDocument(session.context_.get());
      session.sink_.startDocument();
    });
  };
  handler.internalSubset = [](void* data, const xmlChar* name, const xmlChar* publicId,
                              const xmlChar* systemId) {
    run(data, [&](Session& session) {
      xmlSAX2InternalSubset(session.context_.get(), name, publicId, systemId);
    });
  };
  handler.elementDecl = [](void* data, const xmlChar* name, int type, xmlElementContentPtr) {
    run(data, [&](Session& session) { session.declareElement(name, type); });
  };
  handler.attributeDecl = [](void* data, const xmlChar* element, const xmlChar*, int, int,
                             const xmlChar* defaultValue, xmlEnumerationPtr values) {
    xmlFreeEnumeration(values);
    run(data, [&](Session& session) { session.declareAttribute(element, defaultValue); });
  };
  handler.entityDecl = [](void* data, const xmlChar* name, int type, const xmlChar* publicId,
                          const xmlChar* systemId, xmlChar* content) {
    run(data,
        [&](Session& session) { session.declareEntity(name, type, publicId, systemId, content); });
  };
  handler.getEntity = [](void* data, const xmlChar* name) {
    xmlEntityPtr found = nullptr;
    run(data, [&](Session& session) { found = session.entity(name); });
    return found;
  };
  handler.getParameterEntity = [](void* data, const xmlChar* name) {
    xmlEntityPtr found = nullptr;
    run(data, [&](Session& session) { found = session.parameterEntity(name); });
    return found;
  };
  handler.startElementNs = [](void* data, const xmlChar* localName, const xmlChar* prefix,
                              const xmlChar*, int namespaceCount, const xmlChar** namespaces,
                              int attributeCount, int defaultCount, const xmlChar** attributes) {
    run(data, [&](Session& session) {
      session.startElement({session.joinedName(prefix, localName),
                            {namespaces, TagAttributes::kTextsOfANamespace *
                                             static_cast<std::size_t>(namespaceCount)},
                            {attributes, TagAttributes::kTextsOfAnAttribute *
                                             static_cast<std::size_t>(attributeCount)},
                            static_cast<std::size_t>(defaultCount)});
    });
  };
  handler.endElementNs = [](void* data, const xmlChar* localName, const xmlChar* prefix,
                            const xmlChar*) {
    run(data, [&](Session& session) { session.endElement(session.joinedName(prefix, localName)); });
  };
  // One function for both: libxml2 then does not guess which blanks can be ignored.
  handler.characters = handler.ignorableWhitespace = [](void* data, const xmlChar* text,
                                                        int length) {
    run(data, [&](Session& session) { session.characters(viewOf(text, text + length), false); });
  };
  handler.cdataBlock = [](void* data, const xmlChar* text, int length) {
    run(data, [&](Session& session) { session.quotedCharacters(viewOf(text, text + length)); });
  };
  // Its parameter is constant in newer releases.
  handler.serror = [](void* data, auto error) {
    run(data, [&](Session& session) { session.hearOf(*error); });
  };
  return handler;
}

}  // namespace ORLFoundation::internal::xml
