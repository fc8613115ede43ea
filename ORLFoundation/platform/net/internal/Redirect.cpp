#include <ORLFoundation/platform/net/internal/Redirect.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/net/internal/CurlAddress.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace ORLFoundation::internal::net {
namespace {

using base::lowerASCII;

constexpr long kFollowed[] = {301, 302, 303, 307, 308};
/// What belongs to the server that it was meant for.
constexpr std::string_view kOwnFields[] = {"Authorization", "Cookie", "Host",
                                           "Proxy-Authorization"};
/// What tells of a body.
constexpr std::string_view kBodyFields[] = {"Content-Type", "Content-Encoding", "Content-Language",
                                            "Content-Location"};

bool isHTTP(const std::string& scheme) { return scheme == "http" || scheme == "https"; }

std::string originOf(const CurlAddress& address) {
  const std::string scheme = lowerASCII(address.part(CURLUPART_SCHEME));
  if (!isHTTP(scheme)) return {};
  return scheme + "://" + lowerASCII(address.part(CURLUPART_HOST)) + ":" +
         address.part(CURLUPART_PORT);
}

template <std::size_t count>
void removeFields(NSHTTPHeaderFields& fields, const std::string_view (&names)[count]) {
  for (const std::string_view name : names) {
    const auto found = fields.find(name);
    if (found != fields.end()) fields.erase(found);
  }
}

/// Whether a place names a scheme of its own that is not HTTP. libcurl takes one without slashes
/// for a path.
bool hasOtherScheme(const std::string& place) {
  const std::string scheme = place.substr(0, place.find_first_of(":/?#"));
  if (scheme.size() == place.size() || place[scheme.size()] != ':') return false;
  return !isHTTP(lowerASCII(scheme));
}

bool becomesGet(const std::string& method, long status) {
  if (status == 303) return method != "HEAD" && method != "GET";
  return (status == 301 || status == 302) && method == "POST";
}

}  // namespace

bool isRedirect(long status) noexcept {
  return std::find(std::begin(kFollowed), std::end(kFollowed), status) != std::end(kFollowed);
}

std::string originOf(const std::string& address) {
  const auto read = CurlAddress::read(address);
  return read ? originOf(*read) : std::string();
}

NextHop nextHop(const Hop& hop, long status, const std::string& location) {
  const auto from = CurlAddress::read(hop.address);
  if (hasOtherScheme(location)) return {std::nullopt, NSURLErrorUnsupportedURL};
  auto to = CurlAddress::read(hop.address);
  if (!from || !to || !to->follow(location))
    return {std::nullopt, NSURLErrorRedirectToNonExistentLocation};
  const std::string origin = originOf(*to);
  if (origin.empty()) return {std::nullopt, NSURLErrorUnsupportedURL};
  Hop next = hop;
  if (origin != originOf(*from)) {
    removeFields(next.fields, kOwnFields);
  } else if (to->part(CURLUPART_USER).empty()) {
    to->set(CURLUPART_USER, from->part(CURLUPART_USER));
    to->set(CURLUPART_PASSWORD, from->part(CURLUPART_PASSWORD));
  }
  if (becomesGet(hop.method, status)) {
    next.method = "GET";
    next.body.reset();
    removeFields(next.fields, kBodyFields);
  }
  to->set(CURLUPART_FRAGMENT, "");
  next.address = to->part(CURLUPART_URL);
  return {std::move(next), NSURLErrorUnknown};
}

}  // namespace ORLFoundation::internal::net
