#include <ORLFoundation/platform/net/NSURLRequest.h>

#include <ORLFoundation/platform/net/internal/CheckedFields.h>
#include <ORLFoundation/platform/net/internal/ContentFacts.h>
#include <ORLFoundation/platform/net/internal/ShownAddress.h>

#include <functional>
#include <utility>

namespace ORLFoundation {

using namespace internal::net;

NSURLRequest::NSURLRequest(std::optional<NSURL> url) { fields_.url = std::move(url); }

NSURLRequest::NSURLRequest(std::optional<NSURL> url, NSURLRequestCachePolicy cachePolicy,
                           NSTimeInterval timeoutInterval)
    : NSURLRequest(std::move(url)) {
  fields_.cachePolicy = cachePolicy;
  fields_.timeoutInterval = timeoutInterval;
}

std::shared_ptr<NSURLRequest> NSURLRequest::requestWithURL(std::optional<NSURL> url) {
  return std::make_shared<NSURLRequest>(std::move(url));
}

std::shared_ptr<NSURLRequest> NSURLRequest::requestWithURL(std::optional<NSURL> url,
                                                           NSURLRequestCachePolicy cachePolicy,
                                                           NSTimeInterval timeoutInterval) {
  return std::make_shared<NSURLRequest>(std::move(url), cachePolicy, timeoutInterval);
}

std::optional<std::string> NSURLRequest::valueForHTTPHeaderField(std::string_view field) const {
  return fieldOf(fields_.header, field);
}

bool NSURLRequest::isEqual(const NSObject* other) const {
  if (other == this) return true;
  const auto* request = dynamic_cast<const NSURLRequest*>(other);
  return request != nullptr && request->fields_ == fields_;
}

NSUInteger NSURLRequest::hash() const {
  return std::hash<std::string>{}(fields_.method) ^ (fields_.url ? fields_.url->hash() : 0);
}

std::string NSURLRequest::description() const {
  return NSObject::description() + " { URL: " + shownAddress(fields_.url) + " }";
}

std::shared_ptr<NSURLRequest> NSURLRequest::requestWithFields(const Fields& fields) {
  return std::shared_ptr<NSURLRequest>(new NSURLRequest(fields));
}

std::shared_ptr<NSObject> NSURLRequest::copy() {
  return receiverOr([this] { return requestWithFields(fields_); });
}

std::shared_ptr<NSObject> NSURLRequest::mutableCopy() {
  return std::shared_ptr<NSMutableURLRequest>(new NSMutableURLRequest(fields_));
}

std::shared_ptr<NSMutableURLRequest> NSMutableURLRequest::requestWithURL(std::optional<NSURL> url) {
  return std::make_shared<NSMutableURLRequest>(std::move(url));
}

void NSMutableURLRequest::setHTTPMethod(std::string_view value) {
  requireMethod(value);
  fields_.method = value;
}

void NSMutableURLRequest::setAllHTTPHeaderFields(const NSHTTPHeaderFields& fields) {
  for (const auto& [name, value] : fields) requireField(name, value);
  fields_.header = fields;
}

void NSMutableURLRequest::setValue(std::optional<std::string_view> value,
                                   std::string_view forHTTPHeaderField) {
  requireField(forHTTPHeaderField, value.value_or(""));
  const auto found = fields_.header.find(forHTTPHeaderField);
  if (found != fields_.header.end()) fields_.header.erase(found);
  if (value) fields_.header.emplace(forHTTPHeaderField, *value);
}

void NSMutableURLRequest::addValue(std::string_view value, std::string_view forHTTPHeaderField) {
  requireField(forHTTPHeaderField, value);
  const auto [field, isNew] = fields_.header.emplace(forHTTPHeaderField, value);
  if (!isNew) field->second.append(",").append(value);
}

std::shared_ptr<NSObject> NSMutableURLRequest::copy() { return requestWithFields(fields_); }

}  // namespace ORLFoundation
