/// What is asked of a server: an address, a method, header fields and a body.
///
///     const auto request = std::make_shared<NSMutableURLRequest>(url);
///     request->setHTTPMethod("POST");
///     request->setValue("text/csv", "Content-Type");
///     request->setHTTPBody(NSData("date,amount"));
///     const auto task = session->dataTaskWithRequest(copyOf<NSURLRequest>(request));
///
/// A request that is not mutable never changes and is its own copy, so that identity tells one
/// request from another.
#pragma once

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// What a cache may answer. The library keeps no answers, so that only three differ: `DontLoad`
/// fails with `NSURLErrorResourceUnavailable`, and the two that ignore caches tell those on the way
/// so (`Cache-Control: no-cache`).
enum NSURLRequestCachePolicy : NSUInteger {
  NSURLRequestUseProtocolCachePolicy = 0,
  NSURLRequestReloadIgnoringLocalCacheData = 1,
  NSURLRequestReturnCacheDataElseLoad = 2,
  NSURLRequestReturnCacheDataDontLoad = 3,
  NSURLRequestReloadIgnoringLocalAndRemoteCacheData = 4,
  NSURLRequestReloadRevalidatingCacheData = 5,
};

class NSURLRequest : public NSObject {
 public:
  /// `initWithURL:`  A GET. nil for the address is taken; such a request fails when it is sent.
  explicit NSURLRequest(std::optional<NSURL> url);
  /// `initWithURL:cachePolicy:timeoutInterval:`
  NSURLRequest(std::optional<NSURL> url, NSURLRequestCachePolicy cachePolicy,
               NSTimeInterval timeoutInterval);
  /// `requestWithURL:`
  [[nodiscard]] static std::shared_ptr<NSURLRequest> requestWithURL(std::optional<NSURL> url);
  /// `requestWithURL:cachePolicy:timeoutInterval:`
  [[nodiscard]] static std::shared_ptr<NSURLRequest> requestWithURL(
      std::optional<NSURL> url, NSURLRequestCachePolicy cachePolicy,
      NSTimeInterval timeoutInterval);

  /// `URL`
  [[nodiscard]] const std::optional<NSURL>& URL() const noexcept { return fields_.url; }
  /// `HTTPMethod`  "GET" unless another was set.
  [[nodiscard]] const std::string& HTTPMethod() const noexcept { return fields_.method; }
  /// `HTTPBody`
  [[nodiscard]] const std::optional<NSData>& HTTPBody() const noexcept { return fields_.body; }
  /// `cachePolicy`  A request of policy 0 goes by its session's configuration.
  [[nodiscard]] NSURLRequestCachePolicy cachePolicy() const noexcept { return fields_.cachePolicy; }
  /// `timeoutInterval`  How many seconds of silence end the request; 60 where none was set.
  [[nodiscard]] NSTimeInterval timeoutInterval() const noexcept {
    return fields_.timeoutInterval.value_or(60.0);
  }
  /// Whether a timeout was set; a request without one goes by its session's configuration.
  [[nodiscard]] bool hasTimeoutInterval() const noexcept {
    return fields_.timeoutInterval.has_value();
  }
  /// `HTTPShouldHandleCookies`  true: cookies are taken from the process's jar and kept in it.
  [[nodiscard]] bool HTTPShouldHandleCookies() const noexcept { return fields_.handlesCookies; }
  /// `allHTTPHeaderFields`
  [[nodiscard]] const NSHTTPHeaderFields& allHTTPHeaderFields() const noexcept {
    return fields_.header;
  }
  /// `valueForHTTPHeaderField:`  nil for a field that was not set.
  [[nodiscard]] std::optional<std::string> valueForHTTPHeaderField(std::string_view field) const;

  [[nodiscard]] std::string className() const override { return "NSURLRequest"; }
  /// Equal in all that is asked.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] NSUInteger hash() const override;
  /// "<NSURLRequest: 0x55d0c8> { URL: https://example.com/ }", without query, fragment, name and
  /// password, which may hold secrets.
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  /// An `NSMutableURLRequest`.
  [[nodiscard]] std::shared_ptr<NSObject> mutableCopy() override;

 protected:
  struct Fields {
    std::optional<NSURL> url;
    std::string method = "GET";
    std::optional<NSData> body;
    NSHTTPHeaderFields header;
    NSURLRequestCachePolicy cachePolicy = NSURLRequestUseProtocolCachePolicy;
    std::optional<NSTimeInterval> timeoutInterval;
    bool handlesCookies = true;
    friend bool operator==(const Fields&, const Fields&) = default;
  };
  explicit NSURLRequest(Fields fields) : fields_(std::move(fields)) {}
  [[nodiscard]] static std::shared_ptr<NSURLRequest> requestWithFields(const Fields& fields);

  Fields fields_;
};

/// A request that is still being put together. Its copy is an `NSURLRequest` of this moment.
class NSMutableURLRequest final : public NSURLRequest {
 public:
  using NSURLRequest::NSURLRequest;
  /// `requestWithURL:`
  [[nodiscard]] static std::shared_ptr<NSMutableURLRequest> requestWithURL(
      std::optional<NSURL> url);

  void setURL(std::optional<NSURL> value) { fields_.url = std::move(value); }
  /// `setHTTPMethod:`  Raises `NSInvalidArgumentException` for what is no method, as a text with a
  /// blank, CR, LF or NUL is not.
  void setHTTPMethod(std::string_view value);
  void setHTTPBody(std::optional<NSData> value) { fields_.body = std::move(value); }
  void setCachePolicy(NSURLRequestCachePolicy value) noexcept { fields_.cachePolicy = value; }
  /// `setTimeoutInterval:`  Seconds, in fractions. What is not above 0 counts as 60 when it is
  /// sent; infinity never ends it.
  void setTimeoutInterval(NSTimeInterval value) noexcept { fields_.timeoutInterval = value; }
  void setHTTPShouldHandleCookies(bool value) noexcept { fields_.handlesCookies = value; }
  /// `setAllHTTPHeaderFields:`  In place of all that were set.
  void setAllHTTPHeaderFields(const NSHTTPHeaderFields& fields);
  /// `setValue:forHTTPHeaderField:`  nil takes the field away. Raises `NSInvalidArgumentException`
  /// for a name or a value that no header holds, those with CR, LF or NUL among them. Length and
  /// framing of the body (`Content-Length`, `Transfer-Encoding`) are the session's: what is set
  /// for them is not sent.
  void setValue(std::optional<std::string_view> value, std::string_view forHTTPHeaderField);
  /// `addValue:forHTTPHeaderField:`  Joined to what the field has with a comma.
  void addValue(std::string_view value, std::string_view forHTTPHeaderField);

  [[nodiscard]] std::string className() const override { return "NSMutableURLRequest"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 private:
  friend class NSURLRequest;
  explicit NSMutableURLRequest(Fields fields) : NSURLRequest(std::move(fields)) {}
};

}  // namespace ORLFoundation
