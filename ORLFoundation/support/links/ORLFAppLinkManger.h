/// A router for links into the application. Of the handlers whose prefix a link's path begins with,
/// the one with the longest prefix is asked first; the first that takes the link ends the search.
///
///     const auto manager = ORLFAppLinkManger::sharedManager();
///     manager->registerAppLinkHandler(handler);
///     if (!manager->handleAppLinkUserActivity(*activity)) openInBrowser(*activity->webpageURL());
///
/// Safe on any thread. One recursive lock guards the handlers and is held while they run, on the
/// thread of the caller.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/process/NSUserActivity.h>
#include <ORLFoundation/support/links/ORLFAppLinkHander.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class ORLFAppLinkManger final : public NSObject {
 public:
  using Handler = std::shared_ptr<ORLFAppLinkHanderProtocol>;

  /// `sharedManager`  One for the process, made at first use.
  [[nodiscard]] static const std::shared_ptr<ORLFAppLinkManger>& sharedManager();

  /// `isAppLinkUserActivity:`  Whether the activity follows a link of the web.
  [[nodiscard]] bool isAppLinkUserActivity(const NSUserActivity& activity) const;
  /// `possibleHandlersForPath:`  The handlers whose prefix the path begins with, in their order.
  /// Prefixes know nothing of the parts of a path: "/ab" begins with "/a". Canonically equal
  /// texts are equal, and no prefix ends inside a letter with its marks.
  [[nodiscard]] std::vector<Handler> possibleHandlersForPath(std::string_view path);
  /// `handleAppLinkUserActivity:`  Whether a handler has taken the activity's link. false, and no
  /// handler is asked, for an activity of another type and for an address that is absent or whose
  /// path is empty or no text. A handler that is unregistered by one before it is still asked. What
  /// a handler throws ends the search.
  [[nodiscard]] bool handleAppLinkUserActivity(const NSUserActivity& activity);

  /// `handlersDidChange`  Puts the handlers into order by the prefixes that they give now: longer
  /// ones first, those of one length by `compare:`, equal ones as they stand.
  void handlersDidChange();
  /// `registerAppLinkHandler:`  Adds the handler and orders all anew. Nothing happens for one that
  /// is registered already, and for null.
  void registerAppLinkHandler(const Handler& handler);
  /// `unregisterAppLinkHandler:`  Takes the handler out, and orders the others anew whether or not
  /// it was there.
  void unregisterAppLinkHandler(const Handler& handler);
  /// `hasRegisteredAppLinkHandler:`
  [[nodiscard]] bool hasRegisteredAppLinkHandler(const Handler& handler) const;
  /// `pathPrefixChangedForAppLinkHandler:`  Orders the handlers anew only if this one is *not*
  /// registered; for one that is, the order stays until the next change. The test has this sense on
  /// purpose: it is required.
  void pathPrefixChangedForAppLinkHandler(const Handler& handler);

  /// `handlers`  A copy, in the order in which they are asked.
  [[nodiscard]] std::vector<Handler> handlers() const;

  [[nodiscard]] std::string className() const override { return "ORLFAppLinkManger"; }

 private:
  [[nodiscard]] std::vector<Handler>::const_iterator find(const Handler& handler) const;

  mutable std::recursive_mutex lock_;
  std::vector<Handler> handlers_;
};

}  // namespace ORLFoundation
