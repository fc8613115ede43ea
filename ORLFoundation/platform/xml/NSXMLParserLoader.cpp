#include <ORLFoundation/platform/xml/NSXMLParserLoader.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <ORLFoundation/platform/xml/internal/InstalledLoader.h>

#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::ReplaceableFunction<NSXMLParserLoader> loaders;

}  // namespace

NSXMLParserLoader NSSetXMLParserLoader(NSXMLParserLoader loader) {
  return loaders.exchange(std::move(loader));
}

namespace internal::xml {

std::shared_ptr<const NSXMLParserLoader> installedLoader() { return loaders.current(); }

}  // namespace internal::xml
}  // namespace ORLFoundation
