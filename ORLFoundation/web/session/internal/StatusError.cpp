#include <ORLFoundation/web/session/internal/StatusError.h>

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <ORLFoundation/web/session/ORLFHTTPURLResponse.h>

namespace ORLFoundation::internal::session {
namespace {

constexpr NSInteger kOK = 200, kNotFound = 404;

}  // namespace

NSInteger statusOf(const std::shared_ptr<NSURLResponse>& response) {
  const auto http = orlfHTTPURLResponse(response);
  return http ? http->statusCode() : 0;
}

std::shared_ptr<const NSError> errorForStatusOf(const std::shared_ptr<NSURLResponse>& response) {
  const auto http = orlfHTTPURLResponse(response);
  if (!http || http->statusCode() == kOK) return nullptr;
  const NSInteger status = http->statusCode();
  return NSError::errorWithDomain(
      NSURLErrorDomain, status == kNotFound ? NSURLErrorFileDoesNotExist : NSURLErrorUnknown,
      NSDictionary::dictionaryWithEntries(
          {{"statusCode", status},
           {"statusDescription", NSHTTPURLResponse::localizedStringForStatusCode(status)}}));
}

}  // namespace ORLFoundation::internal::session
