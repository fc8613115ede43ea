#include <ORLFoundation/platform/net/internal/TransferPlan.h>

#include <ORLFoundation/platform/base/ASCII.h>

#include <string_view>

namespace ORLFoundation::internal::net {
namespace {

constexpr double kTimeout = 60.0;
constexpr double kResourceTimeout = 7.0 * 24 * 60 * 60;
/// How a body is framed is not the caller's: a wrong word about it would let the rest of a body
/// pass for another request.
constexpr std::string_view kFramingFields[] = {
    "Content-Length", "Transfer-Encoding", "Connection", "TE", "Trailer", "Upgrade", "Keep-Alive"};

/// Not-a-number too counts as the default.
double above0(double seconds, double otherwise) { return seconds > 0 ? seconds : otherwise; }

NSHTTPHeaderFields fieldsOf(const NSURLRequest& request,
                            const NSURLSessionConfiguration& configuration,
                            NSURLRequestCachePolicy policy) {
  NSHTTPHeaderFields fields = request.allHTTPHeaderFields();
  for (const auto& field : configuration.HTTPAdditionalHeaders()) fields.insert(field);
  if (policy == NSURLRequestReloadIgnoringLocalCacheData ||
      policy == NSURLRequestReloadIgnoringLocalAndRemoteCacheData)
    fields.emplace("Cache-Control", "no-cache");
  for (const std::string_view name : kFramingFields) {
    const auto found = fields.find(name);
    if (found != fields.end()) fields.erase(found);
  }
  return fields;
}

std::string withoutFragment(const std::string& address) {
  return address.substr(0, address.find('#'));
}

}  // namespace

TransferPlan planOf(const NSURLRequest& request, const NSURLSessionConfiguration& configuration) {
  TransferPlan plan;
  const NSURLRequestCachePolicy policy = request.cachePolicy() == NSURLRequestUseProtocolCachePolicy
                                             ? configuration.requestCachePolicy()
                                             : request.cachePolicy();
  if (!request.URL()) return plan.failure = NSURLErrorBadURL, plan;
  if (policy == NSURLRequestReturnCacheDataDontLoad)
    return plan.failure = NSURLErrorResourceUnavailable, plan;
  plan.timeout = above0(request.hasTimeoutInterval() ? request.timeoutInterval()
                                                     : configuration.timeoutIntervalForRequest(),
                        kTimeout);
  plan.resourceTimeout = above0(configuration.timeoutIntervalForResource(), kResourceTimeout);
  const std::string scheme = base::lowerASCII(request.URL()->scheme().value_or(""));
  const auto isOf = [&](std::string_view name) { return std::string_view(scheme) == name; };
  plan.isLocal = isOf("file") || isOf("data");
  if (plan.isLocal) return plan;
  if (!isOf("http") && !isOf("https"))
    return plan.failure = scheme.empty() ? NSURLErrorBadURL : NSURLErrorUnsupportedURL, plan;
  plan.hop = {withoutFragment(request.URL()->absoluteString()), request.HTTPMethod(),
              fieldsOf(request, configuration, policy), request.HTTPBody()};
  plan.decodes = !plan.hop.fields.contains("Accept-Encoding");
  // Of encoded bytes a range would be of no use.
  if (plan.hop.fields.contains("Range")) plan.hop.fields.emplace("Accept-Encoding", "identity");
  const std::string host = base::lowerASCII(request.URL()->host().value_or(""));
  // libcurl would take the next word of the path for a host that is not there.
  if (host.empty()) return plan.failure = NSURLErrorBadURL, plan;
  const NSInteger port = request.URL()->port().value_or(isOf("https") ? 443 : 80);
  constexpr std::size_t kPortSize = 20;
  plan.origin.reserve(scheme.size() + host.size() + kPortSize);
  plan.origin.append(scheme).append("://").append(host).append(":").append(std::to_string(port));
  plan.usesCookies = request.HTTPShouldHandleCookies() && configuration.HTTPShouldSetCookies();
  return plan;
}

}  // namespace ORLFoundation::internal::net
