
#include <ORLFoundation/support/links/ORLFAppLinkHander.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>

#include <utility>

namespace ORLFoundation {

ORLFAppLinkHander::ORLFAppLinkHander(std::string_view pathPrefix, HandlerBlock handlerBlock)
    : pathPrefix_((pathPrefix.starts_with('/') ? "" : "/") + std::string(pathPrefix)),
      handlerBlock_(std::move(handlerBlock)) {}

std::string ORLFAppLinkHander::pathPrefixForMatchingInAppLinkManager(
    ORLFAppLinkManger& /*manager*/) {
  return pathPrefix_;
}

bool ORLFAppLinkHander::appLinkMangerHandleAppLinkURL(ORLFAppLinkManger& /*manager*/,
                                                      const NSURL& url) {
  return handlerBlock_ && handlerBlock_(pathPrefix_, url);
}

const NSKeyTable& ORLFAppLinkHander::keyTable() const {
  static const NSKeyTable table(NSObject::keyTable(),
                                {NSKey::readOnly<&ORLFAppLinkHander::pathPrefix>("pathPrefix")});
  return table;
}

}  // namespace ORLFoundation
