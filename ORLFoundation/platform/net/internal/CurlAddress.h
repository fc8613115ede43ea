/// An address as libcurl takes it apart, so that what is judged is what is loaded.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation::internal::net {

class CurlAddress {
 public:
  /// nil where libcurl reads no address.
  [[nodiscard]] static std::optional<CurlAddress> read(const std::string& text);

  /// Leads from here to another place, which may be relative. false for what is no address.
  [[nodiscard]] bool follow(const std::string& place);
  /// "" for a part that is not there; the port is the scheme's own where none stands.
  [[nodiscard]] std::string part(CURLUPart part) const;
  void set(CURLUPart part, const std::string& value);

 private:
  struct Cleanup {
    void operator()(CURLU* handle) const noexcept { curl_url_cleanup(handle); }
  };
  CurlAddress() : handle_(curl_url()) {}

  std::unique_ptr<CURLU, Cleanup> handle_;
};

}  // namespace ORLFoundation::internal::net
