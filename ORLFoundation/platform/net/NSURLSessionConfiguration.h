/// How a session loads: timeouts, caches, cookies, limits and whom it trusts.
///
///     auto settings = NSURLSessionConfiguration::defaultSessionConfiguration();
///     settings->setTimeoutIntervalForRequest(5.0);
///     auto session = NSURLSession::sessionWithConfiguration(settings, delegate, nullptr);
///
/// A session takes a copy. Not for several threads at a time.
#pragma once

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <cstdint>
#include <memory>
#include <string>

namespace ORLFoundation {

class NSURLSessionConfiguration final : public NSObject {
 public:
  /// `defaultSessionConfiguration`  A new one each time.
  [[nodiscard]] static std::shared_ptr<NSURLSessionConfiguration> defaultSessionConfiguration();

  /// `requestCachePolicy`  That of requests whose own is 0.
  [[nodiscard]] NSURLRequestCachePolicy requestCachePolicy() const noexcept { return cachePolicy_; }
  void setRequestCachePolicy(NSURLRequestCachePolicy value) noexcept { cachePolicy_ = value; }
  /// `timeoutIntervalForRequest`  That of requests without their own: seconds of silence, 60 at
  /// first. What is not above 0 counts as 60.
  [[nodiscard]] NSTimeInterval timeoutIntervalForRequest() const noexcept { return timeout_; }
  void setTimeoutIntervalForRequest(NSTimeInterval value) noexcept { timeout_ = value; }
  /// `timeoutIntervalForResource`  Seconds for a whole task, seven days at first. What is not above
  /// 0 counts as seven days.
  [[nodiscard]] NSTimeInterval timeoutIntervalForResource() const noexcept {
    return resourceTimeout_;
  }
  void setTimeoutIntervalForResource(NSTimeInterval value) noexcept { resourceTimeout_ = value; }
  /// `HTTPAdditionalHeaders`  Sent with each request that has no such field of its own. Raises
  /// `NSInvalidArgumentException` for what no header holds.
  [[nodiscard]] const NSHTTPHeaderFields& HTTPAdditionalHeaders() const noexcept { return header_; }
  void setHTTPAdditionalHeaders(NSHTTPHeaderFields value);
  /// `HTTPMaximumConnectionsPerHost`  6 at first. What is not above 0 counts as 1.
  [[nodiscard]] NSInteger HTTPMaximumConnectionsPerHost() const noexcept { return connections_; }
  void setHTTPMaximumConnectionsPerHost(NSInteger value) noexcept { connections_ = value; }
  /// `HTTPShouldSetCookies`  Whether requests use the process's cookies; true at first.
  [[nodiscard]] bool HTTPShouldSetCookies() const noexcept { return setsCookies_; }
  void setHTTPShouldSetCookies(bool value) noexcept { setsCookies_ = value; }

  /// How many bytes a body may have once it is decoded; a longer one ends its task with
  /// `NSURLErrorDataLengthExceedsMaximum`. -1, at first, for any length.
  [[nodiscard]] std::int64_t maximumBodyLength() const noexcept { return maximumBodyLength_; }
  void setMaximumBodyLength(std::int64_t value) noexcept { maximumBodyLength_ = value; }
  /// The path of a file of PEM certificates whose issuers are trusted beside the system's; "", at
  /// first, for none. Nothing makes a session trust a server without checking it.
  [[nodiscard]] const std::string& additionalTrustedCertificatesFile() const noexcept {
    return certificates_;
  }
  void setAdditionalTrustedCertificatesFile(std::string value) { certificates_ = std::move(value); }

  [[nodiscard]] std::string className() const override { return "NSURLSessionConfiguration"; }
  /// A configuration of its own with the same values.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 private:
  NSURLRequestCachePolicy cachePolicy_ = NSURLRequestUseProtocolCachePolicy;
  NSTimeInterval timeout_ = 60.0;
  NSTimeInterval resourceTimeout_ = 7.0 * 24 * 60 * 60;
  NSHTTPHeaderFields header_;
  NSInteger connections_ = 6;
  bool setsCookies_ = true;
  std::int64_t maximumBodyLength_ = -1;
  std::string certificates_;
};

}  // namespace ORLFoundation
