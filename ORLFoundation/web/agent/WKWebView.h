/// The view of web pages that a host may have. The library shows nothing; it asks a view only what
/// it calls itself.
///
///     class PageView : public WKWebView {
///       void loadHTMLString(std::string_view string, const std::optional<NSURL>&) override { ... }
///       id valueForUndefinedKey(std::string_view) const override { return "Mozilla/5.0 ..."; }
///     };
///
///     WKSetWebViewMaker([] { return std::make_shared<PageView>(); });
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// A host's view has the key "userAgent" (NSKeyTable.h), whose value is a text.
class WKWebView : public NSObject {
 public:
  /// `loadHTMLString:baseURL:`
  virtual void loadHTMLString(std::string_view string, const std::optional<NSURL>& baseURL) = 0;

  [[nodiscard]] std::string className() const override { return "WKWebView"; }
};

/// Makes a view; null where it cannot. Called on the thread that asks.
using WKWebViewMaker = std::function<std::shared_ptr<WKWebView>()>;

/// A new view of the host; null where none is installed.
[[nodiscard]] std::shared_ptr<WKWebView> WKMakeWebView();
/// Installs a maker of views and gives back the one before; an empty one stands for none. Safe on
/// any thread.
WKWebViewMaker WKSetWebViewMaker(WKWebViewMaker maker);

}  // namespace ORLFoundation
