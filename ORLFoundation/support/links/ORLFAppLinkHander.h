/// What takes links into the application: a prefix of paths, and what is to be done with a link
/// whose path begins with it.
///
///     manager->registerAppLinkHandler(std::make_shared<ORLFAppLinkHander>(
///         "/accounts/", [](const std::string& prefix, const NSURL& url) { return show(url); }));
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class ORLFAppLinkManger;

/// Any handler. Its operations run under the manager's lock, which the running thread may take
/// again: a handler may register and unregister handlers.
class ORLFAppLinkHanderProtocol : public NSObject {
 public:
  /// `pathPrefixForMatchingInAppLinkManager:`  Asked anew with each use.
  [[nodiscard]] virtual std::string pathPrefixForMatchingInAppLinkManager(
      ORLFAppLinkManger& manager) = 0;
  /// `appLinkManger:handleAppLinkURL:`  true when the link has been taken; false leaves it to the
  /// next handler.
  [[nodiscard]] virtual bool appLinkMangerHandleAppLinkURL(ORLFAppLinkManger& manager,
                                                           const NSURL& url) = 0;
};

/// A handler around a callback.
class ORLFAppLinkHander final : public ORLFAppLinkHanderProtocol {
 public:
  using HandlerBlock = std::function<bool(const std::string& pathPrefix, const NSURL& url)>;

  /// `initWithPathPrefix:handlerBlock:`  A prefix that does not begin with a slash gets one, so ""
  /// is "/". A handler without a block takes no link.
  ORLFAppLinkHander(std::string_view pathPrefix, HandlerBlock handlerBlock);

  [[nodiscard]] const std::string& pathPrefix() const noexcept { return pathPrefix_; }
  [[nodiscard]] const HandlerBlock& handlerBlock() const noexcept { return handlerBlock_; }

  /// The stored prefix.
  [[nodiscard]] std::string pathPrefixForMatchingInAppLinkManager(
      ORLFAppLinkManger& manager) override;
  /// What the block answers to the stored prefix and the address.
  [[nodiscard]] bool appLinkMangerHandleAppLinkURL(ORLFAppLinkManger& manager,
                                                   const NSURL& url) override;

  [[nodiscard]] std::string className() const override { return "ORLFAppLinkHander"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  const std::string pathPrefix_;
  const HandlerBlock handlerBlock_;
};

}  // namespace ORLFoundation
