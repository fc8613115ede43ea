#include <ORLFoundation/platform/net/internal/CurlHandle.h>

#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/net/internal/CookieJar.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string>

namespace ORLFoundation::internal::net {
namespace {

/// What libcurl reads from a socket at a time.
constexpr long kBufferSize = long{64} * 1024;
/// libcurl's own limit on connecting, beyond every other.
constexpr long kConnectTimeout = 7L * 24 * 60 * 60 * 1000;
/// libcurl formats a field of the caller's faster than one that it makes itself.
constexpr const char* kEncodings = "Accept-Encoding: gzip, deflate";
/// Where libcurl looks for a proxy.
constexpr const char* kProxies[] = {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy",
                                    "ALL_PROXY"};

bool isProxyNamed() {
  return std::any_of(std::begin(kProxies), std::end(kProxies),
                     [](const char* name) { return std::getenv(name) != nullptr; });
}

}  // namespace

CurlPattern::CurlPattern(const NSURLSessionConfiguration& configuration)
    : handle_(curl_easy_init()), encodings_(curl_slist_append(nullptr, kEncodings)) {
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);  // A name that is still being looked up is not waited for.
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  set(CURLOPT_CONNECTTIMEOUT_MS, kConnectTimeout);
  set(CURLOPT_BUFFERSIZE, kBufferSize);
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  set(CURLOPT_HTTPHEADER, encodings_);
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  // It would read the environment again for each request.
  if (!isProxyNamed()) set(CURLOPT_NOPROXY, "*");
  // The system's folder of certificates stays beside the file.
  const std::string& file = configuration.additionalTrustedCertificatesFile();
  if (!file.empty()) set(CURLOPT_CAINFO, file.c_str());
}

CurlPattern::~CurlPattern() {
  curl_easy_cleanup(handle_);
  curl_slist_free_all(encodings_);
}

CurlHandle::CurlHandle(const CurlPattern& pattern)
    : handle_(pattern.get() == nullptr ? nullptr : curl_easy_duphandle(pattern.get())) {
  reason_.front() = '\0';
  set(CURLOPT_ERRORBUFFER, reason_.data());
}

CurlHandle::~CurlHandle() { curl_easy_cleanup(handle_); }

void CurlHandle::useCookies() const noexcept {
  set(CURLOPT_SHARE, cookieJar());
  set(CURLOPT_COOKIEFILE, "");  // No file, but what uses the jar.
}

void CurlHandle::setMethod(const std::string& method, const std::string_view* body) const noexcept {
  if (method == "HEAD")
    set(CURLOPT_NOBODY, 1L);
  else if (method != "GET" || body != nullptr)
    set(CURLOPT_CUSTOMREQUEST, method.c_str());
  if (body == nullptr) return;
  set(CURLOPT_NOPROGRESS, 0L);
  set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body->size()));
  set(CURLOPT_POSTFIELDS, body->empty() ? "" : body->data());
}

void CurlHandle::addField(const std::string& line) {
  curl_slist* const list = curl_slist_append(fields_.get(), line.c_str());
  static_cast<void>(fields_.release());
  fields_.reset(list);
}

void CurlHandle::useFields(bool asksForEncodings) {
  if (asksForEncodings && !fields_) return;
  if (asksForEncodings) addField(kEncodings);
  set(CURLOPT_HTTPHEADER, fields_.get());
}

}  // namespace ORLFoundation::internal::net
