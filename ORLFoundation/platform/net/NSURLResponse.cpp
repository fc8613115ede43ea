#include <ORLFoundation/platform/net/NSURLResponse.h>

#include <ORLFoundation/platform/net/internal/ContentFacts.h>
#include <ORLFoundation/platform/net/internal/ShownAddress.h>
#include <ORLFoundation/platform/net/internal/StatusTexts.h>

#include <utility>

namespace ORLFoundation {

using namespace internal::net;

NSURLResponse::NSURLResponse(std::optional<NSURL> url, std::optional<std::string> MIMEType,
                             std::int64_t expectedContentLength,
                             std::optional<std::string> textEncodingName)
    : url_(std::move(url)),
      MIMEType_(std::move(MIMEType)),
      expectedLength_(expectedContentLength),
      textEncodingName_(std::move(textEncodingName)) {}

std::string NSURLResponse::description() const {
  return NSObject::description() + " { URL: " + shownAddress(url_) + " }";
}

std::shared_ptr<NSObject> NSURLResponse::copy() {
  return receiverOr([this] {
    return std::make_shared<NSURLResponse>(url_, MIMEType_, expectedLength_, textEncodingName_);
  });
}

NSHTTPURLResponse::NSHTTPURLResponse(std::optional<NSURL> url, NSInteger statusCode,
                                     std::optional<std::string> HTTPVersion,
                                     NSHTTPHeaderFields headerFields)
    : NSURLResponse(std::move(url), mediaTypeOf(headerFields), lengthOf(headerFields),
                    charsetOf(headerFields)),
      statusCode_(statusCode),
      version_(std::move(HTTPVersion)),
      fields_(std::move(headerFields)) {}

std::optional<std::string> NSHTTPURLResponse::valueForHTTPHeaderField(
    std::string_view field) const {
  return fieldOf(fields_, field);
}

std::string NSHTTPURLResponse::localizedStringForStatusCode(NSInteger statusCode) {
  return std::string(textOfStatus(statusCode));
}

std::string NSHTTPURLResponse::description() const {
  std::string text = NSURLResponse::description();
  text.resize(text.size() - 2);
  return text + ", status code: " + std::to_string(statusCode_) + " }";
}

std::shared_ptr<NSObject> NSHTTPURLResponse::copy() {
  return receiverOr([this] {
    return std::make_shared<NSHTTPURLResponse>(URL(), statusCode_, version_, fields_);
  });
}

}  // namespace ORLFoundation
