/// The process's cookies: in memory, one jar for all sessions. A cookie for a whole public suffix,
/// as "co.uk" is one, is refused.
#pragma once

#include <curl/curl.h>

namespace ORLFoundation::internal::net {

/// What a handle that uses the jar is given as `CURLOPT_SHARE`. Any thread.
[[nodiscard]] CURLSH* cookieJar();
/// Any thread.
void emptyCookieJar();

}  // namespace ORLFoundation::internal::net
