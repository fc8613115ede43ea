#include <ORLFoundation/platform/xml/NSXMLParserLimits.h>

#include <ORLFoundation/platform/base/Replaceable.h>

#include <memory>

namespace ORLFoundation {
namespace {

constinit internal::base::Replaceable<const NSXMLParserLimits> processLimits([]() {
  return std::make_shared<const NSXMLParserLimits>();
});

}  // namespace

NSXMLParserLimits NSXMLParserCurrentLimits() { return *processLimits.current(); }

NSXMLParserLimits NSSetXMLParserLimits(NSXMLParserLimits limits) {
  return *processLimits.exchangeMade(std::make_shared<const NSXMLParserLimits>(limits));
}

}  // namespace ORLFoundation
