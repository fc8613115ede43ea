/// What is known of an answer before its body: of any address, and of an HTTP one its status and
/// header.
///
///     const auto http = std::dynamic_pointer_cast<NSHTTPURLResponse>(task->response());
///     if (http && http->statusCode() == 404)
///       report(NSHTTPURLResponse::localizedStringForStatusCode(404));   // "not found"
///
/// Responses never change; a copy is the response itself.
#pragma once

#include <ORLFoundation/platform/net/NSHTTPHeaderFields.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSTypes.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// `NSURLResponseUnknownLength`
inline constexpr std::int64_t NSURLResponseUnknownLength = -1;

class NSURLResponse : public NSObject {
 public:
  /// `initWithURL:MIMEType:expectedContentLength:textEncodingName:`
  explicit NSURLResponse(std::optional<NSURL> url,
                         std::optional<std::string> MIMEType = std::nullopt,
                         std::int64_t expectedContentLength = NSURLResponseUnknownLength,
                         std::optional<std::string> textEncodingName = std::nullopt);

  /// `URL`  The address that answered, the last one after redirects.
  [[nodiscard]] const std::optional<NSURL>& URL() const noexcept { return url_; }
  /// `MIMEType`  "text/csv", in lower case and without parameters.
  [[nodiscard]] const std::optional<std::string>& MIMEType() const noexcept { return MIMEType_; }
  /// `expectedContentLength`  In bytes; -1 when it is not known.
  [[nodiscard]] std::int64_t expectedContentLength() const noexcept { return expectedLength_; }
  /// `textEncodingName`  The charset as the answer names it.
  [[nodiscard]] const std::optional<std::string>& textEncodingName() const noexcept {
    return textEncodingName_;
  }

  [[nodiscard]] std::string className() const override { return "NSURLResponse"; }
  /// "<NSURLResponse: 0x55d0c8> { URL: https://example.com/ }", the address without what may hold
  /// secrets, as a request's description.
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 private:
  const std::optional<NSURL> url_;
  const std::optional<std::string> MIMEType_;
  const std::int64_t expectedLength_;
  const std::optional<std::string> textEncodingName_;
};

class NSHTTPURLResponse final : public NSURLResponse {
 public:
  /// `initWithURL:statusCode:HTTPVersion:headerFields:`  What the base class tells is read from the
  /// fields `Content-Type` and `Content-Length`; a `Content-Encoding` makes the length unknown,
  /// since bodies are decoded.
  NSHTTPURLResponse(std::optional<NSURL> url, NSInteger statusCode,
                    std::optional<std::string> HTTPVersion = std::nullopt,
                    NSHTTPHeaderFields headerFields = {});

  /// `statusCode`
  [[nodiscard]] NSInteger statusCode() const noexcept { return statusCode_; }
  /// `allHeaderFields`  A name that the answer repeats has its values joined with ", ".
  [[nodiscard]] const NSHTTPHeaderFields& allHeaderFields() const noexcept { return fields_; }
  /// `valueForHTTPHeaderField:`  nil for a field that is not there.
  [[nodiscard]] std::optional<std::string> valueForHTTPHeaderField(std::string_view field) const;
  /// `localizedStringForStatusCode:`  "not found" for 404. A code without a name of its own has
  /// that of its hundred, "client error"; what is no status is "unknown".
  [[nodiscard]] static std::string localizedStringForStatusCode(NSInteger statusCode);

  [[nodiscard]] std::string className() const override { return "NSHTTPURLResponse"; }
  /// The same with the status: "{ URL: https://example.com/, status code: 404 }". No header field
  /// stands in it.
  [[nodiscard]] std::string description() const override;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

 private:
  const NSInteger statusCode_;
  const std::optional<std::string> version_;
  const NSHTTPHeaderFields fields_;
};

}  // namespace ORLFoundation
