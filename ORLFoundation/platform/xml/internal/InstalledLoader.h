/// The loader that a host installed.
#pragma once

#include <ORLFoundation/platform/xml/NSXMLParserLoader.h>

#include <memory>

namespace ORLFoundation::internal::xml {

/// null where none is.
[[nodiscard]] std::shared_ptr<const NSXMLParserLoader> installedLoader();

}  // namespace ORLFoundation::internal::xml
