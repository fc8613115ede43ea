/// Where a redirect leads, and what of a request goes along.
#pragma once

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>
#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::net {

/// One exchange with a server.
struct Hop {
  std::string address;
  std::string method;
  NSHTTPHeaderFields fields;
  std::optional<NSData> body;
};

/// The most redirects of one request.
inline constexpr int kMostRedirects = 16;

/// Whether an answer of this status leads elsewhere, when it says where.
[[nodiscard]] bool isRedirect(long status) noexcept;
/// "https://x.org:443": scheme, host and port of an address, in lower case; "" for what is no
/// address of http or https.
[[nodiscard]] std::string originOf(const std::string& address);

/// The next hop of an answer, or why there is none: a place that is no address
/// (`NSURLErrorRedirectToNonExistentLocation`) or not HTTP (`NSURLErrorUnsupportedURL`). A POST
/// becomes a GET after 301 and 302, all but HEAD after 303; bodies go along after 307 and 308.
/// Authorization, cookies, host and name with password stay behind where scheme, host or port
/// change.
struct NextHop {
  std::optional<Hop> hop;
  NSURLError failure = NSURLErrorUnknown;
};
[[nodiscard]] NextHop nextHop(const Hop& hop, long status, const std::string& location);

}  // namespace ORLFoundation::internal::net
