
#include <ORLFoundation/support/links/ORLFAppLinkManger.h>

#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <ORLFoundation/platform/value/NSURLComponents.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

/// A longer prefix, in UTF-16 units, comes first; equally long ones are in the order of `compare:`.
bool isTriedBefore(std::string_view prefix, std::string_view other) {
  const NSUInteger units = length(prefix);
  const NSUInteger unitsOfOther = length(other);
  if (units != unitsOfOther) return units > unitsOfOther;
  return compare(prefix, other) == NSOrderedAscending;
}

/// Canonically, as `hasPrefix:` does. Every text begins with the empty one.
bool beginsWith(std::string_view path, std::string_view prefix) {
  return prefix.empty() || rangeOfString(path, prefix, NSAnchoredSearch).location == 0;
}

}  // namespace

const std::shared_ptr<ORLFAppLinkManger>& ORLFAppLinkManger::sharedManager() {
  static const auto& manager = *new auto(std::make_shared<ORLFAppLinkManger>());
  return manager;
}

bool ORLFAppLinkManger::isAppLinkUserActivity(const NSUserActivity& activity) const {
  return activity.activityType() == NSUserActivityTypeBrowsingWeb;
}

std::vector<ORLFAppLinkManger::Handler> ORLFAppLinkManger::possibleHandlersForPath(
    std::string_view path) {
  const std::lock_guard guard(lock_);
  std::vector<Handler> possible;
  for (const Handler& handler : handlers())
    if (beginsWith(path, handler->pathPrefixForMatchingInAppLinkManager(*this)))
      possible.push_back(handler);
  return possible;
}

bool ORLFAppLinkManger::handleAppLinkUserActivity(const NSUserActivity& activity) {
  if (!isAppLinkUserActivity(activity)) return false;
  const std::optional<NSURL> url = activity.webpageURL();
  const auto components = NSURLComponents::componentsWithURL(url, true);
  const std::string path = components ? components->path().value_or("") : "";
  if (path.empty()) return false;
  const std::lock_guard guard(lock_);
  return std::ranges::any_of(possibleHandlersForPath(path), [&](const Handler& handler) {
    return handler->appLinkMangerHandleAppLinkURL(*this, *url);
  });
}

void ORLFAppLinkManger::handlersDidChange() {
  const std::lock_guard guard(lock_);
  const std::vector<Handler> before = handlers_;
  // Each is asked once, so that prefixes that change meanwhile cannot lead the sorting astray.
  std::vector<std::pair<std::string, Handler>> prefixed;
  prefixed.reserve(before.size());
  for (const Handler& handler : before)
    prefixed.emplace_back(handler->pathPrefixForMatchingInAppLinkManager(*this), handler);
  // A handler that changed the handlers when it was asked has had them ordered already.
  if (handlers_ != before) return;
  std::stable_sort(prefixed.begin(), prefixed.end(), [](const auto& left, const auto& right) {
    return isTriedBefore(left.first, right.first);
  });
  std::transform(prefixed.begin(), prefixed.end(), handlers_.begin(),
                 [](auto& entry) { return std::move(entry.second); });
}

void ORLFAppLinkManger::registerAppLinkHandler(const Handler& handler) {
  const std::lock_guard guard(lock_);
  if (!handler || hasRegisteredAppLinkHandler(handler)) return;
  handlers_.push_back(handler);
  handlersDidChange();
}

void ORLFAppLinkManger::unregisterAppLinkHandler(const Handler& handler) {
  const std::lock_guard guard(lock_);
  if (const auto place = find(handler); place != handlers_.end()) handlers_.erase(place);
  handlersDidChange();
}

bool ORLFAppLinkManger::hasRegisteredAppLinkHandler(const Handler& handler) const {
  const std::lock_guard guard(lock_);
  return find(handler) != handlers_.end();
}

void ORLFAppLinkManger::pathPrefixChangedForAppLinkHandler(const Handler& handler) {
  const std::lock_guard guard(lock_);
  if (!hasRegisteredAppLinkHandler(handler)) handlersDidChange();
}

std::vector<ORLFAppLinkManger::Handler> ORLFAppLinkManger::handlers() const {
  const std::lock_guard guard(lock_);
  return handlers_;
}

/// The place of an equal handler, with lock_ held.
std::vector<ORLFAppLinkManger::Handler>::const_iterator ORLFAppLinkManger::find(
    const Handler& handler) const {
  return std::ranges::find_if(handlers_,
                              [&](const Handler& other) { return other->isEqual(handler.get()); });
}

}  // namespace ORLFoundation
