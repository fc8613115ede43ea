
#include <ORLFoundation/web/agent/WKWebView.h>

#include <ORLFoundation/platform/base/Replaceable.h>

#include <utility>

namespace ORLFoundation {
namespace {

constinit internal::base::ReplaceableFunction<WKWebViewMaker> makers;

}  // namespace

std::shared_ptr<WKWebView> WKMakeWebView() {
  const auto maker = makers.current();
  return maker ? (*maker)() : nullptr;
}

WKWebViewMaker WKSetWebViewMaker(WKWebViewMaker maker) { return makers.exchange(std::move(maker)); }

}  // namespace ORLFoundation
