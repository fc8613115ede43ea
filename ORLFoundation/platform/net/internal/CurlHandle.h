/// A libcurl handle that the exchanges of a session use in turn. What is the same for all of them
/// is set once, and what is not only where it changes.
#pragma once

#include <curl/curl.h>

#include <array>
#include <string>
#include <string_view>

namespace ORLFoundation {
class NSURLSessionConfiguration;
}  // namespace ORLFoundation

namespace ORLFoundation::internal::net {

class Exchange;

class CurlHandle {
 public:
  explicit CurlHandle(const NSURLSessionConfiguration& configuration);
  ~CurlHandle();
  CurlHandle(const CurlHandle&) = delete;
  CurlHandle& operator=(const CurlHandle&) = delete;

  [[nodiscard]] CURL* get() const noexcept { return handle_; }
  template <class Value>
  void set(CURLoption option, Value value) const noexcept {
    curl_easy_setopt(handle_, option, value);
  }
  /// Whether it takes cookies from the process's jar, and keeps them there. Not at first.
  void useCookies(bool uses) noexcept;
  /// GET without a body, as it is at first, or another method. A body that is not null is read
  /// where it stands until the next call.
  void setMethod(const std::string& method, const std::string_view* body) noexcept;
  /// The request's own fields, read where they stand until the next call, null for none; and
  /// whether answers may come in the encodings that `BodyDecoder` knows, as at first.
  void setFields(curl_slist* fields, bool asksForEncodings) noexcept;
  void setCookies(const std::string* cookies) noexcept;

  /// What libcurl said of the last failure; "" for nothing.
  [[nodiscard]] const char* reason() const noexcept { return reason_.data(); }
  /// Whom it serves.
  Exchange* exchange = nullptr;

 private:
  CURL* const handle_;
  std::array<char, CURL_ERROR_SIZE> reason_{};
  bool usesCookies_ = false;
  bool isPlain_ = true;
  bool hasCookies_ = false;
  /// The field that asks for encodings; the request's own hang on it. libcurl formats a field of
  /// the caller's faster than one that it makes itself.
  curl_slist* const encodings_;
  curl_slist* fields_;  ///< What libcurl was given.
};

}  // namespace ORLFoundation::internal::net
