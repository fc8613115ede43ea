/// A libcurl handle for one request to a server. No other one is sent with it: libcurl keeps a
/// pointer to the last field of an answer when that is gone (7.88), and takes a field that folds
/// nothing, at the beginning of a handle's next answer, for more of it; resetting the handle leaves
/// the pointer as it is. And it counts over all requests of a handle how often it had to send one
/// again, because its server had closed the connection, and gives up at the sixth.
#pragma once

#include <curl/curl.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {
class NSURLSessionConfiguration;
}  // namespace ORLFoundation

namespace ORLFoundation::internal::net {

template <class Value>
void setOption(CURL* handle, CURLoption option, Value value) noexcept {
  curl_easy_setopt(handle, option, value);
}

/// What all handles of a session have in common, as one that is never sent itself: it is quicker
/// to copy a handle than to make one and to set its options.
class CurlPattern {
 public:
  explicit CurlPattern(const NSURLSessionConfiguration& configuration);
  ~CurlPattern();
  CurlPattern(const CurlPattern&) = delete;
  CurlPattern& operator=(const CurlPattern&) = delete;

  /// null where there was no memory for it.
  [[nodiscard]] CURL* get() const noexcept { return handle_; }
  template <class Value>
  void set(CURLoption option, Value value) const noexcept {
    setOption(handle_, option, value);
  }

 private:
  CURL* const handle_;
  curl_slist* const encodings_;
};

class CurlHandle {
 public:
  /// The pattern outlives it.
  explicit CurlHandle(const CurlPattern& pattern);
  ~CurlHandle();
  CurlHandle(const CurlHandle&) = delete;
  CurlHandle& operator=(const CurlHandle&) = delete;

  /// null where there was no memory for it.
  [[nodiscard]] CURL* get() const noexcept { return handle_; }
  template <class Value>
  void set(CURLoption option, Value value) const noexcept {
    setOption(handle_, option, value);
  }
  /// It takes cookies from the process's jar, and keeps them there.
  void useCookies() const noexcept;
  /// Without it the method is GET. A body that is not null is read where it stands while the
  /// request runs.
  void setMethod(const std::string& method, const std::string_view* body) const noexcept;
  /// Adds "Name: value", "Name;" for a blank value, "Name:" to leave out a field of libcurl's own.
  void addField(const std::string& line);
  /// What the fields come to: without the call they are none, and answers may come in the encodings
  /// that `BodyDecoder` knows; with it they may where it is so asked.
  void useFields(bool asksForEncodings);

  /// What libcurl said of the last failure; "" for nothing.
  [[nodiscard]] const char* reason() const noexcept { return reason_.data(); }

 private:
  struct FreeList {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
  };

  CURL* const handle_;
  std::unique_ptr<curl_slist, FreeList> fields_;
  std::array<char, CURL_ERROR_SIZE> reason_;
};

}  // namespace ORLFoundation::internal::net
