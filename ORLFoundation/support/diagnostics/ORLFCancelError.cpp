

#include <ORLFoundation/support/diagnostics/ORLFCancelError.h>

#include <utility>

namespace ORLFoundation {

std::shared_ptr<NSError> orlfUserCancelledErrorWithUserInfo(
    std::shared_ptr<NSDictionary> userInfo) {
  return NSError::errorWithDomain(NSCocoaErrorDomain, NSUserCancelledError, std::move(userInfo));
}

bool orlfIsUserCanceledError(const NSError& error) {
  return (error.code() == NSUserCancelledError && error.domain() == NSCocoaErrorDomain) ||
         (error.code() == NSURLErrorCancelled && error.domain() == NSURLErrorDomain);
}

}  // namespace ORLFoundation
