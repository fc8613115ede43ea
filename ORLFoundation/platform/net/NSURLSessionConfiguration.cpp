#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>

#include <ORLFoundation/platform/net/internal/CheckedFields.h>

#include <utility>

namespace ORLFoundation {

std::shared_ptr<NSURLSessionConfiguration>
NSURLSessionConfiguration::defaultSessionConfiguration() {
  return std::make_shared<NSURLSessionConfiguration>();
}

void NSURLSessionConfiguration::setHTTPAdditionalHeaders(NSHTTPHeaderFields value) {
  for (const auto& [name, text] : value) internal::net::requireField(name, text);
  header_ = std::move(value);
}

std::shared_ptr<NSObject> NSURLSessionConfiguration::copy() {
  auto other = std::make_shared<NSURLSessionConfiguration>();
  other->cachePolicy_ = cachePolicy_;
  other->timeout_ = timeout_;
  other->resourceTimeout_ = resourceTimeout_;
  other->header_ = header_;
  other->connections_ = connections_;
  other->setsCookies_ = setsCookies_;
  other->maximumBodyLength_ = maximumBodyLength_;
  other->certificates_ = certificates_;
  return other;
}

}  // namespace ORLFoundation
