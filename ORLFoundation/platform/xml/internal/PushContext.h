/// The parser of libxml2 that takes a document in pieces.
#pragma once

#include <ORLFoundation/platform/xml/NSXMLParserLimits.h>
#include <libxml/parser.h>

#include <memory>

namespace ORLFoundation::internal::xml {

struct FreePushContext {
  void operator()(xmlParserCtxt* context) const noexcept;
};
using PushContext = std::unique_ptr<xmlParserCtxt, FreePushContext>;

/// One that opens nothing, with callbacks that are given `data`.
[[nodiscard]] PushContext makePushContext(xmlSAXHandler handler, void* data,
                                          const NSXMLParserLimits& limits);

}  // namespace ORLFoundation::internal::xml
