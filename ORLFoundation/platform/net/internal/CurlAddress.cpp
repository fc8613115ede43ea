#include <ORLFoundation/platform/net/internal/CurlAddress.h>

namespace ORLFoundation::internal::net {

std::optional<CurlAddress> CurlAddress::read(const std::string& text) {
  CurlAddress address;
  const bool isRead = curl_url_set(address.handle_.get(), CURLUPART_URL, text.c_str(),
                                   CURLU_NON_SUPPORT_SCHEME) == CURLUE_OK;
  return isRead ? std::optional(std::move(address)) : std::nullopt;
}

bool CurlAddress::follow(const std::string& place) {
  return curl_url_set(handle_.get(), CURLUPART_URL, place.c_str(),
                      CURLU_NON_SUPPORT_SCHEME | CURLU_URLENCODE) == CURLUE_OK;
}

std::string CurlAddress::part(CURLUPart part) const {
  char* text = nullptr;
  const unsigned flags = part == CURLUPART_PORT ? CURLU_DEFAULT_PORT : 0;
  if (curl_url_get(handle_.get(), part, &text, flags) != CURLUE_OK) return {};
  std::string copy(text);
  curl_free(text);
  return copy;
}

void CurlAddress::set(CURLUPart part, const std::string& value) {
  curl_url_set(handle_.get(), part, value.empty() ? nullptr : value.c_str(), 0);
}

}  // namespace ORLFoundation::internal::net
