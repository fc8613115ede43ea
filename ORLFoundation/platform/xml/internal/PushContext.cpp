#include <ORLFoundation/platform/xml/internal/PushContext.h>

#include <mutex>
#include <new>

namespace ORLFoundation::internal::xml {

void FreePushContext::operator()(xmlParserCtxt* context) const noexcept {
  xmlFreeDoc(context->myDoc);  // it holds the document's declarations
  context->myDoc = nullptr;
  xmlFreeParserCtxt(context);
}

PushContext makePushContext(xmlSAXHandler handler, void* data, const NSXMLParserLimits& limits) {
  static std::once_flag initialized;
  std::call_once(initialized, xmlInitParser);
  PushContext context(xmlCreatePushParserCtxt(&handler, data, nullptr, 0, nullptr));
  if (!context) throw std::bad_alloc();
  // The limits of libxml2's own cannot be chosen, so they are lifted for ours.
  xmlCtxtUseOptions(context.get(), XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOWARNING);
  xmlDictSetLimit(context->dict, limits.namesLength);
  // For attributes' values. Of external entities, the option to load them stays off.
  context->replaceEntities = 1;
  return context;
}

}  // namespace ORLFoundation::internal::xml
