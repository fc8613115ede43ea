#include <ORLFoundation/platform/net/internal/CurlHandle.h>

#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/net/internal/CookieJar.h>

#include <string>
#include <utility>

namespace ORLFoundation::internal::net {
namespace {

/// What libcurl reads from a socket at a time.
constexpr long kBufferSize = long{64} * 1024;
/// libcurl's own limit on connecting, beyond every other.
constexpr long kConnectTimeout = 7L * 24 * 60 * 60 * 1000;
constexpr const char* kEncodings = "Accept-Encoding: gzip, deflate";

}  // namespace

CurlHandle::CurlHandle(const NSURLSessionConfiguration& configuration)
    : handle_(curl_easy_init()),
      encodings_(curl_slist_append(nullptr, kEncodings)),
      fields_(encodings_) {
  set(CURLOPT_PRIVATE, this);
  set(CURLOPT_ERRORBUFFER, reason_.data());
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);  // A name that is still being looked up is not waited for.
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  set(CURLOPT_CONNECTTIMEOUT_MS, kConnectTimeout);
  set(CURLOPT_BUFFERSIZE, kBufferSize);
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  set(CURLOPT_HTTPHEADER, fields_);
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  // The system's folder of certificates stays beside the file.
  const std::string& file = configuration.additionalTrustedCertificatesFile();
  if (!file.empty()) set(CURLOPT_CAINFO, file.c_str());
}

CurlHandle::~CurlHandle() {
  curl_easy_cleanup(handle_);
  encodings_->next = nullptr;
  curl_slist_free_all(encodings_);
}

void CurlHandle::useCookies(bool uses) noexcept {
  if (std::exchange(usesCookies_, uses) == uses) return;
  set(CURLOPT_SHARE, uses ? cookieJar() : nullptr);
  set(CURLOPT_COOKIEFILE, uses ? "" : nullptr);  // No file, but what uses the jar.
}

void CurlHandle::setMethod(const std::string& method, const std::string_view* body) noexcept {
  const bool isHead = method == "HEAD";
  const bool isPlain = method == "GET" && body == nullptr;
  if (isPlain && isPlain_) return;
  isPlain_ = isPlain;
  // Takes back what another method has set.
  set(CURLOPT_POSTFIELDS, nullptr);
  set(CURLOPT_HTTPGET, 1L);
  set(CURLOPT_NOPROGRESS, body != nullptr ? 0L : 1L);
  set(CURLOPT_CUSTOMREQUEST, isPlain || isHead ? nullptr : method.c_str());
  if (isHead) set(CURLOPT_NOBODY, 1L);
  if (body == nullptr) return;
  set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body->size()));
  set(CURLOPT_POSTFIELDS, body->empty() ? "" : body->data());
}

void CurlHandle::setFields(curl_slist* fields, bool asksForEncodings) noexcept {
  encodings_->next = asksForEncodings ? fields : nullptr;
  curl_slist* const all = asksForEncodings ? encodings_ : fields;
  if (std::exchange(fields_, all) != all) set(CURLOPT_HTTPHEADER, all);
}

void CurlHandle::setCookies(const std::string* cookies) noexcept {
  const bool has = cookies != nullptr;
  if (std::exchange(hasCookies_, has) || has) set(CURLOPT_COOKIE, has ? cookies->c_str() : nullptr);
}

}  // namespace ORLFoundation::internal::net
